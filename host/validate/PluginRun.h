// All chosen checks on one plug-in.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "host/ScratchPlace.h"
#include "host/validate/Check.h"
#include "host/validate/LoopbackServer.h"
#include "host/validate/Outcome.h"
#include "host/validate/Survey.h"
#include "host/validate/Trial.h"
#include "host/validate/TrialProcess.h"

struct SRunOptions {
    CCheckList m_checks;
    std::vector<std::string> m_vSamples;  // empty to make them
    std::string m_strURL;                 // empty to serve one
    std::string m_strOtherPlugins;
    std::chrono::milliseconds m_limit{10000};
    unsigned int m_nJobs = 1;
    bool m_bShowsErrors = false;  // what the plug-in writes to standard error
};

struct SCheckResult {
    const SCheck* m_pCheck;
    SOutcome m_outcome;
};

// Nothing to fail by: "the loader takes 7.1 ms, more than 5" and the like.
struct SNote {
    std::string m_strText;
    bool m_bInShort;  // worth a line of the short report, which leaves out what depends on how busy the machine is
};

using CNotes = std::vector<SNote>;

struct SPluginReport {
    std::string m_strPath;
    SSurvey m_survey;
    std::vector<SCheckResult> m_vResults;  // in the order of the checks; those that do not concern the plug-in are out
    CNotes m_vNotes;

    int Count(EVerdict verdict) const;
    int Findings() const;
};

// Runs a group of checks after the other, and the checks of a group beside each other; a check whose needed one did not
// pass is skipped. This process loads no plug-in. One thread.
class CPluginRun {
public:
    CPluginRun(const SRunOptions& options, const std::string& plugin);

    CPluginRun(const CPluginRun&) = delete;
    CPluginRun& operator=(const CPluginRun&) = delete;

    // Throws CFailure when a signal asks to stop.
    SPluginReport Run();

private:
    enum class EState { Waiting, Running, Done };

    struct SEntry {
        const SCheck* m_pCheck;
        EState m_eState = EState::Waiting;
        SOutcome m_outcome;
        std::unique_ptr<CTrialProcess> m_pProcess;
    };

    using CEntries = std::vector<SEntry>;

    void Prepare();
    void RunGroup(CEntries::iterator first, CEntries::iterator last);
    bool StartWaiting(CEntries::iterator first, CEntries::iterator last);
    void Start(SEntry& entry);
    void WaitForOne(CEntries::iterator first, CEntries::iterator last);
    void Finish(SEntry& entry);

    const SEntry* Find(const std::string& check) const;

    // The entry that decides whether `check` makes sense; null when nothing is in its way.
    const SEntry* NeededBy(const SCheck& check) const;

    const SRunOptions& m_options;
    CScratchPlace m_scratch;
    SSurroundings m_around;
    SSurvey m_survey;
    std::unique_ptr<CLoopbackServer> m_pServer;
    CEntries m_entries;
    unsigned int m_nRunning = 0;
};

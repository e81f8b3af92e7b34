// All chosen checks on one plug-in.
#include "host/validate/PluginRun.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>

#include "host/Failure.h"
#include "host/StopSignal.h"
#include "host/validate/Catalogue.h"
#include "host/validate/ServedFiles.h"

namespace {

constexpr double kSlowLoading = 5;  // milliseconds

std::string DirectoryName(const SCheck& check) {
    std::string name = check.m_szName;
    std::replace(name.begin(), name.end(), '/', '-');
    return name;
}

std::string SkippedText(const SCheck& needed, EVerdict verdict) {
    return std::string(needed.m_szName) + (verdict == EVerdict::Skipped ? " was skipped" : " did not pass");
}

CNotes NotesOn(const SSurvey& survey) {
    CNotes notes;
    if (!survey.m_strTrouble.empty()) notes.push_back({"the survey did not pass: " + survey.m_strTrouble, true});
    if (survey.m_fLoadMilliseconds > kSlowLoading) {
        char text[64];
        std::snprintf(text, sizeof(text), "the loader takes %.1f ms, more than %.0f", survey.m_fLoadMilliseconds,
                      kSlowLoading);
        notes.push_back({text, false});
    }
    return notes;
}

}  // namespace

int SPluginReport::Count(EVerdict verdict) const {
    return static_cast<int>(std::count_if(m_vResults.begin(), m_vResults.end(), [=](const SCheckResult& result) {
        return result.m_outcome.m_eVerdict == verdict;
    }));
}

int SPluginReport::Findings() const {
    return Count(EVerdict::Failed) + Count(EVerdict::Crashed) + Count(EVerdict::TimedOut);
}

CPluginRun::CPluginRun(const SRunOptions& options, const std::string& plugin) : m_options(options) {
    m_around.m_strPlugin = std::filesystem::absolute(plugin).string();
    m_around.m_strOtherPlugins = options.m_strOtherPlugins;
    m_around.m_vSamples = options.m_vSamples;
    m_around.m_strURL = options.m_strURL;
}

SPluginReport CPluginRun::Run() {
    Prepare();
    for (auto first = m_entries.begin(); first != m_entries.end();) {
        const auto last = std::find_if(first, m_entries.end(), [&](const SEntry& entry) {
            return GroupOf(*entry.m_pCheck) != GroupOf(*first->m_pCheck);
        });
        RunGroup(first, last);
        first = last;
    }
    SPluginReport report{m_around.m_strPlugin, m_survey, {}, NotesOn(m_survey)};
    for (const SEntry& entry : m_entries) report.m_vResults.push_back({entry.m_pCheck, entry.m_outcome});
    return report;
}

void CPluginRun::Prepare() {
    m_survey = SurveyPlugin(m_around.m_strPlugin, m_scratch.MakeDirectory("survey"), m_options.m_limit);
    if (m_around.m_vSamples.empty()) {
        m_around.m_vSamples = m_survey.m_vSamples;
        m_around.m_bOwnSamples = true;
    }
    if (m_around.m_strURL.empty() && m_survey.m_bHandlesHttp) {
        m_pServer = std::make_unique<CLoopbackServer>(ServedFiles());
        m_around.m_strURL = m_pServer->GetURL() + kServedSample;
        m_around.m_bOwnServer = true;
    }
    for (const SCheck& check : m_options.m_checks) {
        const bool concerned = check.m_nConcerns == CONCERN_ANY || (check.m_nConcerns & m_survey.m_nConcerns) != 0;
        if (concerned) m_entries.push_back({&check, EState::Waiting, {}, nullptr});
    }
}

void CPluginRun::RunGroup(CEntries::iterator first, CEntries::iterator last) {
    while (StartWaiting(first, last) || m_nRunning > 0) {
        if (m_nRunning > 0) WaitForOne(first, last);
    }
}

// Whether some check was started or skipped: either may let others begin.
bool CPluginRun::StartWaiting(CEntries::iterator first, CEntries::iterator last) {
    bool changed = false;
    for (auto entry = first; entry != last; ++entry) {
        if (entry->m_eState != EState::Waiting) continue;
        const SEntry* const needed = NeededBy(*entry->m_pCheck);
        if (needed != nullptr && needed->m_eState != EState::Done) continue;
        if (needed != nullptr && needed->m_outcome.m_eVerdict != EVerdict::Passed) {
            entry->m_outcome = {EVerdict::Skipped, SkippedText(*needed->m_pCheck, needed->m_outcome.m_eVerdict)};
            entry->m_eState = EState::Done;
            changed = true;
        } else if (m_nRunning < m_options.m_nJobs) {
            Start(*entry);
            changed = true;
        }
    }
    return changed;
}

void CPluginRun::Start(SEntry& entry) {
    const std::string directory = m_scratch.MakeDirectory(DirectoryName(*entry.m_pCheck));
    const auto mayUse = [this](const std::string& check) {
        const SEntry* const other = Find(check);
        return other == nullptr || (other->m_eState == EState::Done && other->m_outcome.m_eVerdict == EVerdict::Passed);
    };
    const auto run = [&] {
        PrepareEnvironment(directory);
        // Lives as long as the process.
        auto* const trial = new CTrial(m_around, directory, mayUse);
        entry.m_pCheck->m_pRun(*trial);
    };
    entry.m_pProcess = std::make_unique<CTrialProcess>(run, m_options.m_limit, m_options.m_bShowsErrors);
    entry.m_eState = EState::Running;
    ++m_nRunning;
}

void CPluginRun::WaitForOne(CEntries::iterator first, CEntries::iterator last) {
    std::vector<SEntry*> running;
    std::vector<pollfd> descriptors;
    auto deadline = std::chrono::steady_clock::time_point::max();
    for (auto entry = first; entry != last; ++entry) {
        if (entry->m_eState != EState::Running) continue;
        running.push_back(&*entry);
        descriptors.push_back({entry->m_pProcess->GetDescriptor(), POLLIN, 0});
        deadline = std::min(deadline, entry->m_pProcess->GetDeadline());
    }
    const int ended = PollUntilStopped(descriptors.data(), descriptors.size(), deadline);
    if (GetStopSignal() != 0) throw CFailure(m_around.m_strPlugin, "stopped by a signal");
    for (std::size_t i = 0; i < running.size(); ++i) {
        const bool late = running[i]->m_pProcess->GetDeadline() <= std::chrono::steady_clock::now();
        if ((ended > 0 && descriptors[i].revents != 0) || late) Finish(*running[i]);
    }
}

void CPluginRun::Finish(SEntry& entry) {
    entry.m_outcome = entry.m_pProcess->Finish();
    entry.m_pProcess.reset();
    entry.m_eState = EState::Done;
    --m_nRunning;
    m_scratch.RemoveDirectory(DirectoryName(*entry.m_pCheck));
}

const CPluginRun::SEntry* CPluginRun::Find(const std::string& check) const {
    const auto found = std::find_if(m_entries.begin(), m_entries.end(),
                                    [&](const SEntry& entry) { return check == entry.m_pCheck->m_szName; });
    return found != m_entries.end() ? &*found : nullptr;
}

const CPluginRun::SEntry* CPluginRun::NeededBy(const SCheck& check) const {
    const SCheck* needed = FindCheck(check.m_szNeeds);
    while (needed != nullptr && Find(needed->m_szName) == nullptr) needed = FindCheck(needed->m_szNeeds);
    return needed != nullptr ? Find(needed->m_szName) : nullptr;
}

// What the process of a check tells the one that started it.
#pragma once

#include <atomic>
#include <string>

#include "host/validate/Outcome.h"
#include "host/validate/SharedObject.h"

// What was told last survives a crash. Made before the fork, written by the child, read when the child has ended.
class CReportPage {
public:
    // The child's part. Texts are cut to what the page holds.
    void TellStep(const std::string& step);
    void TellOutcome(const SOutcome& outcome);

    bool HasOutcome() const;
    SOutcome GetOutcome() const;

    // What the child was doing; empty before the first step.
    std::string GetStep() const;

private:
    struct SPage {
        std::atomic<bool> m_bDone{false};
        EVerdict m_eVerdict = EVerdict::Passed;
        double m_fMilliseconds = 0;
        char m_szStep[1024] = "";
        char m_szSeen[16384] = "";
    };

    CSharedObject<SPage> m_pPage;
};

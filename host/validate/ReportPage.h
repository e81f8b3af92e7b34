// What the process of a check tells the one that started it.
#pragma once

#include <string>

#include "host/validate/Outcome.h"

// A page of memory that both processes share: what was told last survives a crash. Made before the fork, written by the
// child, read when the child has ended.
class CReportPage {
public:
    // Throws CFailure when memory runs out.
    CReportPage();
    ~CReportPage();

    CReportPage(const CReportPage&) = delete;
    CReportPage& operator=(const CReportPage&) = delete;

    // The child's part. Texts are cut to what the page holds.
    void TellStep(const std::string& step);
    void TellOutcome(const SOutcome& outcome);

    bool HasOutcome() const;
    SOutcome GetOutcome() const;

    // What the child was doing; empty before the first step.
    std::string GetStep() const;

private:
    struct SPage;
    SPage* m_pPage;
};

// What the process of a check tells the one that started it.
#include "host/validate/ReportPage.h"

#include <cstdio>

namespace {

template <std::size_t kSize>
void CopyText(char (&target)[kSize], const std::string& text) {
    std::snprintf(target, kSize, "%s", text.c_str());
}

}  // namespace

void CReportPage::TellStep(const std::string& step) { CopyText(m_pPage->m_szStep, step); }

void CReportPage::TellOutcome(const SOutcome& outcome) {
    m_pPage->m_eVerdict = outcome.m_eVerdict;
    m_pPage->m_fMilliseconds = outcome.m_fMilliseconds;
    CopyText(m_pPage->m_szSeen, outcome.m_strSeen);
    m_pPage->m_bDone = true;
}

bool CReportPage::HasOutcome() const { return m_pPage->m_bDone; }

SOutcome CReportPage::GetOutcome() const { return {m_pPage->m_eVerdict, m_pPage->m_szSeen, m_pPage->m_fMilliseconds}; }

std::string CReportPage::GetStep() const { return m_pPage->m_szStep; }

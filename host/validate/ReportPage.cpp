// What the process of a check tells the one that started it.
#include "host/validate/ReportPage.h"

#include <sys/mman.h>

#include <atomic>
#include <cstdio>
#include <new>

#include "host/Failure.h"

namespace {

template <std::size_t kSize>
void CopyText(char (&target)[kSize], const std::string& text) {
    std::snprintf(target, kSize, "%s", text.c_str());
}

}  // namespace

struct CReportPage::SPage {
    std::atomic<bool> m_bDone{false};
    EVerdict m_eVerdict = EVerdict::Passed;
    double m_fMilliseconds = 0;
    char m_szStep[1024] = "";
    char m_szSeen[16384] = "";
};

CReportPage::CReportPage() : m_pPage(nullptr) {
    void* const memory = mmap(nullptr, sizeof(SPage), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) throw CFailure("validate", "not enough memory");
    m_pPage = new (memory) SPage;
}

CReportPage::~CReportPage() { munmap(m_pPage, sizeof(SPage)); }

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

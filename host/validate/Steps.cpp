// What this process is calling.
#include "host/validate/Steps.h"

#include "host/validate/ReportPage.h"

namespace {

CReportPage* g_pPage = nullptr;

}  // namespace

void TellStepsTo(CReportPage* page) { g_pPage = page; }

void TellStep(const std::string& step) {
    if (g_pPage != nullptr) g_pPage->TellStep(step);
}

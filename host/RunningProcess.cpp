// A stream between Start and End.
#include "host/RunningProcess.h"

#include <utility>

CRunningProcess::CRunningProcess(CComPtr<IProcess> process) : m_pProcess(std::move(process)) {}

CRunningProcess::~CRunningProcess() {
    if (!m_bStarted) return;
    try {
        m_pProcess->End(nullptr);
    } catch (...) {
        // A decoder without an aggregator around it; the failure that led here is the one to report.
    }
}

CRunningProcess::CRunningProcess(CRunningProcess&& other) noexcept
    : m_pProcess(std::move(other.m_pProcess)), m_bStarted(std::exchange(other.m_bStarted, false)) {}

CRunningProcess& CRunningProcess::operator=(CRunningProcess&& other) noexcept {
    m_pProcess.Swap(other.m_pProcess);
    std::swap(m_bStarted, other.m_bStarted);
    return *this;
}

bool CRunningProcess::Start(IStatus** status) { return m_bStarted = m_pProcess->Start(status); }

bool CRunningProcess::End(IStatus** status) {
    m_bStarted = false;
    return m_pProcess->End(status);
}

// A stream between Start and End.
#include "host/RunningProcess.h"

#include <utility>

CRunningProcess::CRunningProcess(CComPtr<IProcess> process) : m_pProcess(std::move(process)) {}

CRunningProcess::~CRunningProcess() {
    // The aggregators end a plug-in's exceptions inside End.
    if (m_bStarted) m_pProcess->End(nullptr);
}

bool CRunningProcess::Start(IStatus** status) { return m_bStarted = m_pProcess->Start(status); }

bool CRunningProcess::End(IStatus** status) {
    m_bStarted = false;
    return m_pProcess->End(status);
}

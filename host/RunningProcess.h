// A stream between Start and End.
#pragma once

#include "com/ComPtr.h"
#include "stream/Process.h"

// Ends a started stream when the way out is an exception. One thread. [stream-thread]
class CRunningProcess {
public:
    CRunningProcess() = default;
    explicit CRunningProcess(CComPtr<IProcess> process);
    ~CRunningProcess();

    CRunningProcess(CRunningProcess&& other) noexcept;
    CRunningProcess& operator=(CRunningProcess&& other) noexcept;

    bool Start(IStatus** status);

    // Once after a successful Start.
    bool End(IStatus** status);

private:
    CComPtr<IProcess> m_pProcess;
    bool m_bStarted = false;
};

// Auto-reset and manual-reset event on a semaphore with a maximum of 1.
#include "portable/PosixEvent.h"

CPosixEvent::CPosixEvent(int initialState, int manualReset) : CPosixSemaphore(1, 1), m_nManualReset(manualReset) {
    if (initialState == 0) ResetEvent();
}

CPosixEvent::~CPosixEvent() = default;

int CPosixEvent::SetEvent() { return Unlock(); }

int CPosixEvent::ResetEvent() { return Lock(0); }

int CPosixEvent::WaitForEvent(unsigned int timeoutMs) {
    const int signalled = Lock(timeoutMs);
    if (signalled != 0 && m_nManualReset != 0) Unlock();
    return signalled;
}

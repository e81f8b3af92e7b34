// Auto-reset and manual-reset event.
#pragma once

#include "portable/PosixSemaphore.h"

// Signalled while the count of the underlying semaphore is 1. [any thread]
// `Lock` and `Unlock` consume and give the signal even of a manual-reset event; only `WaitForEvent` honours the flag.
class KELO_EXPORT CPosixEvent : public CPosixSemaphore {
public:
    // Any non-zero `initialState` starts signalled; a `manualReset` of 0 lets one wait through per signal.
    CPosixEvent(int initialState, int manualReset);
    ~CPosixEvent() override;

    // 1, also when the event is signalled already.
    int SetEvent();

    // 1 when the event was signalled, 0 when it was not.
    int ResetEvent();

    // 1 signalled, 0 timed out. A manual-reset event is signalled again at once, so that waiters pass one by one.
    int WaitForEvent(unsigned int timeoutMs);

private:
    int m_nManualReset;
};

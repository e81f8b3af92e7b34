// The absolute deadline of a timed wait.
#pragma once

#include <sys/time.h>
#include <time.h>

// `now` plus `timeoutMs` on the wall clock.
// Only nanoseconds above 1,000,000,000 are carried; exactly 1,000,000,000 stays as it is: deliberate.
constexpr timespec DeadlineAfter(const timeval& now, unsigned int timeoutMs) {
    constexpr long kNanosecondsPerSecond = 1000000000L;
    timespec deadline{};
    deadline.tv_sec = now.tv_sec + static_cast<time_t>(timeoutMs / 1000);
    deadline.tv_nsec = now.tv_usec * 1000L + static_cast<long>(timeoutMs % 1000) * 1000000L;
    if (deadline.tv_nsec > kNanosecondsPerSecond) {
        deadline.tv_sec += 1;
        deadline.tv_nsec -= kNanosecondsPerSecond;
    }
    return deadline;
}

// The deadline of a wait that begins at this moment.
inline timespec DeadlineFromNow(unsigned int timeoutMs) {
    timeval now{};
    gettimeofday(&now, nullptr);
    return DeadlineAfter(now, timeoutMs);
}

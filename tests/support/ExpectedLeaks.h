// Objects that a test leaves behind on purpose.
#pragma once

// Present only under a leak checker.
extern "C" void __lsan_disable() __attribute__((weak));
extern "C" void __lsan_enable() __attribute__((weak));

// What this thread allocates during its life may leak: the contract leaves it behind, or a foreign library does.
class CExpectedLeaks {
public:
    CExpectedLeaks() {
        if (__lsan_disable != nullptr) __lsan_disable();
    }
    ~CExpectedLeaks() {
        if (__lsan_enable != nullptr) __lsan_enable();
    }

    CExpectedLeaks(const CExpectedLeaks&) = delete;
    CExpectedLeaks& operator=(const CExpectedLeaks&) = delete;
};

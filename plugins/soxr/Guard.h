// Keeps exceptions inside the plug-in.
#pragma once

#include <exception>
#include <new>

#include "com/StatusObject.h"

// Stores a description where the caller asked for one and memory allows it.
inline void Describe(IStatus** status, const char* text) noexcept {
    try {
        ReportStatus(status, text);
    } catch (...) {
        if (status != nullptr) *status = nullptr;
    }
}

// Runs `work`, which returns bool; an exception becomes false and a description. [any thread]
template <typename TWork>
bool Guarded(IStatus** status, TWork work) noexcept {
    try {
        return work();
    } catch (const std::bad_alloc&) {
        Describe(status, "out of memory");
    } catch (const std::exception& failure) {
        Describe(status, failure.what());
    } catch (...) {
        Describe(status, "unknown failure");
    }
    return false;
}

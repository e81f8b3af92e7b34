// Refusals that name the file, and the guard that keeps exceptions inside the plug-in.
#pragma once

#include <cerrno>
#include <exception>
#include <string>

#include "com/StatusObject.h"

// Stores "<file name>: <reason>" where the caller asked for a status. Always false.
bool Refuse(IStatus** status, const std::string& path, const std::string& reason);

// The system's text for an errno value.
std::string SystemReason(int error);

// Runs an operation of the plug-in's border; an exception becomes false with a status.
template <typename TOperation>
bool Guarded(IStatus** status, TOperation operation) noexcept {
    try {
        return operation();
    } catch (const std::bad_alloc&) {
    } catch (const std::exception& exception) {
        try {
            ReportStatus(status, exception.what());
            return false;
        } catch (...) {
        }
    } catch (...) {
    }
    try {
        ReportStatus(status, static_cast<unsigned int>(ENOMEM));
    } catch (...) {
    }
    return false;
}

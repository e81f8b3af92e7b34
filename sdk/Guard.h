// Keeps exceptions inside the plug-in: what an author throws becomes false and a status.
#pragma once

#include <cerrno>
#include <exception>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>

#include "com/StatusObject.h"

// Ends an operation; `reason` is what a person reads, without the name of the file.
[[noreturn]] inline void Refuse(const std::string& reason) { throw std::runtime_error(reason); }

// Ends an operation because an argument is null or a size is 0.
class CBadArgument final : public std::exception {
public:
    // The status is AE_BAD_ARGUMENT, without words.
    const char* what() const noexcept override { return "bad argument"; }
};

// The system's words for an errno value.
inline std::string SystemReason(int error) { return std::generic_category().message(error); }

// "song.wav" of "/music/song.wav", a part of `path`: statuses name the file as a person knows it.
inline std::string_view FileNameOf(std::string_view path) {
    const std::string_view name = path.substr(path.rfind('/') + 1);
    return name.empty() ? path : name;
}

// Stores "<subject>: <reason>", or the reason alone without a subject, where the caller asked for a status. [any
// thread]
inline void Describe(IStatus** status, std::string_view subject, const char* reason) noexcept {
    if (status == nullptr) return;
    try {
        ReportStatus(status, subject.empty() ? reason : (std::string(subject) + ": " + reason).c_str());
    } catch (...) {
        *status = nullptr;
    }
}

// Runs an operation of the plug-in's border, which returns bool; an exception becomes false and a status about
// `subject`, which may be empty. [any thread]
template <typename TOperation>
bool Guarded(IStatus** status, std::string_view subject, TOperation operation) noexcept {
    try {
        return operation();
    } catch (const CBadArgument&) {
        try {
            ReportStatus(status, AE_BAD_ARGUMENT);
        } catch (...) {
        }
    } catch (const std::bad_alloc&) {
        try {
            ReportStatus(status, static_cast<unsigned int>(ENOMEM));
        } catch (...) {
        }
    } catch (const std::exception& exception) {
        Describe(status, subject, exception.what());
    } catch (...) {
        Describe(status, subject, "unknown failure");
    }
    return false;
}

// What ends a command: one line for the person and an exit status.
#pragma once

#include <stdexcept>
#include <string>

constexpr int kExitFailed = 1;
constexpr int kExitWrongUsage = 2;

// Thrown anywhere in the host, reported once.
class CFailure : public std::runtime_error {
public:
    // `subject` is the file, directory or option that failed; `addition` ends the line and is no part of the reason.
    CFailure(const std::string& subject, const std::string& reason, const std::string& addition = "")
        : std::runtime_error(subject + ": " + reason + addition), m_strSubject(subject), m_strReason(reason) {}

    const std::string& GetSubject() const { return m_strSubject; }

    // What several subjects may have in common.
    const std::string& GetReason() const { return m_strReason; }

private:
    std::string m_strSubject;
    std::string m_strReason;
};

// Options that do not go together; the exit status is kExitWrongUsage.
class CWrongUsage : public CFailure {
public:
    CWrongUsage(const std::string& option, const std::string& reason) : CFailure(option, reason) {}
};

// What ends a command: one line for the person and an exit status.
#pragma once

#include <stdexcept>
#include <string>

constexpr int kExitFailed = 1;
constexpr int kExitWrongUsage = 2;

// Thrown anywhere in the host, reported once by main.
class CFailure : public std::runtime_error {
public:
    // `subject` is the file, directory or option that failed.
    CFailure(const std::string& subject, const std::string& reason) : std::runtime_error(subject + ": " + reason) {}
};

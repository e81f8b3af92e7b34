// Runs a program and captures what it says.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

#include "tests/support/ScratchDirectory.h"

struct SRunResult {
    // The exit status, or minus the signal that ended the program.
    int m_nExit = 0;
    std::string m_strOut;
    std::string m_strErr;
};

// A program that was started in the C locale; its output goes to files of a scratch directory of its own.
class CRunningProgram {
public:
    // `directory` is where it starts; empty for the test's own.
    explicit CRunningProgram(const std::vector<std::string>& command, const std::string& directory = "");

    pid_t GetId() const { return m_id; }

    SRunResult Wait();

private:
    CScratchDirectory m_scratch;
    pid_t m_id = -1;
};

SRunResult RunProgram(const std::vector<std::string>& command, const std::string& directory = "");

std::string ReadWholeFile(const std::string& path);

// Whether `text` is one line that ends with its line break.
bool IsOneLine(const std::string& text);

// The names in a directory, sorted.
std::vector<std::string> NamesIn(const std::string& directory);

// Runs a program and captures what it says.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "tests/support/ScratchDirectory.h"

struct SRunResult {
    // The exit status, or minus the signal that ended the program.
    int m_nExit = 0;
    std::string m_strOut;
    std::string m_strErr;
};

// A program that was started in the C locale with default signal actions; its output goes to files of a scratch
// directory of its own. The destructor kills it when it still runs.
class CRunningProgram {
public:
    // `directory` is where it starts; empty for the test's own.
    explicit CRunningProgram(const std::vector<std::string>& command, const std::string& directory = "");
    ~CRunningProgram();

    CRunningProgram(const CRunningProgram&) = delete;
    CRunningProgram& operator=(const CRunningProgram&) = delete;

    // Nothing happens to a program that has ended.
    void Signal(int signal);

    // False where the kernel does not tell what another process waits for, ptrace(2) on access modes.
    bool CanCountOpening();

    // How many of its threads are waiting in a call that opens a file, as for the other end of a pipe.
    int CountOpening() const;

    // Whether it has ended after at most `limit`.
    bool WaitFor(std::chrono::milliseconds limit);

    // Throws when it does not end within a minute.
    SRunResult Wait();

private:
    // Until its end has been noticed the number is the program's own, even when it has ended.
    bool HasEnded();

    CScratchDirectory m_scratch;
    pid_t m_id = -1;
    bool m_bEnded = false;
    int m_nStatus = 0;
};

SRunResult RunProgram(const std::vector<std::string>& command, const std::string& directory = "");

// Whether it becomes true within half a minute.
bool WaitUntil(const std::function<bool()>& condition);

std::string ReadWholeFile(const std::string& path);

// Whether `text` is one line that ends with its line break.
bool IsOneLine(const std::string& text);

// The names in a directory, sorted.
std::vector<std::string> NamesIn(const std::string& directory);

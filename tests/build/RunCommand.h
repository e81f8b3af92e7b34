// Runs a command of the build's tools and collects what it prints.
#pragma once

#include <string>
#include <string_view>
#include <vector>

struct SCommandResult {
    int m_nStatus;  // as wait(2) reports it, 0 for success
    std::string m_strOutput;
};

// `command` is a shell command; its messages run in English.
SCommandResult RunCommand(const std::string& command);

// The word with everything in it taken literally by the shell.
std::string Quoted(std::string_view word);

// The lines of a text, without empty ones.
std::vector<std::string> Lines(const std::string& text);

// The lines of a file that are neither empty nor comments behind a number sign; throws when there is no such file.
std::vector<std::string> ListedIn(const std::string& path);

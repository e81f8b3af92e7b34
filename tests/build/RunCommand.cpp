// Runs a command of the build's tools and collects what it prints.
#include "tests/build/RunCommand.h"

#include <stdio.h>

#include <array>
#include <fstream>
#include <memory>
#include <sstream>
#include <stdexcept>

SCommandResult RunCommand(const std::string& command) {
    FILE* const pipe = popen(("export LC_ALL=C; " + command).c_str(), "r");
    if (pipe == nullptr) throw std::runtime_error("cannot run " + command);
    std::string output;
    std::array<char, 4096> buffer;
    while (const std::size_t count = fread(buffer.data(), 1, buffer.size(), pipe)) output.append(buffer.data(), count);
    return {pclose(pipe), output};
}

std::string Quoted(std::string_view word) {
    std::string quoted = "'";
    for (const char character : word) quoted += character == '\'' ? std::string("'\\''") : std::string(1, character);
    return quoted + "'";
}

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        if (!line.empty()) lines.push_back(line);
    }
    return lines;
}

std::vector<std::string> ListedIn(const std::string& path) {
    std::ifstream file(path);
    if (!file) throw std::runtime_error("cannot read " + path);
    std::stringstream text;
    text << file.rdbuf();
    std::vector<std::string> listed;
    for (std::string& line : Lines(text.str())) {
        if (line[0] != '#') listed.push_back(std::move(line));
    }
    return listed;
}

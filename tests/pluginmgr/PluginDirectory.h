// A plug-in directory of a test's own, filled with fixture plug-ins, and the log that they write.
#pragma once

#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <string>
#include <vector>

#include "tests/support/ScratchDirectory.h"

class CPluginDirectory {
public:
    CPluginDirectory(std::initializer_list<const char*> fixtures) {
        std::filesystem::create_directory(m_scratch / "plugins");
        for (const char* const fixture : fixtures) Add(fixture, std::string(fixture) + ".so");
        setenv("KELO_FIXTURE_LOG", LogPath().c_str(), 1);
    }

    // Copies a fixture under a name of its own.
    void Add(const std::string& fixture, const std::string& name) const {
        std::filesystem::copy_file(std::filesystem::path(KELO_FIXTURE_DIRECTORY) / (fixture + ".so"), File(name));
    }

    std::string Path() const { return m_scratch / "plugins"; }
    std::string File(const std::string& name) const { return Path() + "/" + name; }

    std::vector<std::string> Log() const {
        std::ifstream file(LogPath());
        std::vector<std::string> lines;
        for (std::string line; std::getline(file, line);) lines.push_back(line);
        return lines;
    }
    void ClearLog() const { std::filesystem::remove(LogPath()); }

private:
    std::string LogPath() const { return m_scratch / "log"; }

    CScratchDirectory m_scratch;
};

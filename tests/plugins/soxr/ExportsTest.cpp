// What the shared object shows.
#include <cstdio>
#include <set>
#include <sstream>

#include "tests/plugins/soxr/PluginUnderTest.h"

namespace {

std::string OutputOf(const std::string& command) {
    FILE* const pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) return {};
    std::string output;
    char part[4096];
    while (std::fgets(part, sizeof part, pipe) != nullptr) output += part;
    return pclose(pipe) == 0 ? output : std::string();
}

TEST(SoxrExports, OnlyTheEntrySymbolsAreShown) {
    std::istringstream lines(OutputOf(KELO_NM " -D --defined-only '" KELO_SOXR_PLUGIN "'"));
    std::set<std::string> names;
    for (std::string line; std::getline(lines, line);) names.insert(line.substr(line.rfind(' ') + 1));
    EXPECT_EQ(names, (std::set<std::string>{"KELO_PLUGIN_GetPrimaryAudioObject", "KELO_PLUGIN_ReadyToFinish"}));
}

TEST(SoxrExports, NothingOfGtkIsNeeded) {
    const std::string dynamic = OutputOf(KELO_READELF " -d '" KELO_SOXR_PLUGIN "'");
    EXPECT_NE(dynamic.find("[libsoxr.so.0]"), std::string::npos) << dynamic;
    for (const char* const library : {"libgtk", "libgdk", "libglib", "libgobject"}) {
        EXPECT_EQ(dynamic.find(library), std::string::npos) << library;
    }
}

TEST(SoxrExports, FileIsNamedAfterThePlugin) {
    const std::string path = KELO_SOXR_PLUGIN;
    EXPECT_EQ(path.substr(path.rfind('/') + 1), "soxr.so");
}

}  // namespace

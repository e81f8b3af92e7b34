// The dynamic section of the built library and the names it stands under.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <regex>
#include <string>
#include <vector>

#include "tests/build/RunCommand.h"

namespace {

namespace fs = std::filesystem;

// The values of one kind of entry: "SONAME", "NEEDED".
std::vector<std::string> DynamicEntries(const std::string& kind) {
    static const std::regex kEntry("\\(([A-Z]+)\\).*\\[(.*)\\]");
    std::vector<std::string> values;
    for (const std::string& line : Lines(RunCommand(KELO_READELF " -d " + Quoted(KELO_LIBRARY)).m_strOutput)) {
        std::smatch parts;
        if (std::regex_search(line, parts, kEntry) && parts[1] == kind) values.push_back(parts[2]);
    }
    return values;
}

TEST(Soname, CarriesTheVersionOfTheInterface) {
    EXPECT_THAT(DynamicEntries("SONAME"), testing::ElementsAre("libKeloAudioPluginMgr.so.0"));
}

TEST(Soname, IsTheNameOfTheFile) { EXPECT_EQ(fs::path(KELO_LIBRARY).filename(), "libKeloAudioPluginMgr.so.0"); }

TEST(Soname, HasTheLinkForTheLinkerBesideIt) {
    const fs::path link = fs::path(KELO_LIBRARY).parent_path() / "libKeloAudioPluginMgr.so";
    ASSERT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(fs::read_symlink(link), "libKeloAudioPluginMgr.so.0");
    EXPECT_TRUE(fs::equivalent(link, KELO_LIBRARY));
}

TEST(NeededLibraries, HoldNoWindowToolkit) {
    const std::vector<std::string> needed = DynamicEntries("NEEDED");
    EXPECT_THAT(needed, testing::Contains(testing::StartsWith("libc.so.")));
    EXPECT_THAT(needed, testing::Each(testing::Not(testing::ContainsRegex("libg(tk|dk|lib|object|module|io)"))));
}

}  // namespace

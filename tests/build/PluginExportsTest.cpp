// The symbols of the reference plug-ins: their two entry points and nothing else.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/build/ExportedSymbols.h"
#include "tests/build/RunCommand.h"

namespace {

class PluginExports : public testing::TestWithParam<std::string> {};

// Anything else might be taken from another library of the process, or by one, and a symbol that is unique in the
// process would keep the plug-in in memory for good.
TEST_P(PluginExports, AreTheTwoEntryPoints) {
    std::vector<std::string> names;
    for (const SExportedSymbol& symbol : ReadExports(GetParam())) {
        names.push_back(symbol.m_strMangled);
        EXPECT_EQ(symbol.m_chKind, 'T') << symbol.m_strName;
    }
    EXPECT_THAT(names, testing::UnorderedElementsAre("KELO_PLUGIN_GetPrimaryAudioObject", "KELO_PLUGIN_ReadyToFinish"));
}

GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(PluginExports);
INSTANTIATE_TEST_SUITE_P(Plugins, PluginExports, testing::ValuesIn(ListedIn(KELO_PLUGIN_LIST)),
                         [](const auto& test) { return std::filesystem::path(test.param).stem().string(); });

}  // namespace

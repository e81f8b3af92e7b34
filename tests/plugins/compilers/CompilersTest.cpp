// A plug-in works in a host whichever compilers built the two: exceptions, statuses, strings by value, aggregation and
// structures by value pass between them.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <tuple>
#include <vector>

#include "tests/build/RunCommand.h"
#include "tests/support/ScratchDirectory.h"

namespace {

constexpr bool kBuilt = KELO_OBSTACLE[0] == '\0';

// The directories of the builds, each of one compiler and level.
std::vector<std::string> Builds() {
    if (!kBuilt) return {};
    return {"GccO0", "GccO2", "ClangO0", "ClangO2"};
}

std::string In(const std::string& build, const char* name) {
    return std::string(KELO_FOREIGN_DIRECTORY "/") + build + "/" + name;
}

std::string Transcript() {
    std::ifstream file(KELO_TRANSCRIPT);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(Compilers, BuiltTheHostsAndPlugins) {
    if (!kBuilt) GTEST_SKIP() << KELO_OBSTACLE;
    for (const std::string& build : Builds()) {
        EXPECT_TRUE(std::filesystem::exists(In(build, "host"))) << build;
        EXPECT_TRUE(std::filesystem::exists(In(build, "plugins/fixture.so"))) << build;
    }
}

class Pair : public testing::TestWithParam<std::tuple<std::string, std::string>> {};

TEST_P(Pair, WorksTogether) {
    const auto& [host, plugin] = GetParam();
    const CScratchDirectory scratch;
    const SCommandResult result = RunCommand(Quoted(In(host, "host")) + " " + Quoted(In(plugin, "plugins")) + " " +
                                             Quoted(scratch.Path().string()) + " 2>&1");
    EXPECT_EQ(result.m_nStatus, 0);
    EXPECT_EQ(result.m_strOutput, Transcript());
}

GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(Pair);
INSTANTIATE_TEST_SUITE_P(Compilers, Pair, testing::Combine(testing::ValuesIn(Builds()), testing::ValuesIn(Builds())),
                         [](const auto& test) {
                             return std::get<0>(test.param) + "HostWith" + std::get<1>(test.param) + "Plugin";
                         });

}  // namespace

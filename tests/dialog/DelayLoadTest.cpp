// Jump stubs that are filled at the first use of their library.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

#include "tests/dialog/fixtures/delayed.h"

std::string DelayLoad_fixture();
std::string DelayLoad_absent();
std::string DelayLoad_incomplete();

namespace {

bool IsMapped(const std::string& name) {
    std::ifstream maps("/proc/self/maps");
    return std::string(std::istreambuf_iterator<char>(maps), {}).find(name) != std::string::npos;
}

TEST(DelayLoad, LeavesTheLibraryOutUntilItIsLoaded) {
    EXPECT_FALSE(IsMapped("libkelo_delayed.so"));
    EXPECT_EQ(DelayLoad_fixture(), "");
    EXPECT_TRUE(IsMapped("libkelo_delayed.so"));
}

TEST(DelayLoad, PassesEveryKindOfArgument) {
    ASSERT_EQ(DelayLoad_fixture(), "");
    EXPECT_EQ(kelo_fixture_mix(1, 2, 3, 4, 5, 6, 7, 8, 9, 1), 1987654321.0);
    EXPECT_EQ(kelo_fixture_sum(10, 1., 2., 3., 4., 5., 6., 7., 8., 9., 10.), 55.);
    const SFixtureRecord record = kelo_fixture_record(40);
    EXPECT_EQ(record.m_values[0], 40);
    EXPECT_EQ(record.m_values[3], 43);
}

TEST(DelayLoad, PutsTheLibraryIntoTheGlobalScope) {
    EXPECT_EQ(dlsym(RTLD_DEFAULT, "kelo_fixture_sum"), nullptr);
    ASSERT_EQ(DelayLoad_fixture(), "");
    EXPECT_NE(dlsym(RTLD_DEFAULT, "kelo_fixture_sum"), nullptr);
}

TEST(DelayLoad, MayBeAskedAgain) {
    EXPECT_EQ(DelayLoad_fixture(), "");
    EXPECT_EQ(DelayLoad_fixture(), "");
}

TEST(DelayLoad, NamesALibraryThatIsNotThere) {
    const std::string reason = DelayLoad_absent();
    EXPECT_NE(reason.find("libkelo_absent.so.9"), std::string::npos) << reason;
    EXPECT_EQ(DelayLoad_absent(), reason);
}

TEST(DelayLoad, NamesAFunctionThatTheLibraryLacks) {
    EXPECT_EQ(DelayLoad_incomplete(), "libkelo_delayed.so has no function kelo_fixture_nowhere");
}

}  // namespace

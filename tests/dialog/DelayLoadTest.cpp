// Jump stubs that are filled at a library's first use.
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <future>
#include <string>
#include <vector>

#include "tests/build/RunCommand.h"
#include "tests/dialog/fixtures/delayed.h"

// Generated, one per library.
std::string DelayLoad_whole();
std::string DelayLoad_incomplete();
std::string DelayLoad_absent();
std::string DelayLoad_local();
std::string DelayLoad_nowhere();

namespace {

bool IsLoaded() {
    void* const library = dlopen("libkelo_delayed.so", RTLD_LAZY | RTLD_NOLOAD);
    if (library != nullptr) dlclose(library);
    return library != nullptr;
}

class DelayLoaded : public testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(DelayLoad_whole(), ""); }
};

TEST(DelayLoad, LoadsNothingBeforeItIsAsked) {
    EXPECT_FALSE(IsLoaded());
    EXPECT_EQ(dlsym(RTLD_DEFAULT, "DelayedIntegers"), nullptr) << "the stub itself is nobody else's";
    EXPECT_EQ(DelayLoad_whole(), "");
    EXPECT_TRUE(IsLoaded());
}

TEST(DelayLoad, LinksNothing) {
    const SCommandResult result = RunCommand(KELO_READELF " -d " + Quoted(KELO_DELAY_LOAD_TESTS));
    EXPECT_THAT(result.m_strOutput, testing::HasSubstr("(NEEDED)"));
    EXPECT_THAT(result.m_strOutput, testing::Not(testing::HasSubstr("kelo_delayed")));
}

TEST(DelayLoad, MayBeAskedAgain) {
    EXPECT_EQ(DelayLoad_whole(), "");
    EXPECT_EQ(DelayLoad_whole(), "");
    EXPECT_EQ(DelayedIntegers(1, 2, 3, 4, 5, 6, 7, 8, 9), 123456789);
}

TEST(DelayLoad, MayBeAskedByManyThreads) {
    std::vector<std::future<std::string>> reasons;
    for (int i = 0; i < 8; ++i) reasons.push_back(std::async(std::launch::async, [] { return DelayLoad_whole(); }));
    for (std::future<std::string>& reason : reasons) EXPECT_EQ(reason.get(), "");
}

TEST(DelayLoad, PutsTheLibraryIntoTheGlobalScope) {
    ASSERT_EQ(DelayLoad_whole(), "");
    EXPECT_NE(dlsym(RTLD_DEFAULT, "DelayedIntegers"), nullptr);
    EXPECT_NE(dlsym(RTLD_DEFAULT, "DelayedIntegers"), reinterpret_cast<void*>(&DelayedIntegers));
}

TEST(DelayLoad, NamesALibraryThatIsMissing) {
    EXPECT_THAT(DelayLoad_absent(), testing::HasSubstr("libkelo_absent.so.0: cannot open shared object file"));
    EXPECT_THAT(DelayLoad_absent(), testing::HasSubstr("libkelo_absent.so.0: cannot open shared object file"));
}

TEST(DelayLoad, TakesTheFirstLibraryThatOpens) {
    ASSERT_EQ(DelayLoad_local(), "");
    EXPECT_EQ(DelayedLocal(6), 7);
}

TEST(DelayLoad, KeepsALocalLibraryOutOfTheGlobalScope) {
    ASSERT_EQ(DelayLoad_local(), "");
    EXPECT_TRUE(IsLoaded());
    EXPECT_EQ(dlsym(RTLD_DEFAULT, "DelayedLocal"), nullptr);
}

TEST(DelayLoad, NamesTheFirstOfLibrariesThatAreAllMissing) {
    EXPECT_THAT(DelayLoad_nowhere(), testing::HasSubstr("libkelo_absent.so.0: cannot open shared object file"));
}

TEST(DelayLoad, NamesAFunctionThatIsMissing) {
    EXPECT_EQ(DelayLoad_incomplete(), "libkelo_delayed.so has no function DelayedAbsent");
    EXPECT_EQ(DelayLoad_incomplete(), "libkelo_delayed.so has no function DelayedAbsent");
}

TEST_F(DelayLoaded, PassesIntegersInRegistersAndOnTheStack) {
    EXPECT_EQ(DelayedIntegers(1, 2, 3, 4, 5, 6, 7, 8, 9), 123456789);
}

TEST_F(DelayLoaded, PassesFloatingNumbersInRegistersAndOnTheStack) {
    EXPECT_EQ(DelayedNumbers(1, 1, 1, 1, 1, 1, 1, 1, 1, 1), 1023);
    EXPECT_EQ(DelayedNumbers(0, 0.5, 0, 0, 0, 0, 0, 0, 0, 1), 513);
}

TEST_F(DelayLoaded, PassesBothKindsTogether) { EXPECT_EQ(DelayedMixed(1, 0.5, "four", 0.25F, 100.0L, -3), 102.75L); }

TEST_F(DelayLoaded, ReturnsARecord) {
    const SDelayedRecord record = DelayedRecord(1.5, -7, "third");
    EXPECT_EQ(record.m_dFirst, 1.5);
    EXPECT_EQ(record.m_nSecond, -7);
    EXPECT_STREQ(record.m_szThird, "third");
}

TEST_F(DelayLoaded, PassesVariableArguments) {
    char text[64];
    EXPECT_EQ(
        DelayedFormat(text, sizeof text, "%d %.2f %s %ld %.1f %c %d %.1f", 1, 2.25, "three", 4L, 5.5, '6', 7, 8.5), 26);
    EXPECT_STREQ(text, "1 2.25 three 4 5.5 6 7 8.5");
}

TEST_F(DelayLoaded, CanBeCalledThroughItsAddress) {
    long (*volatile function)(long, long, long, long, long, long, long, long, long) = &DelayedIntegers;
    EXPECT_EQ(function(9, 8, 7, 6, 5, 4, 3, 2, 1), 987654321);
}

TEST_F(DelayLoaded, LetsExceptionsPass) {
    try {
        DelayedThrow(7);
        FAIL() << "nothing was thrown";
    } catch (const int number) {
        EXPECT_EQ(number, 7);
    }
}

}  // namespace

// What makes a memory error of the shipped files harder to exploit, as readelf(1) sees it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <regex>
#include <string>
#include <vector>

#include "tests/build/RunCommand.h"
#include "tests/support/Sanitizers.h"

namespace {

namespace fs = std::filesystem;

// What readelf prints about the file with this option.
std::string Read(const std::string& option, const std::string& file) {
    const SCommandResult result = RunCommand(KELO_READELF " -W " + option + " " + Quoted(file));
    EXPECT_EQ(result.m_nStatus, 0) << file;
    return result.m_strOutput;
}

// The functions that other libraries bring.
std::vector<std::string> ImportsOf(const std::string& file) {
    static const std::regex kImport(" UND ([A-Za-z0-9_]+)");
    std::vector<std::string> names;
    for (const std::string& line : Lines(Read("--dyn-syms", file))) {
        std::smatch parts;
        if (std::regex_search(line, parts, kImport)) names.push_back(parts[1]);
    }
    return names;
}

// The library, the reference plug-ins and keloaudio.
class Hardening : public testing::TestWithParam<std::string> {};

TEST_P(Hardening, TheTablesOfAddressesAreReadOnly) {
    EXPECT_THAT(Read("-l", GetParam()), testing::HasSubstr("GNU_RELRO"));
    EXPECT_THAT(Read("-d", GetParam()), testing::ContainsRegex("\\(FLAGS\\) +BIND_NOW"));
}

TEST_P(Hardening, NoStackIsExecutable) {
    EXPECT_THAT(Read("-l", GetParam()), testing::ContainsRegex("GNU_STACK +(0x[0-9a-f]+ +)+RW +0x"));
}

TEST_P(Hardening, LiesAtAnyAddress) { EXPECT_THAT(Read("-h", GetParam()), testing::ContainsRegex("Type: +DYN ")); }

TEST_P(Hardening, OverrunBuffersOnTheStackAreNoticed) {
    EXPECT_THAT(ImportsOf(GetParam()), testing::Contains("__stack_chk_fail"));
}

// The plug-ins and keloaudio leave such calls to the C++ library.
TEST(LibraryHardening, TheCLibraryChecksKnownSizes) {
    if (support::kSanitized || !KELO_OPTIMISED)
        GTEST_SKIP() << "optimisers know the sizes; sanitizers check them themselves";
    EXPECT_THAT(ImportsOf(KELO_LIBRARY), testing::Contains(testing::MatchesRegex("__[a-z]+_chk")));
}

INSTANTIATE_TEST_SUITE_P(Shipped, Hardening, testing::ValuesIn(ListedIn(KELO_SHIPPED_LIST)), [](const auto& test) {
    const std::string name = fs::path(test.param).filename();
    return name.substr(0, name.find('.'));
});

}  // namespace

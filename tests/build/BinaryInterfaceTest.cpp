// The binary interface of the built library against that of the last release.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>

#include "tests/build/RunCommand.h"
#include "tests/support/ScratchDirectory.h"

namespace {

constexpr char kReleased[] = KELO_ABI_DIRECTORY "/libKeloAudioPluginMgr.so.0.abi";

constexpr char kWhatToDo[] =
    "\nPrograms and plug-ins that were built against the last release would break on this library.\n"
    "Take the change back, or give what it adds a place of its own: a new interface with a new identity, a new\n"
    "function (doc/binary-contract.md). Only a release takes a new interface for the old one, with abi/update.\n";

std::string ContentOf(const std::string& path) {
    std::ifstream file(path);
    if (!file) throw std::runtime_error("cannot read " + path);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

// What the second dump lacks of the first, or has otherwise; additions are no difference.
SCommandResult Difference(const std::string& released, const std::string& current) {
    return RunCommand("abidiff --no-added-syms " + Quoted(released) + " " + Quoted(current) + " 2>&1");
}

TEST(BinaryInterface, IsStillThatOfTheRelease) {
    if (!KELO_ABI_COMPARABLE) {
        GTEST_SKIP() << "dumps are compared where they are made: in an optimised build with debug information by g++ "
                        "(the preset ci), without sanitizers";
    }
    const CScratchDirectory scratch;
    const std::string current = scratch / "current.abi";
    const SCommandResult dump =
        RunCommand(Quoted(KELO_ABI_DIRECTORY "/dump") + " " + Quoted(KELO_LIBRARY) + " 2>&1 >" + Quoted(current));
    ASSERT_EQ(dump.m_nStatus, 0) << dump.m_strOutput << "abidw comes with the package abigail-tools";
    const SCommandResult difference = Difference(kReleased, current);
    EXPECT_EQ(difference.m_nStatus, 0) << difference.m_strOutput << kWhatToDo;
}

TEST(BinaryInterface, OfTheReleaseCarriesTheLibrarysNameAndNoPlaceOfItsBuild) {
    const std::string released = ContentOf(kReleased);
    EXPECT_THAT(released, testing::HasSubstr(" soname='libKeloAudioPluginMgr.so.0'"));
    EXPECT_THAT(released, testing::HasSubstr(" path='com/Aggregatable.cpp'"));
    for (const char* const place : {"='/", "='..", "comp-dir-path"}) {
        EXPECT_THAT(released, testing::Not(testing::HasSubstr(place)));
    }
}

// The released dump with one place of it written otherwise.
struct SBreach {
    const char* m_pszName;
    const char* m_pszReleased;
    const char* m_pszBroken;
    const char* m_pszTold;
};

void PrintTo(const SBreach& breach, std::ostream* out) { *out << breach.m_pszName; }

const SBreach kBreaches[] = {
    {"ASlotThatMoves", "vtable-offset='3'>\n        <function-decl name='GetName' mangled-name='_ZN15IAudioComponent",
     "vtable-offset='5'>\n        <function-decl name='GetName' mangled-name='_ZN15IAudioComponent",
     "IAudioComponent::GetName() changed from 3 to 5"},
    {"AMemberThatMoves", "layout-offset-in-bits='320'>\n        <var-decl name='m_pAggregator'",
     "layout-offset-in-bits='384'>\n        <var-decl name='m_pAggregator'", "m_pAggregator"},
    {"AClassThatGrows", "<class-decl name='CStatus' size-in-bits='704'",
     "<class-decl name='CStatus' size-in-bits='768'", "type size changed from 704 to 768"},
    {"ASymbolThatGoes", "_Z9MatchMaskPKcS0_i", "_Z9MatchNamePKcS0_i", "1 Removed function"},
    {"AnErrorCodeThatChanges", "<enumerator name='AE_NO_DECODER' value='2147483652'/>",
     "<enumerator name='AE_NO_DECODER' value='2147483653'/>", "AE_NO_DECODER"},
    {"ANameOfTheLibraryThatChanges", "soname='libKeloAudioPluginMgr.so.0'", "soname='libKeloAudioPluginMgr.so.1'",
     "SONAME changed"},
};

class Breach : public testing::TestWithParam<SBreach> {};

TEST_P(Breach, IsFound) {
    std::string broken = ContentOf(kReleased);
    const std::string from = GetParam().m_pszReleased;
    const std::string to = GetParam().m_pszBroken;
    ASSERT_NE(broken.find(from), std::string::npos) << "the dump of the release does not hold " << from;
    for (std::size_t at = 0; (at = broken.find(from, at)) != std::string::npos; at += to.size()) {
        broken.replace(at, from.size(), to);
    }
    const CScratchDirectory scratch;
    const SCommandResult difference = Difference(kReleased, scratch.Write("broken.abi", broken));
    EXPECT_NE(difference.m_nStatus, 0);
    EXPECT_THAT(difference.m_strOutput, testing::HasSubstr(GetParam().m_pszTold));
}

INSTANTIATE_TEST_SUITE_P(BinaryInterface, Breach, testing::ValuesIn(kBreaches),
                         [](const auto& test) { return std::string(test.param.m_pszName); });

TEST(BinaryInterface, DoesNotDifferFromItself) { EXPECT_EQ(Difference(kReleased, kReleased).m_nStatus, 0); }

}  // namespace

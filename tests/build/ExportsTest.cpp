// The symbols of the built library: everything that hosts and plug-ins link against, and nothing else.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <set>
#include <string>
#include <vector>

#include "tests/build/ExportedSymbols.h"
#include "tests/build/RunCommand.h"

namespace {

std::set<std::string> Expected() {
    const std::vector<std::string> listed = ListedIn(KELO_EXPORTED_SYMBOL_LIST);
    return {listed.begin(), listed.end()};
}

std::vector<std::string> Exported() {
    std::vector<std::string> names;
    for (const SExportedSymbol& symbol : ReadExports(KELO_LIBRARY)) names.push_back(symbol.m_strName);
    return names;
}

std::vector<std::string> NamesWith(const std::vector<std::string>& names, const std::string& part) {
    std::vector<std::string> found;
    std::copy_if(names.begin(), names.end(), std::back_inserter(found),
                 [&](const std::string& name) { return name.find(part) != std::string::npos; });
    return found;
}

TEST(Exports, HoldEverySymbolOfTheContract) {
    const std::vector<std::string> names = Exported();
    const std::set<std::string> exported(names.begin(), names.end());
    const std::set<std::string> expected = Expected();
    std::vector<std::string> missing;
    std::set_difference(expected.begin(), expected.end(), exported.begin(), exported.end(),
                        std::back_inserter(missing));
    EXPECT_THAT(missing, testing::IsEmpty());
}

TEST(Exports, HoldNothingForeign) { EXPECT_THAT(FindForeignNames(Exported(), Expected()), testing::IsEmpty()); }

TEST(Exports, HoldNothingOfTheStandardLibrary) {
    EXPECT_THAT(NamesWith(Exported(), "std::"), testing::IsEmpty());
    EXPECT_THAT(NamesWith(Exported(), "__gnu"), testing::IsEmpty());
}

TEST(Exports, HoldNothingOfUnnamedNamespaces) {
    EXPECT_THAT(NamesWith(Exported(), "(anonymous namespace)"), testing::IsEmpty());
}

// A unique symbol would keep whatever resolves it in memory for good.
TEST(Exports, HoldNoUniqueSymbol) {
    std::vector<std::string> unique;
    for (const SExportedSymbol& symbol : ReadExports(KELO_LIBRARY)) {
        if (symbol.m_chKind == 'u') unique.push_back(symbol.m_strMangled);
    }
    EXPECT_THAT(unique, testing::IsEmpty());
}

TEST(Exports, EntryPointAndLoaderFunctionsAreUnmangled) {
    std::set<std::string> mangled;
    for (const SExportedSymbol& symbol : ReadExports(KELO_LIBRARY)) mangled.insert(symbol.m_strMangled);
    EXPECT_THAT(mangled, testing::IsSupersetOf({"GetAudioPluginMgr", "LoadLibrary", "GetProcAddress", "FreeLibrary"}));
}

TEST(Exports, GlobalsAreWritableData) {
    const std::set<std::string> kGlobals = {"m_sectPMCreation", "g_pAudioPluginMgr",
                                            "g_lAggregators",   "g_AggregatorsMutex",
                                            "starttime",        "CPortableFile::m_pErrorReporter"};
    std::set<std::string> found;
    for (const SExportedSymbol& symbol : ReadExports(KELO_LIBRARY)) {
        if (kGlobals.count(symbol.m_strName) == 0) continue;
        found.insert(symbol.m_strName);
        EXPECT_THAT(std::string("BD"), testing::HasSubstr(std::string(1, symbol.m_chKind))) << symbol.m_strName;
    }
    EXPECT_EQ(found, kGlobals);
}

TEST(Exports, TemplateInstancesAreExactlyTheListed) {
    const std::set<std::string> expected = Expected();
    const std::vector<std::string> listed(expected.begin(), expected.end());
    for (const char* const name : {"UnicodeStringLen<", "ConvertUnicodeGeneric<", "ConvertUnicodeWithCodePage<",
                                   "ConvertUnicode<", "ConvertUnicodeToMultiByte<", "ConvertUnicodeFromMultiByte<",
                                   "UnicodeStrCpy<", "UnicodeStrCat<", "UnicodeStringCmp<", "CBasicString<"}) {
        EXPECT_THAT(NamesWith(listed, name), testing::Not(testing::IsEmpty())) << name;
    }
    EXPECT_THAT(NamesWith(Exported(), " ConvertUnicode"),
                testing::UnorderedElementsAreArray(NamesWith(listed, " ConvertUnicode")));
    EXPECT_THAT(NamesWith(Exported(), " UnicodeStr"),
                testing::UnorderedElementsAreArray(NamesWith(listed, " UnicodeStr")));
    EXPECT_THAT(NamesWith(Exported(), "CBasicString<unsigned short>"), testing::IsEmpty());
    EXPECT_THAT(NamesWith(Exported(), "CBasicString<wchar_t>"), testing::IsEmpty());
}

TEST(Exports, TimesHaveNoGreaterOrEqual) {
    EXPECT_THAT(NamesWith(Exported(), "CPortableTime::operator>="), testing::IsEmpty());
}

TEST(ForeignNames, AreThoseOutsideTheClassesOfTheContract) {
    const std::set<std::string> expected = {"CStatus::AddRef()", "IsEqualIID(unsigned long, unsigned long)"};
    const std::vector<std::string> fine = {"CStatus::AddRef()",
                                           "CStatus::Further(int)",
                                           "vtable for CStatus",
                                           "typeinfo name for CStatus",
                                           "typeinfo for CStatus",
                                           "IsEqualIID(unsigned long, unsigned long)",
                                           "non-virtual thunk to CStatus::AddRef()"};
    const std::vector<std::string> foreign = {"(anonymous namespace)::Helper()",
                                              "CComPtr<IUnknown>::~CComPtr()",
                                              "CLiveAggregator::CLiveAggregator()",
                                              "CReferenceCount::Increment()",
                                              "CStatus::AUX* std::copy<CStatus::AUX*>(CStatus::AUX*)",
                                              "Helper(int)",
                                              "IsEqualIID(int, int)",
                                              "typeinfo for IUnknown",
                                              "void std::swap<CStatus>(CStatus&, CStatus&)",
                                              "vtable for CLiveAggregator"};
    std::vector<std::string> all = fine;
    all.insert(all.end(), foreign.begin(), foreign.end());
    EXPECT_THAT(FindForeignNames(all, expected), testing::UnorderedElementsAreArray(foreign));
}

}  // namespace

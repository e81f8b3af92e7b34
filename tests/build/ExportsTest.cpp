// The symbols of the built library: everything that hosts and plug-ins link against, and nothing else.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <regex>
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

std::set<std::string> Exported() {
    std::set<std::string> names;
    for (const SExportedSymbol& symbol : ReadExports(KELO_LIBRARY)) names.insert(symbol.m_strName);
    return names;
}

// The elements of `wanted` that `present` lacks.
std::vector<std::string> NotIn(const std::set<std::string>& present, const std::set<std::string>& wanted) {
    std::vector<std::string> lacking;
    std::set_difference(wanted.begin(), wanted.end(), present.begin(), present.end(), std::back_inserter(lacking));
    return lacking;
}

std::vector<std::string> NamesWith(const std::set<std::string>& names, const std::string& part) {
    std::vector<std::string> found;
    std::copy_if(names.begin(), names.end(), std::back_inserter(found),
                 [&](const std::string& name) { return name.find(part) != std::string::npos; });
    return found;
}

TEST(Exports, HoldEveryListedSymbol) { EXPECT_THAT(NotIn(Exported(), Expected()), testing::IsEmpty()); }

// A private helper of an exported class is marked KELO_HIDDEN; a new public name is added to the list.
TEST(Exports, HoldNothingThatIsNotListed) { EXPECT_THAT(NotIn(Expected(), Exported()), testing::IsEmpty()); }

TEST(Exports, ThatAreMissingOrForeignAreTold) {
    EXPECT_THAT(NotIn({"a", "c"}, {"a", "b", "c", "d"}), testing::ElementsAre("b", "d"));
    EXPECT_THAT(NotIn({"a", "c"}, {"c"}), testing::IsEmpty());
}

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

// Objects are built and destroyed by C1 and D1, as a base of another class by C2 and D2, through their table by D0; the
// list calls all forms of one constructor or destructor alike.
TEST(Exports, HoldEveryFormOfConstructorsAndDestructors) {
    static const std::regex kForm("(_ZN.*)([CD])([0-2])E(.*)");
    std::map<std::string, std::string> forms;
    for (const SExportedSymbol& symbol : ReadExports(KELO_LIBRARY)) {
        std::smatch parts;
        if (symbol.m_strName.find("::") == std::string::npos) continue;
        if (!std::regex_match(symbol.m_strMangled, parts, kForm)) continue;
        forms[parts[1].str() + parts[2].str() + parts[4].str()] += parts[3];
    }
    EXPECT_THAT(forms, testing::SizeIs(testing::Ge(50U)));

    // Nobody builds an object of an abstract class alone, and not every compiler offers to.
    for (const char* const abstract :
         {"_ZN5PFileCv", "_ZN9CDirEntryCRK13CPortableFilePKciiij", "_ZN13CAggregatableCj", "_ZN16CPosixSyncObjectCv"}) {
        EXPECT_THAT(forms[abstract], testing::HasSubstr("2")) << abstract;
        forms.erase(abstract);
    }
    const std::set<std::string> kOutsideTheTable = {"_ZN14CComponentEnumDv", "_ZN17CPortableFileInfoDv",
                                                    "_ZN17CTargetAggregatorDv"};
    for (auto& [name, found] : forms) {
        std::sort(found.begin(), found.end());
        const bool destructor = name.substr(name.size() - 2) == "Dv";
        EXPECT_EQ(found, destructor && kOutsideTheTable.count(name) == 0 ? "012" : "12") << name;
    }
}

TEST(Exports, EntryPointAndLoaderFunctionsAreUnmangled) {
    std::set<std::string> mangled;
    for (const SExportedSymbol& symbol : ReadExports(KELO_LIBRARY)) mangled.insert(symbol.m_strMangled);
    EXPECT_THAT(mangled, testing::IsSupersetOf({"GetAudioPluginMgr", "AudioFormatSettingsDialog_New", "LoadLibrary",
                                                "GetProcAddress", "FreeLibrary"}));
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
    const std::set<std::string> listed = Expected();
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

}  // namespace

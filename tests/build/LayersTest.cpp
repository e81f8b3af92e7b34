// The includes of the source tree, and proof that the check of them can fail.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "tests/build/IncludeRules.h"
#include "tests/build/RunCommand.h"
#include "tests/support/ScratchDirectory.h"

namespace {

namespace fs = std::filesystem;

std::set<std::string> PublicHeaders() {
    const std::vector<std::string> listed = ListedIn(KELO_PUBLIC_HEADER_LIST);
    return {listed.begin(), listed.end()};
}

// A copy of the tree's sources to plant a file in.
class CTreeCopy {
public:
    CTreeCopy() {
        for (const std::string& file : CheckedFiles(KELO_SOURCE_DIRECTORY)) {
            fs::create_directories((m_directory.Path() / file).parent_path());
            fs::copy_file(fs::path(KELO_SOURCE_DIRECTORY) / file, m_directory.Path() / file);
        }
    }

    void Plant(const std::string& file, const std::string& content) {
        fs::create_directories((m_directory.Path() / file).parent_path());
        m_directory.Write(file, content);
    }

    // What the check says beyond what it says about the tree itself.
    std::vector<std::string> NewViolations() const {
        const std::vector<std::string> before = FindIncludeViolations(KELO_SOURCE_DIRECTORY, PublicHeaders());
        std::vector<std::string> added;
        for (const std::string& violation : FindIncludeViolations(m_directory.Path(), PublicHeaders())) {
            if (std::find(before.begin(), before.end(), violation) == before.end()) added.push_back(violation);
        }
        return added;
    }

private:
    CScratchDirectory m_directory;
};

struct SPlantedFile {
    const char* m_pszName;
    const char* m_pszFile;
    const char* m_pszContent;
    const char* m_pszReason;  // null for a file that breaks no rule
};

void PrintTo(const SPlantedFile& planted, std::ostream* out) { *out << planted.m_pszFile; }

const SPlantedFile kPlantedFiles[] = {
    {"PortableIncludesCom", "portable/Planted.h", "#include \"com/Unknown.h\"\n", "a layer above"},
    {"PortableIncludesStream", "portable/Planted.cpp", "#include \"stream/WavFormat.h\"\n", "a layer above"},
    {"ComIncludesStream", "com/Planted.h", "#include \"stream/WavFormat.h\"\n", "a layer above"},
    {"StreamIncludesManager", "stream/Planted.cpp", "#include \"pluginmgr/AudioPluginMgr.h\"\n", "a layer above"},
    {"ManagerIncludesHost", "pluginmgr/Planted.cpp", "#include \"host/Planted.h\"\n", "no file by its path"},
    {"ManagerIncludesTests", "pluginmgr/Planted.cpp", "#  include \"tests/Planted.h\"\n", "no file by its path"},
    {"HostIncludesInternals", "host/Planted.cpp", "#include \"stream/GuardedCall.h\"\n", "not a public header"},
    {"HostIncludesPluginLibrary", "host/Planted.cpp", "#include \"pluginmgr/AudioPluginLib.h\"\n", "not meant for"},
    {"PluginIncludesInternals", "plugins/planted/P.cpp", "#include \"stream/GuardedCall.h\"\n", "not a public header"},
    {"ExampleIncludesInternals", "examples/planted/E.cpp", "#include \"stream/URLType.h\"\n", "not a public header"},
    {"HostIncludesSdk", "host/Planted.cpp", "#include \"sdk/Guard.h\"\n", "neither its own nor the library's"},
    {"LibraryIncludesSdk", "dialog/Planted.cpp", "#include \"sdk/Guard.h\"\n", "not a part of the library"},
    {"SdkIncludesInternals", "sdk/Planted.h", "#include \"stream/GuardedCall.h\"\n", "not a public header"},
    {"PluginMayUseTheSdk", "plugins/planted/P.cpp", "#include \"sdk/Guard.h\"\n", nullptr},
    {"ExampleMayUseTheSdk", "examples/planted/E.cpp", "#include \"sdk/Guard.h\"\n", nullptr},
    {"AngleBrackets", "com/Planted.h", "#include <portable/Export.h>\n", "in angle brackets"},
    {"AngleBracketsUpwards", "portable/Planted.h", "#include <com/Unknown.h>\n", "a layer above"},
    {"NeighbourByBareName", "com/Planted.cpp", "#include \"Unknown.h\"\n", "no file by its path from the root"},
    {"PathFromTheFile", "com/Planted.cpp", "#include \"../portable/Export.h\"\n", "no file by its path from the root"},
    {"DetourUpwards", "portable/Planted.h", "#include \"portable/../com/Unknown.h\"\n", "no file by its path"},
    {"MissingFile", "com/Planted.cpp", "#include \"com/Missing.h\"\n", "no file by its path from the root"},
    {"IncludesItself", "com/Planted.h", "#include \"com/Planted.h\"\n", "a cycle: com/Planted.h com/Planted.h"},
    {"DownwardsIsFine", "dialog/Planted.cpp", "#include \"portable/Export.h\"\n#include \"com/Unknown.h\"\n", nullptr},
    {"SameLayerIsFine", "com/Planted.h", "#include \"com/Unknown.h\"\n#include <gtk/gtk.h>\n", nullptr},
    {"HostMayUseTheManager", "host/Planted.cpp", "#include \"pluginmgr/GetAudioPluginMgr.h\"\n", nullptr},
    {"CommentedOutIsFine", "portable/Planted.h", "// #include \"com/Unknown.h\"\n", nullptr},
};

class PlantedFile : public testing::TestWithParam<SPlantedFile> {};

TEST(Layers, IncludesPointDownOnlyAndClientsSeePublicHeaders) {
    EXPECT_THAT(FindIncludeViolations(KELO_SOURCE_DIRECTORY, PublicHeaders()), testing::IsEmpty());
}

TEST(Layers, TheCheckReadsEveryFolder) {
    const std::vector<std::string> files = CheckedFiles(KELO_SOURCE_DIRECTORY);
    EXPECT_THAT(files, testing::IsSupersetOf({"portable/Export.h", "com/Unknown.h", "stream/WavFormat.h",
                                              "pluginmgr/GetAudioPluginMgr.cpp"}));
    EXPECT_THAT(files, testing::Contains(testing::StartsWith("host/")));
    EXPECT_THAT(files, testing::Contains(testing::StartsWith("plugins/sndfile/")));
}

TEST(Layers, EveryPublicHeaderExists) {
    const std::set<std::string> headers = PublicHeaders();
    EXPECT_THAT(headers, testing::SizeIs(testing::Ge(50U)));
    for (const std::string& header : headers) {
        EXPECT_TRUE(fs::is_regular_file(fs::path(KELO_SOURCE_DIRECTORY) / header)) << header;
    }
}

TEST_P(PlantedFile, IsJudgedByItsIncludes) {
    CTreeCopy copy;
    copy.Plant(GetParam().m_pszFile, GetParam().m_pszContent);
    const std::vector<std::string> violations = copy.NewViolations();
    if (GetParam().m_pszReason == nullptr) {
        EXPECT_THAT(violations, testing::IsEmpty());
    } else {
        EXPECT_THAT(violations, testing::Contains(testing::HasSubstr(GetParam().m_pszReason)));
    }
}

INSTANTIATE_TEST_SUITE_P(Layers, PlantedFile, testing::ValuesIn(kPlantedFiles),
                         [](const auto& test) { return std::string(test.param.m_pszName); });

TEST(PlantedFiles, ACycleOfThreeIsFoundOnceAndNamed) {
    CTreeCopy copy;
    copy.Plant("com/A.h", "#include \"com/B.h\"\n");
    copy.Plant("com/B.h", "#include \"com/C.h\"\n");
    copy.Plant("com/C.h", "#include \"com/A.h\"\n");
    EXPECT_THAT(copy.NewViolations(), testing::ElementsAre("a cycle: com/A.h com/B.h com/C.h com/A.h"));
}

TEST(PlantedFiles, TwoWaysToOneHeaderAreNoCycle) {
    CTreeCopy copy;
    copy.Plant("com/A.h", "#include \"com/B.h\"\n#include \"com/C.h\"\n");
    copy.Plant("com/B.h", "#include \"com/C.h\"\n");
    copy.Plant("com/C.h", "");
    EXPECT_THAT(copy.NewViolations(), testing::IsEmpty());
}

TEST(PlantedFiles, APluginDoesNotIncludeAnotherOne) {
    CTreeCopy copy;
    copy.Plant("plugins/one/One.h", "");
    copy.Plant("plugins/two/Two.cpp", "#include \"plugins/one/One.h\"\n");
    EXPECT_THAT(copy.NewViolations(), testing::ElementsAre(testing::HasSubstr("neither its own nor the library's")));
}

TEST(PlantedFiles, PluginsIncludeWhatTheyShareAndNobodyElseDoes) {
    CTreeCopy copy;
    copy.Plant("plugins/shared/Planted.h", "");
    copy.Plant("plugins/one/One.cpp", "#include \"plugins/shared/Planted.h\"\n");
    EXPECT_THAT(copy.NewViolations(), testing::IsEmpty());
    copy.Plant("host/Planted.cpp", "#include \"plugins/shared/Planted.h\"\n");
    copy.Plant("plugins/one/One.h", "");
    copy.Plant("plugins/shared/Other.h", "#include \"plugins/one/One.h\"\n");
    EXPECT_THAT(copy.NewViolations(), testing::SizeIs(2));
}

TEST(PlantedFiles, TheLibraryDoesNotIncludeAPlugin) {
    CTreeCopy copy;
    copy.Plant("plugins/one/One.h", "");
    copy.Plant("stream/Two.cpp", "#include \"plugins/one/One.h\"\n");
    EXPECT_THAT(copy.NewViolations(), testing::ElementsAre(testing::HasSubstr("not a part of the library")));
}

}  // namespace

// What an installation holds.
#include <algorithm>
#include <fstream>
#include <vector>

#include "tests/install/Installation.h"

namespace {

namespace fs = std::filesystem;

std::vector<std::string> FilesBelow(const fs::path& directory) {
    std::vector<std::string> files;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(directory)) {
        if (entry.is_regular_file()) files.push_back(entry.path().lexically_relative(directory));
    }
    return files;
}

std::vector<std::string> LinesOf(const std::string& path) {
    std::ifstream file(path);
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) lines.push_back(line);
    return lines;
}

// The library's public headers and whatever lies in the SDK's folder.
std::vector<std::string> PublicHeaders() {
    std::vector<std::string> headers = LinesOf(KELO_PUBLIC_HEADER_LIST);
    for (const std::string& name : NamesIn(KELO_SOURCE_DIRECTORY "/sdk")) {
        if (fs::path(name).extension() == ".h") headers.push_back("sdk/" + name);
    }
    return headers;
}

}  // namespace

TEST_F(Installation, HoldsEveryPublicHeaderInItsFolderAndNoOther) {
    const std::vector<std::string> headers = PublicHeaders();
    ASSERT_THAT(headers, testing::IsSupersetOf({"com/Unknown.h", "portable/Export.h", "sdk/Plugin.h"}));
    EXPECT_THAT(FilesBelow(Prefix() + "/include/keloaudiopluginmgr"), testing::UnorderedElementsAreArray(headers));
}

TEST_F(Installation, HoldsWhatIsReadAndNotRun) {
    EXPECT_THAT(
        FilesBelow(Prefix() + "/share"),
        testing::IsSupersetOf({"bash-completion/completions/keloaudio", "doc/keloaudiopluginmgr/plugin-guide.md",
                               "doc/keloaudiopluginmgr/examples/decoder/PlainDecoder.cpp",
                               "keloaudiopluginmgr/images/apm-decoder_icon-16.png",
                               "locale/de/LC_MESSAGES/keloaudiopluginmgr.mo", "man/man1/keloaudio.1"}));
}

TEST_F(Installation, NamesNeitherTheTreeNorItsOwnPlace) {
    int seen = 0;
    for (const std::string& name : FilesBelow(Prefix())) {
        const std::string extension = fs::path(name).extension();
        if (extension != ".cmake" && extension != ".pc") continue;
        ++seen;
        const std::string text = ReadWholeFile(Prefix() + "/" + name);
        for (const std::string& place : {std::string(KELO_SOURCE_DIRECTORY), m_scratch.Path().string()}) {
            EXPECT_THAT(text, testing::Not(testing::HasSubstr(place))) << name;
        }
    }
    EXPECT_GE(seen, 5);
}

TEST_F(Installation, SearchesLibrariesFromItsOwnPlaceAlone) {
    std::vector<std::string> objects = {Prefix() + "/bin/keloaudio",
                                        LibraryDirectory() + "/libKeloAudioPluginMgr.so.0"};
    for (const std::string& plugin : NamesIn(PluginDirectory())) objects.push_back(PluginDirectory() + "/" + plugin);
    EXPECT_GE(objects.size(), 4U);
    for (const std::string& object : objects) {
        const SRunResult dynamic = RunProgram({KELO_READELF, "-d", object});
        EXPECT_EQ(dynamic.m_nExit, 0) << object;
        EXPECT_THAT(dynamic.m_strOut, testing::Not(testing::ContainsRegex("R(UN)?PATH.*\\[/"))) << object;
    }
}

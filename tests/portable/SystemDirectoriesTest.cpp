// Current, home, root and temporary directories.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "portable/PortableFile.h"
#include "tests/support/ProcessState.h"
#include "tests/support/ScratchDirectory.h"

namespace {

// Creates and enters directories until the path is longer than `length`; returns the path.
std::string DescendPast(std::size_t length, const CScratchDirectory& scratch) {
    std::string path = scratch.Path().string();
    const std::string part(100, 'd');
    while (path.size() <= length) {
        path += "/" + part;
        std::filesystem::create_directory(path);
    }
    std::filesystem::current_path(path);
    return path;
}

}  // namespace

TEST(SystemDirectories, TheCurrentDirectoryFillsTheCallersBuffer) {
    const CScratchDirectory scratch;
    const CScopedCurrentDirectory inside(scratch.Path());
    char buffer[4096] = "";
    EXPECT_EQ(CPortableFile::GetCurrentDirectory(sizeof(buffer), buffer), 1);
    EXPECT_EQ(buffer, scratch.Path().string());
}

TEST(SystemDirectories, ABufferThatIsTooSmallIsAFailure) {
    const CScratchDirectory scratch;
    const CScopedCurrentDirectory inside(scratch.Path());
    char buffer[2] = "";
    EXPECT_EQ(CPortableFile::GetCurrentDirectory(sizeof(buffer), buffer), 0);
    EXPECT_EQ(CPortableFile::GetCurrentDirectory(0, buffer), 0);
    EXPECT_EQ(CPortableFile::GetCurrentDirectory(-1, buffer), 0);
    EXPECT_EQ(CPortableFile::GetCurrentDirectory(16, nullptr), 0);
}

TEST(SystemDirectories, TheCurrentDirectoryReplacesTheText) {
    const CScratchDirectory scratch;
    const CScopedCurrentDirectory inside(scratch.Path());
    CBasicString<char> text("before");
    EXPECT_EQ(CPortableFile::GetCurrentDirectory(text), 1);
    EXPECT_EQ(text.GetText(), scratch.Path().string());
    EXPECT_EQ(text.GetLength(), static_cast<int>(scratch.Path().string().size()));
}

TEST(SystemDirectories, TheTextGrowsForALongCurrentDirectory) {
    for (const std::size_t length : {256u, 700u}) {
        const CScratchDirectory scratch;
        const CScopedCurrentDirectory inside(scratch.Path());
        const std::string path = DescendPast(length, scratch);
        CBasicString<char> text;
        EXPECT_EQ(CPortableFile::GetCurrentDirectory(text), 1);
        EXPECT_EQ(text.GetText(), path);
        EXPECT_EQ(text.GetLength(), static_cast<int>(path.size()));
    }
}

TEST(SystemDirectories, AVanishedCurrentDirectoryLeavesTheTextAndStillAnswersOne) {
    const CScratchDirectory scratch;
    const CScopedCurrentDirectory outside(scratch.Path());
    const std::string gone = scratch / "gone";
    std::filesystem::create_directory(gone);
    std::filesystem::current_path(gone);
    std::filesystem::remove(gone);
    CBasicString<char> text("before");
    char buffer[4096];
    EXPECT_EQ(CPortableFile::GetCurrentDirectory(text), 1);
    EXPECT_STREQ(text.GetText(), "before");
    EXPECT_EQ(text.GetLength(), 6);
    EXPECT_EQ(CPortableFile::GetCurrentDirectory(sizeof(buffer), buffer), 0);
}

TEST(SystemDirectories, SettingTheCurrentDirectoryReportsSuccessAndFailure) {
    const CScratchDirectory scratch;
    const CScopedCurrentDirectory restore(scratch.Path());
    std::filesystem::create_directory(scratch / "sub");
    EXPECT_EQ(CPortableFile::SetCurrentDirectory("sub"), 1);
    EXPECT_EQ(std::filesystem::current_path().string(), scratch / "sub");
    EXPECT_EQ(CPortableFile::SetCurrentDirectory("no-such-dir"), 0);
    EXPECT_EQ(CPortableFile::SetCurrentDirectory(nullptr), 0);
    EXPECT_EQ(std::filesystem::current_path().string(), scratch / "sub");
}

TEST(SystemDirectories, TheDefaultDirectoryIsTheHomeDirectory) {
    const CScopedVariable home("HOME", "/home/u");
    EXPECT_STREQ(CPortableFile::GetDefaultDirectory().GetText(), "/home/u");
}

TEST(SystemDirectories, WithoutAHomeTheDefaultDirectoryIsTheRoot) {
    const CScopedVariable home("HOME", nullptr);
    EXPECT_STREQ(CPortableFile::GetDefaultDirectory().GetText(), "/");
}

TEST(SystemDirectories, TheDefaultRootDirectoryIsTheRoot) {
    EXPECT_STREQ(CPortableFile::GetDefaultRootDirectory().GetText(), "/");
}

TEST(SystemDirectories, TheTemporaryPathFollowsTheVariable) {
    const CScratchDirectory scratch;
    const CScopedVariable variable("TMPDIR", scratch.Path().c_str());
    EXPECT_EQ(CPortableFile::GetTempPath().GetText(), scratch.Path().string());
    EXPECT_TRUE(std::filesystem::is_empty(scratch.Path()));
}

TEST(SystemDirectories, WithoutTheVariableTheTemporaryPathIsTheSystemsDefault) {
    const CScopedVariable variable("TMPDIR", nullptr);
    EXPECT_STREQ(CPortableFile::GetTempPath().GetText(), P_tmpdir);
}

TEST(SystemDirectories, ATemporaryNameStartsWithThePrefixAndIsNotCreated) {
    const CScratchDirectory scratch;
    const CScopedVariable variable("TMPDIR", nullptr);
    const CBasicString<char> name = CPortableFile::CreateTempName(scratch.Path().c_str(), "kelo");
    EXPECT_EQ(std::string(name.GetText()).rfind(scratch / "kelo", 0), 0u) << name.GetText();
    EXPECT_TRUE(std::filesystem::is_empty(scratch.Path()));
}

// Joining of path components and absolute paths.
#include <gtest/gtest.h>

#include <filesystem>

#include "portable/PortableFile.h"
#include "tests/support/ProcessState.h"
#include "tests/support/ScratchDirectory.h"
#include "tests/support/ScratchRoot.h"

TEST(PathJoin, ComponentsAreJoinedBySingleSlashes) {
    const struct {
        int rooted;
        int count;
        const char* first;
        const char* second;
        const char* third;
        const char* path;
    } rows[] = {{0, 2, "/dir", "file", "", "/dir/file"},
                {1, 1, "a", "", "", "/a"},
                {0, 2, "/", "name", "", "/name"},
                {0, 1, "a/b/", "", "", "a/b"},
                {1, 0, "", "", "", ""},
                {0, 0, "", "", "", ""},
                {0, 1, "/", "", "", ""},
                {0, 3, "a", "", "b", "a/b"},
                {0, 2, "a", "/b", "", "a/b"},
                {0, 2, "a", "/", "", "a"},
                {1, 2, "/a", "b", "", "/a/b"},
                {0, 2, "", "/b", "", "b"},
                {1, 2, "", "/b", "", "/b"},
                {0, 1, "//", "", "", "/"},
                {0, 2, "a", "//", "", "a/"},
                {0, 2, "a", "//b", "", "a//b"},
                {0, 1, "a//", "", "", "a/"},
                {0, 2, nullptr, "b", "", "b"},
                {7, 3, "a", "b/", "c", "/a/b/c"}};
    for (const auto& row : rows) {
        const CBasicString<char> path =
            CPortableFile::CombinePathComponents(row.rooted, row.count, row.first, row.second, row.third);
        EXPECT_STREQ(path.GetText(), row.path) << (row.first ? row.first : "null") << " + " << row.second;
        EXPECT_EQ(path.GetLength(), static_cast<int>(std::string(row.path).size()));
    }
}

TEST(PathJoin, TheAbsoluteRootIsTheRoot) { EXPECT_STREQ(CPortableFile::MakeAbsolute("/").GetText(), "/"); }

TEST(PathJoin, ARelativeNameIsPutBehindTheCurrentDirectoryWhetherOrNotItExists) {
    const CScratchDirectory scratch;
    const CScopedCurrentDirectory inside(scratch.Path());
    EXPECT_EQ(CPortableFile::MakeAbsolute("x").GetText(), scratch / "x");
    scratch.Write("x", "");
    EXPECT_EQ(CPortableFile::MakeAbsolute("x").GetText(), scratch / "x");
    EXPECT_EQ(CPortableFile::MakeAbsolute("").GetText(), scratch.Path().string());
    EXPECT_EQ(CPortableFile::MakeAbsolute(".").GetText(), scratch.Path().string());
}

TEST(PathJoin, AMissingDirectoryMakesTheAbsolutePathEmpty) {
    EXPECT_STREQ(CPortableFile::MakeAbsolute("/no/such/dir/x").GetText(), "");
    EXPECT_STREQ(CPortableFile::MakeAbsolute("no-such-dir/x").GetText(), "");
    EXPECT_STREQ(CPortableFile::MakeAbsolute(nullptr).GetText(), "");
}

TEST(PathJoin, ALinkNamedLastStaysALink) {
    const CScratchDirectory scratch;
    std::filesystem::create_directory(scratch / "sub");
    std::filesystem::create_directory_symlink("sub", scratch / "link");
    EXPECT_EQ(CPortableFile::MakeAbsolute((scratch / "link").c_str()).GetText(), scratch / "link");
}

TEST(PathJoin, ALinkInTheDirectoryPartIsResolved) {
    const CScratchDirectory scratch;
    std::filesystem::create_directories(scratch / "sub/deep");
    std::filesystem::create_directory_symlink("sub", scratch / "link");
    EXPECT_EQ(CPortableFile::MakeAbsolute((scratch / "link/x").c_str()).GetText(), scratch / "sub/x");
    EXPECT_EQ(CPortableFile::MakeAbsolute((scratch / "link/deep").c_str()).GetText(), scratch / "sub/deep");
}

TEST(PathJoin, ADirectoryIsResolvedAsAWhole) {
    const CScratchDirectory scratch;
    std::filesystem::create_directory(scratch / "sub");
    EXPECT_EQ(CPortableFile::MakeAbsolute((scratch / "sub/../sub/.").c_str()).GetText(), scratch / "sub");
}

TEST(PathJoin, ARootWrittenOtherwiseComesOutEmpty) {
    EXPECT_STREQ(CPortableFile::MakeAbsolute("//").GetText(), "");
    EXPECT_STREQ(CPortableFile::MakeAbsolute("/.").GetText(), "");
}

TEST(PathJoin, ANameDirectlyBelowTheRootStaysThere) {
    EXPECT_STREQ(CPortableFile::MakeAbsolute("/no-such-name").GetText(), "/no-such-name");
}

TEST(PathJoin, TheShortNameOfAnythingIsEmpty) {
    EXPECT_STREQ(CPortableFile::MakeShortPathName("/usr/lib").GetText(), "");
    EXPECT_STREQ(CPortableFile::MakeShortPathName(nullptr).GetText(), "");
}

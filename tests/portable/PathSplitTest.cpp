// Splitting of paths.
#include <gtest/gtest.h>

#include <filesystem>

#include "portable/PortableFile.h"
#include "tests/support/ProcessState.h"
#include "tests/support/ScratchDirectory.h"

TEST(PathSplit, ComponentsAreCountedAfterLeadingSlashesWithoutTrailingOnes) {
    const struct {
        const char* path;
        int count;
    } rows[] = {{"", 0},      {"/", 1},    {"//", 1},  {"a", 1},      {"/a", 1}, {"///a", 1}, {"a/b/c", 3},
                {"/a/b/", 2}, {"a//b", 3}, {"a//", 2}, {"/a/b/c", 3}, {"a/", 1}, {"./x", 2},  {nullptr, 0}};
    for (const auto& row : rows) {
        EXPECT_EQ(CPortableFile::Split_GetPathComponentCount(row.path), row.count) << (row.path ? row.path : "null");
    }
}

TEST(PathSplit, AComponentReachesUpToTheNextSlash) {
    const struct {
        const char* path;
        int n;
        const char* component;
    } rows[] = {{"/usr/lib/x.so", 0, "usr"},
                {"/usr/lib/x.so", 1, "lib"},
                {"/usr/lib/x.so", 2, "x.so"},
                {"/usr/lib/x.so", 3, ""},
                {"/usr/lib/x.so", 5, ""},
                {"/usr/lib/x.so", -1, "usr"},
                {"a//b", 1, ""},
                {"a//b", 2, "b"},
                {"/a/b/", 1, "b"},
                {"/a/b/", 2, ""},
                {"/", 0, ""},
                {"", 0, ""},
                {nullptr, 0, ""}};
    for (const auto& row : rows) {
        EXPECT_STREQ(CPortableFile::Split_GetPathComponent(row.path, row.n).GetText(), row.component)
            << (row.path ? row.path : "null") << " " << row.n;
    }
}

TEST(PathSplit, CuttingOnTheLeftKeepsTheRestUnchanged) {
    const struct {
        const char* path;
        int n;
        const char* rest;
    } rows[] = {{"/a/b/c", 1, "b/c"}, {"/a/b/c", 0, "a/b/c"}, {"/a/b/c", -2, "a/b/c"},
                {"/a/b/c", 3, ""},    {"/a/b/c/", 1, "b/c/"}, {"a//b", 1, "/b"},
                {"//a/b", 1, "b"},    {"/", 0, ""},           {"", 0, ""},
                {nullptr, 1, ""}};
    for (const auto& row : rows) {
        EXPECT_STREQ(CPortableFile::Split_CutLeft(row.path, row.n).GetText(), row.rest)
            << (row.path ? row.path : "null") << " " << row.n;
    }
}

TEST(PathSplit, CuttingOnTheRightRemovesComponentsAndOneTrailingSlash) {
    const struct {
        const char* path;
        int n;
        const char* rest;
    } rows[] = {{"/a/b/c", 1, "/a/b"}, {"/a/b/c", 2, "/a"},    {"/a/b/c", 3, ""},     {"/a/b/c", 9, ""},
                {"/a/b/", 1, "/a"},    {"c", 1, ""},           {"/c", 1, ""},         {"//c", 1, "/"},
                {"/a/b/", 0, "/a/b"},  {"/a/b//", 0, "/a/b/"}, {"/a/b/", -1, "/a/b"}, {"a", 0, "a"},
                {"/", 0, ""},          {"/", 1, ""},           {"", 1, ""},           {"a//b", 1, "a/"},
                {nullptr, 1, ""}};
    for (const auto& row : rows) {
        const CBasicString<char> rest = CPortableFile::Split_CutRight(row.path, row.n);
        EXPECT_STREQ(rest.GetText(), row.rest) << (row.path ? row.path : "null") << " " << row.n;
        EXPECT_EQ(rest.GetLength(), static_cast<int>(std::string(row.rest).size()));
    }
}

TEST(PathSplit, ThePathOfAnExistingDirectoryIsThatDirectoryUnchanged) {
    const CScratchDirectory scratch;
    std::filesystem::create_directory(scratch / "sub");
    EXPECT_EQ(CPortableFile::Split_GetPath((scratch / "sub").c_str()).GetText(), scratch / "sub");
    EXPECT_EQ(CPortableFile::Split_GetPath((scratch / "sub/").c_str()).GetText(), scratch / "sub/");
    EXPECT_STREQ(CPortableFile::Split_GetPath("/").GetText(), "/");
}

TEST(PathSplit, ThePathOfAnythingElseLacksTheLastComponent) {
    const CScratchDirectory scratch;
    scratch.Write("file.txt", "");
    EXPECT_EQ(CPortableFile::Split_GetPath((scratch / "file.txt").c_str()).GetText(), scratch.Path().string());
    EXPECT_STREQ(CPortableFile::Split_GetPath("/no/such/file.txt").GetText(), "/no/such");
}

TEST(PathSplit, ThePathOfABareFileNameIsTheRoot) {
    const CScratchDirectory scratch;
    const CScopedCurrentDirectory inside(scratch.Path());
    EXPECT_STREQ(CPortableFile::Split_GetPath("file.txt").GetText(), "/");
    EXPECT_STREQ(CPortableFile::Split_GetPath("/no-such-file").GetText(), "/");
    EXPECT_STREQ(CPortableFile::Split_GetPath("").GetText(), "/");
    EXPECT_STREQ(CPortableFile::Split_GetPath(nullptr).GetText(), "/");
}

TEST(PathSplit, ALinkToADirectoryIsAFileNameAndNoPath) {
    const CScratchDirectory scratch;
    std::filesystem::create_directory(scratch / "sub");
    std::filesystem::create_directory_symlink("sub", scratch / "link");
    EXPECT_EQ(CPortableFile::Split_GetPath((scratch / "link").c_str()).GetText(), scratch.Path().string());
    EXPECT_STREQ(CPortableFile::Split_GetFileName((scratch / "link").c_str()).GetText(), "link");
}

TEST(PathSplit, TheFileNameIsTheLastComponentAndEmptyForADirectory) {
    const CScratchDirectory scratch;
    EXPECT_STREQ(CPortableFile::Split_GetFileName(scratch.Path().c_str()).GetText(), "");
    EXPECT_STREQ(CPortableFile::Split_GetFileName("/no/such/file.txt").GetText(), "file.txt");
    EXPECT_STREQ(CPortableFile::Split_GetFileName("file.txt").GetText(), "file.txt");
    EXPECT_STREQ(CPortableFile::Split_GetFileName("/no/such/").GetText(), "such");
    EXPECT_STREQ(CPortableFile::Split_GetFileName("").GetText(), "");
    EXPECT_STREQ(CPortableFile::Split_GetFileName(nullptr).GetText(), "");
}

TEST(PathSplit, TheExtensionStartsAtTheLastDotOfTheFileName) {
    const struct {
        const char* path;
        const char* extension;
        const char* stem;
    } rows[] = {
        {"a.tar.gz", ".gz", "a.tar"}, {".bashrc", ".bashrc", ""}, {"plain", "", "plain"}, {"/no/such/x.so", ".so", "x"},
        {"/no.d/plain", "", "plain"}, {"name.", ".", "name"},     {".a.b", ".b", ".a"},   {"", "", ""}};
    for (const auto& row : rows) {
        EXPECT_STREQ(CPortableFile::Split_GetExtension(row.path).GetText(), row.extension) << row.path;
        EXPECT_STREQ(CPortableFile::Split_GetFileWithoutExt(row.path).GetText(), row.stem) << row.path;
    }
}

TEST(PathSplit, ADirectoryHasNoExtensionAndNoStem) {
    const CScratchDirectory scratch;
    std::filesystem::create_directory(scratch / "sub.d");
    EXPECT_STREQ(CPortableFile::Split_GetExtension((scratch / "sub.d").c_str()).GetText(), "");
    EXPECT_STREQ(CPortableFile::Split_GetFileWithoutExt((scratch / "sub.d").c_str()).GetText(), "");
}

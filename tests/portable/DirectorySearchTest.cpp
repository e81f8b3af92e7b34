// Starting points of directory enumerations.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "portable/DirEntry.h"
#include "tests/support/ProcessState.h"
#include "tests/support/ScratchDirectory.h"
#include "tests/support/ScratchRoot.h"

namespace {

using Names = std::vector<std::string>;

// The sorted absolute names; deletes the enumeration.
Names PathsOf(CDirEntry* enumeration) {
    const std::unique_ptr<CDirEntry> entry(enumeration);
    Names names;
    for (; entry->IsValid() != 0; entry->Next()) names.emplace_back(entry->GetFile().GetName());
    std::sort(names.begin(), names.end());
    return names;
}

CDirEntry* Find(const std::string& mask) { return CPortableFile::FindFirst(mask.c_str(), 0, 0, 0, 2); }

}  // namespace

TEST(DirectorySearch, AMaskWithoutADirectoryListsTheCurrentDirectory) {
    const CScratchDirectory scratch;
    const CScopedCurrentDirectory inside(scratch.Path());
    const Names expected = {scratch.Write("a.so", ""), scratch.Write("b.So", "")};
    scratch.Write("c.txt", "");
    EXPECT_EQ(PathsOf(Find("*.so")), expected);
}

TEST(DirectorySearch, AMaskWithADirectoryListsThatDirectory) {
    const CScratchDirectory scratch;
    std::filesystem::create_directories(scratch / "sub/x");
    const Names expected = {scratch.Write("sub/x/a.so", "")};
    EXPECT_EQ(PathsOf(Find(scratch / "sub/x/*.so")), expected);
    const CScopedCurrentDirectory inside(scratch.Path());
    EXPECT_EQ(PathsOf(Find("sub/x/*.so")), expected);
    EXPECT_EQ(PathsOf(Find("./sub/../sub/x/*.so")), expected);
}

TEST(DirectorySearch, AMaskInALinkedDirectoryFindsResolvedNames) {
    const CScratchDirectory scratch;
    std::filesystem::create_directory(scratch / "sub");
    std::filesystem::create_directory_symlink("sub", scratch / "link");
    const Names expected = {scratch.Write("sub/a.so", "")};
    EXPECT_EQ(PathsOf(Find(scratch / "link/*.so")), expected);
}

TEST(DirectorySearch, AMaskDirectlyUnderTheRootListsTheCurrentDirectory) {
    RunInScratchRoot([](const CScratchRoot& root) {
        if (!root.IsPrivate()) GTEST_SKIP() << "the kernel refuses a private root";
        std::filesystem::create_directory("/here");
        std::ofstream("/root.so") << "";
        std::ofstream("/here/current.so") << "";
        std::filesystem::current_path("/here");
        EXPECT_EQ(PathsOf(Find("/*.so")), Names{"/here/current.so"});
        EXPECT_EQ(PathsOf(Find("/current.so")), Names{"/here/current.so"});
        EXPECT_EQ(PathsOf(Find("/root.so")), Names());
    });
}

TEST(DirectorySearch, TheRootIsListedAsTheCurrentDirectoryAndThroughItsFile) {
    RunInScratchRoot([](const CScratchRoot& root) {
        if (!root.IsPrivate()) GTEST_SKIP() << "the kernel refuses a private root";
        std::filesystem::create_directory("/dir");
        std::ofstream("/file") << "";
        EXPECT_EQ(PathsOf(Find("*")), (Names{"/dir", "/file"}));
        const CPortableFile file("/", CPortableFile::OM_READ_WRITE);
        EXPECT_EQ(PathsOf(file.OpenDir("*", 0, 0, 0, 2)), (Names{"/dir", "/file"}));
    });
}

TEST(DirectorySearch, AMaskWithATrailingSlashSearchesForItsName) {
    const CScratchDirectory scratch;
    const CScopedCurrentDirectory inside(scratch.Path());
    std::filesystem::create_directory(scratch / "sub");
    scratch.Write("sub/inner", "");
    EXPECT_EQ(PathsOf(Find("sub/")), Names{scratch / "sub"});
}

TEST(DirectorySearch, NoMaskFindsNothing) {
    const CScratchDirectory scratch;
    const CScopedCurrentDirectory inside(scratch.Path());
    scratch.Write("file", "");
    EXPECT_EQ(PathsOf(Find("")), Names());
    EXPECT_EQ(PathsOf(CPortableFile::FindFirst(nullptr, 0, 0, 0, 2)), Names());
}

TEST(DirectorySearch, AMissingDirectoryHasNoEntries) {
    EXPECT_EQ(PathsOf(Find("/no/such/dir/*")), Names());
    EXPECT_EQ(PathsOf(Find("/no-such-dir/*")), Names());
}

TEST(DirectorySearch, EveryFilterValueReachesTheEnumeration) {
    const CScratchDirectory scratch;
    const std::string file = scratch.Write("File", "");
    std::filesystem::create_directory(scratch / "Fdir");
    const std::string dir = scratch / "Fdir";
    const std::string mask = scratch / "f*";
    EXPECT_EQ(PathsOf(CPortableFile::FindFirst(mask.c_str(), 0, 0, 0, 0)), (Names{dir, file}));
    EXPECT_EQ(PathsOf(CPortableFile::FindFirst(mask.c_str(), 1, 0, 0, 0)), Names());
    EXPECT_EQ(PathsOf(CPortableFile::FindFirst(mask.c_str(), 0, 0x10, 0, 0)), Names{dir});
    EXPECT_EQ(PathsOf(CPortableFile::FindFirst(mask.c_str(), 0, 0, 0x10, 0)), Names{file});
    EXPECT_EQ(PathsOf(CPortableFile::FindFirst(mask.c_str(), 0, 0, 0, 1)), Names());
}

TEST(DirectorySearch, ChildDirectoriesLeaveOutLinksToDirectories) {
    const CScratchDirectory scratch;
    scratch.Write("file", "");
    std::filesystem::create_directory(scratch / "dir");
    std::filesystem::create_directory_symlink("dir", scratch / "link");
    EXPECT_EQ(PathsOf(CPortableFile::FindFirstChildDir((scratch / "*").c_str(), 0, 2)), Names{scratch / "dir"});
    EXPECT_EQ(PathsOf(CPortableFile::FindFirstChildDir((scratch / "DIR").c_str(), 0, 1)), Names());
    EXPECT_EQ(PathsOf(CPortableFile::FindFirstChildDir((scratch / "*").c_str(), 1, 2)), Names());
}

TEST(DirectorySearch, NonDirectoriesIncludeLinksToDirectories) {
    const CScratchDirectory scratch;
    scratch.Write("file", "");
    std::filesystem::create_directory(scratch / "dir");
    std::filesystem::create_directory_symlink("dir", scratch / "link");
    EXPECT_EQ(PathsOf(CPortableFile::FindFirstNonDir((scratch / "*").c_str(), 0, 2)),
              (Names{scratch / "file", scratch / "link"}));
    EXPECT_EQ(PathsOf(CPortableFile::FindFirstNonDir((scratch / "FILE").c_str(), 0, 1)), Names());
    EXPECT_EQ(PathsOf(CPortableFile::FindFirstNonDir((scratch / "*").c_str(), 1, 2)), Names());
}

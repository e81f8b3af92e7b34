// Size and removal of directory trees. Everything that removes runs in a scratch root.
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "portable/PortableFile.h"
#include "tests/support/ScratchDirectory.h"
#include "tests/support/ScratchRoot.h"

namespace fs = std::filesystem;

namespace {

void Write(const std::string& path, const std::string& content = "content") { std::ofstream(path) << content; }

int DeleteTree(const std::string& path) { return CPortableFile::DeleteDirectoryTree(path.c_str()); }

long LinkSize(const std::string& path) {
    struct stat status = {};
    EXPECT_EQ(lstat(path.c_str(), &status), 0);
    return status.st_size;
}

long SizeOf(const std::string& directory, const char* mask = "*", int skipAll = 0, int required = 0, int excluded = 0,
            unsigned int flags = 2) {
    return CPortableFile::GetDirectoryContentSize(directory.c_str(), mask, skipAll, required, excluded, flags);
}

// a.txt (3), link -> "sub" (3), sub/b.txt (5), sub/deep/c.TXT (7), sub/deep/d.bin (11).
class DirectorySize : public testing::Test {
protected:
    DirectorySize() {
        fs::create_directories(m_scratch / "sub/deep");
        m_scratch.Write("a.txt", "123");
        m_scratch.Write("sub/b.txt", "12345");
        m_scratch.Write("sub/deep/c.TXT", "1234567");
        m_scratch.Write("sub/deep/d.bin", "12345678901");
        fs::create_directory_symlink("sub", m_scratch / "link");
    }

    CScratchDirectory m_scratch;
};

}  // namespace

TEST_F(DirectorySize, EverythingCountsWithDirectoriesAndLinkTexts) {
    const long directories = LinkSize(m_scratch / "sub") + LinkSize(m_scratch / "sub/deep");
    EXPECT_EQ(SizeOf(m_scratch.Path()), 3 + 3 + 5 + 7 + 11 + directories);
}

TEST_F(DirectorySize, MaskAndFiltersChooseWhatCountsAtEveryDepth) {
    EXPECT_EQ(SizeOf(m_scratch.Path(), "*.txt"), 3 + 5 + 7);
    EXPECT_EQ(SizeOf(m_scratch.Path(), "*.txt", 0, 0, 0, 1), 3 + 5);
    EXPECT_EQ(SizeOf(m_scratch.Path(), "*", 0, 0, 0x10), 3 + 3 + 5 + 7 + 11);
    EXPECT_EQ(SizeOf(m_scratch.Path(), "*", 0, 0x10), LinkSize(m_scratch / "sub") + LinkSize(m_scratch / "sub/deep"));
    EXPECT_EQ(SizeOf(m_scratch.Path(), "d.bin"), 11);
    EXPECT_EQ(SizeOf(m_scratch.Path(), "*", 1), 0);
}

TEST_F(DirectorySize, LinksToDirectoriesAreNotFollowed) { EXPECT_EQ(SizeOf(m_scratch.Path(), "b.txt"), 5); }

TEST_F(DirectorySize, ADirectoryThatCannotBeOpenedHasNone) {
    EXPECT_EQ(SizeOf(m_scratch / "missing"), 0);
    EXPECT_EQ(SizeOf(m_scratch / "a.txt"), 0);
    EXPECT_EQ(SizeOf("/no/such/dir"), 0);
    EXPECT_EQ(CPortableFile::GetDirectoryContentSize(nullptr, "*", 0, 0, 0, 2), 0);
}

TEST(DirectoryRemoval, AWholeTreeGoes) {
    RunInScratchRoot([](const CScratchRoot& root) {
        fs::create_directories(root / "tree/sub/deep");
        Write(root / "tree/a");
        Write(root / "tree/.hidden");
        Write(root / "tree/sub/deep/b");
        Write(root / "neighbour");
        EXPECT_EQ(DeleteTree(root / "tree"), 1);
        EXPECT_FALSE(fs::exists(root / "tree"));
        EXPECT_TRUE(fs::exists(root / "neighbour"));
    });
}

TEST(DirectoryRemoval, ARelativePathIsRemovedFromTheCurrentDirectory) {
    RunInScratchRoot([](const CScratchRoot& root) {
        fs::create_directories(root / "tree/sub");
        Write(root / "tree/sub/a");
        EXPECT_EQ(DeleteTree("tree"), 1);
        EXPECT_FALSE(fs::exists(root / "tree"));
    });
}

TEST(DirectoryRemoval, AFileAndALinkAreRemovedAsTheyAre) {
    RunInScratchRoot([](const CScratchRoot& root) {
        Write(root / "file");
        fs::create_symlink("nowhere", root / "dangling");
        EXPECT_EQ(DeleteTree(root / "file"), 1);
        EXPECT_EQ(DeleteTree(root / "dangling"), 1);
        EXPECT_FALSE(fs::exists(fs::symlink_status(root / "file")));
        EXPECT_FALSE(fs::exists(fs::symlink_status(root / "dangling")));
    });
}

TEST(DirectoryRemoval, ALinkToADirectoryGoesAndItsTargetStays) {
    RunInScratchRoot([](const CScratchRoot& root) {
        fs::create_directories(root / "target");
        fs::create_directories(root / "tree");
        Write(root / "target/kept");
        fs::create_directory_symlink("../target", root / "tree/inner");
        fs::create_directory_symlink("target", root / "outer");
        EXPECT_EQ(DeleteTree(root / "outer"), 1);
        EXPECT_EQ(DeleteTree(root / "tree"), 1);
        EXPECT_FALSE(fs::exists(fs::symlink_status(root / "outer")));
        EXPECT_FALSE(fs::exists(root / "tree"));
        EXPECT_TRUE(fs::exists(root / "target/kept"));
    });
}

TEST(DirectoryRemoval, ATreeBelowALinkedDirectoryGoes) {
    RunInScratchRoot([](const CScratchRoot& root) {
        fs::create_directories(root / "real/tree/sub");
        fs::create_directory_symlink("real", root / "link");
        Write(root / "real/tree/sub/a");
        EXPECT_EQ(DeleteTree(root / "link/tree"), 1);
        EXPECT_FALSE(fs::exists(root / "real/tree"));
        EXPECT_TRUE(fs::exists(root / "real"));
    });
}

TEST(DirectoryRemoval, AMissingPathIsAFailure) {
    RunInScratchRoot([](const CScratchRoot& root) {
        EXPECT_EQ(DeleteTree(root / "missing"), 0);
        EXPECT_EQ(DeleteTree(root / "no/such/dir"), 0);
        EXPECT_EQ(CPortableFile::DeleteDirectoryTree(nullptr), 0);
    });
}

TEST(DirectoryRemoval, TheEmptyPathRemovesNothing) {
    RunInScratchRoot([](const CScratchRoot& root) {
        fs::create_directory(root / "empty");
        fs::current_path(root / "empty");
        EXPECT_EQ(DeleteTree(""), 0);
        EXPECT_TRUE(fs::exists(root / "empty"));
    });
}

TEST(DirectoryRemoval, AnUndeletableFileLeavesOnlyItselfAndItsDirectories) {
    RunInScratchRoot([](const CScratchRoot& root) {
        fs::create_directories(root / "tree/sub");
        fs::create_directories(root / "tree/other");
        for (const char* name : {"tree/a", "tree/sub/held", "tree/sub/b", "tree/other/c", "source"}) {
            Write(root / name);
        }
        // A mount point can be removed by nobody, root included.
        if (!root.HasOwnMounts() ||
            mount((root / "source").c_str(), (root / "tree/sub/held").c_str(), nullptr, MS_BIND, nullptr) != 0) {
            GTEST_SKIP() << "the kernel refuses a private mount";
        }
        EXPECT_EQ(DeleteTree(root / "tree"), 0);
        EXPECT_TRUE(fs::exists(root / "tree/sub/held"));
        for (const char* name : {"tree/a", "tree/sub/b", "tree/other"}) EXPECT_FALSE(fs::exists(root / name)) << name;
        EXPECT_EQ(DeleteTree(root / "tree/sub/held"), 0);
    });
}

TEST(DirectoryRemoval, AnUndeletableDirectoryIsEmptiedAndReported) {
    RunInScratchRoot([](const CScratchRoot& root) {
        fs::create_directories(root / "tree/held");
        if (!root.HasOwnMounts() || mount("none", (root / "tree/held").c_str(), "tmpfs", 0, nullptr) != 0) {
            GTEST_SKIP() << "the kernel refuses a private mount";
        }
        Write(root / "tree/held/a");
        Write(root / "tree/b");
        EXPECT_EQ(DeleteTree(root / "tree/held"), 0);
        EXPECT_TRUE(fs::is_empty(root / "tree/held"));
        EXPECT_EQ(DeleteTree(root / "tree"), 0);
        EXPECT_FALSE(fs::exists(root / "tree/b"));
    });
}

TEST(DirectoryRemoval, ATreeMayBeDeeperThanTheProcessMayOpenDirectories) {
    RunInScratchRoot([](const CScratchRoot& root) {
        const rlimit few = {32, 32};
        ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &few), 0);
        std::string path = root / "tree";
        for (int depth = 0; depth < 100; ++depth) path += "/d";
        fs::create_directories(path);
        Write(path + "/file", "12345");
        EXPECT_EQ(SizeOf(root / "tree", "file"), 5);
        EXPECT_EQ(DeleteTree(root / "tree"), 1);
        EXPECT_FALSE(fs::exists(root / "tree"));
    });
}

TEST(DirectoryRemoval, TheCurrentDirectoryByItsDotIsEmptiedAndReported) {
    RunInScratchRoot([](const CScratchRoot& root) {
        fs::create_directories(root / "here/sub");
        fs::current_path(root / "here");
        EXPECT_EQ(DeleteTree("."), 0);
        EXPECT_TRUE(fs::is_empty(root / "here"));
    });
}

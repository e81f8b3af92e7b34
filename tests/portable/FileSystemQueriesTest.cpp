// What a file system can hold.
#include <gtest/gtest.h>
#include <sys/statvfs.h>

#include <filesystem>

#include "portable/PortableFile.h"
#include "tests/support/ProcessState.h"
#include "tests/support/ScratchDirectory.h"

TEST(FileSystemQueries, FreeSpaceIsWhatUnprivilegedUsersMayFill) {
    const CScratchDirectory scratch;
    struct statvfs status = {};
    // Others write to the same disk, so a reading counts that lies between two readings of the system.
    for (int attempt = 0; attempt < 100; ++attempt) {
        ASSERT_EQ(statvfs(scratch.Path().c_str(), &status), 0);
        const std::uint64_t before = std::uint64_t{status.f_bavail} * status.f_bsize;
        const std::uint64_t reported = CPortableFile::GetDiscFreeSpace(scratch.Path().c_str());
        ASSERT_EQ(statvfs(scratch.Path().c_str(), &status), 0);
        const std::uint64_t after = std::uint64_t{status.f_bavail} * status.f_bsize;
        if (before == after) {
            EXPECT_EQ(reported, before);
            return;
        }
    }
    GTEST_SKIP() << "the disk is too busy to compare two readings";
}

TEST(FileSystemQueries, FreeSpaceOfARelativePathIsThatOfItsFileSystem) {
    const CScopedCurrentDirectory inside("/proc");
    EXPECT_EQ(CPortableFile::GetDiscFreeSpace("."), 0u);
    EXPECT_GT(CPortableFile::GetDiscFreeSpace(std::filesystem::temp_directory_path().c_str()), 0u);
}

TEST(FileSystemQueries, AMissingPathHasNoFreeSpace) {
    EXPECT_EQ(CPortableFile::GetDiscFreeSpace("/no/such/dir"), 0u);
    EXPECT_EQ(CPortableFile::GetDiscFreeSpace(nullptr), 0u);
}

TEST(FileSystemQueries, TheMaximumLengthIsTheLargestProbeAndLeavesNoFile) {
    const CScratchDirectory scratch;
    long maximum = 0;
    EXPECT_EQ(CPortableFile::GetMaximumFileLength((scratch / "file.txt").c_str(), maximum), 1);
    EXPECT_EQ(maximum, 0x3FFFFFFFF);
    EXPECT_TRUE(std::filesystem::is_empty(scratch.Path()));
}

TEST(FileSystemQueries, TheMaximumLengthOfADirectoryIsProbedInIt) {
    const CScratchDirectory scratch;
    long maximum = 0;
    EXPECT_EQ(CPortableFile::GetMaximumFileLength(scratch.Path().c_str(), maximum), 1);
    EXPECT_EQ(maximum, 0x3FFFFFFFF);
    EXPECT_TRUE(std::filesystem::is_empty(scratch.Path()));
}

TEST(FileSystemQueries, WithoutAProbeTheMaximumLengthIsTwoGigabytes) {
    long maximum = 0;
    EXPECT_EQ(CPortableFile::GetMaximumFileLength("/no/such/dir/file.txt", maximum), 1);
    EXPECT_EQ(maximum, 0x7FFFFFFF);
}

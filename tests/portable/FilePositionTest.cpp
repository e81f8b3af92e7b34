// Positions and the end of a file.
#include <errno.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "portable/PortableFile.h"
#include "tests/support/ScratchDirectory.h"

namespace {

PFile::POSMODE Mode(int value) { return static_cast<PFile::POSMODE>(value); }

// A ten-byte file opened for reading and writing at position 5.
class FilePosition : public testing::Test {
protected:
    FilePosition() : m_file(m_scratch.Write("f", "0123456789").c_str(), CPortableFile::OM_READ_WRITE) {
        EXPECT_EQ(m_file.SetFilePos(PFile::PM_START, 5), 0);
    }

    long Position() {
        long position = -1;
        EXPECT_EQ(m_file.GetFilePos(&position), 0);
        return position;
    }

    CScratchDirectory m_scratch;
    CPortableFile m_file;
};

// A file that cannot tell its position.
class CLostFile : public CPortableFile {
public:
    CLostFile(const char* name, int result) : CPortableFile(name, CPortableFile::OM_READ_WRITE), m_nResult(result) {}

    int GetFilePos(long*) override {
        errno = EIO;
        return m_nResult;
    }

private:
    int m_nResult;
};

// A file that tells a position and a length of its own.
class CBoastfulFile : public CPortableFile {
public:
    using CPortableFile::CPortableFile;

    int GetFilePos(long* position) override {
        *position = 200;
        return 0;
    }
    int GetLength(long* length) override {
        *length = 100;
        return 0;
    }
};

}  // namespace

TEST_F(FilePosition, EachModeCountsFromItsOrigin) {
    const struct {
        int mode;
        long offset;
        long position;
    } rows[] = {{0, 100, 5}, {0, -3, 5}, {1, 3, 3}, {2, 0, 10}, {2, 4, 14}, {3, 2, 7},   {3, 0, 5},
                {4, 3, 3},   {-1, 3, 3}, {9, 0, 0}, {2, -3, 7}, {3, -2, 3}, {2, -10, 0}, {3, -5, 0}};
    for (const auto& row : rows) {
        ASSERT_EQ(m_file.SetFilePos(PFile::PM_START, 5), 0);
        EXPECT_EQ(m_file.SetFilePos(Mode(row.mode), row.offset), 0) << row.mode << " " << row.offset;
        EXPECT_EQ(Position(), row.position) << row.mode << " " << row.offset;
    }
}

TEST_F(FilePosition, ANegativeOffsetBeforeTheStartIsReportedAndMovesNothing) {
    for (const int mode : {1, 2, 3, 7}) {
        EXPECT_EQ(m_file.SetFilePos(Mode(mode), -11), EINVAL) << mode;
        EXPECT_EQ(m_file.Status(), EINVAL) << mode;
        EXPECT_EQ(Position(), 5) << mode;
    }
}

TEST(FilePositionOfSubclass, ANegativeOffsetCountsFromWhatTheVirtualTableTells) {
    const CScratchDirectory scratch;
    CBoastfulFile file(scratch.Write("f", "0123456789").c_str(), CPortableFile::OM_READ);
    long position = 0;
    EXPECT_EQ(file.SetFilePos(PFile::PM_CURRENT, -3), 0);
    EXPECT_EQ(file.CPortableFile::GetFilePos(&position), 0);
    EXPECT_EQ(position, 197);
    EXPECT_EQ(file.SetFilePos(PFile::PM_END, -3), 0);
    EXPECT_EQ(file.CPortableFile::GetFilePos(&position), 0);
    EXPECT_EQ(position, 97);
}

TEST(FilePositionOfPipe, AFailedSeekForwardsGoesUnreported) {
    const CScratchDirectory scratch;
    ASSERT_EQ(mkfifo((scratch / "pipe").c_str(), 0600), 0);
    CPortableFile file((scratch / "pipe").c_str(), CPortableFile::OM_READ_WRITE);
    long position = 99;
    EXPECT_EQ(file.SetFilePos(PFile::PM_START, 3), 0);
    EXPECT_EQ(file.SetFilePos(PFile::PM_CURRENT, 0), 0);
    EXPECT_EQ(file.SetFilePos(PFile::PM_START, -3), ESPIPE);
    EXPECT_EQ(file.GetFilePos(&position), ESPIPE);
    EXPECT_EQ(position, 0);
}

TEST(FilePositionOfMissingFile, PositioningOpensTheFile) {
    const CScratchDirectory scratch;
    CPortableFile file((scratch / "f").c_str(), CPortableFile::OM_READ_WRITE);
    EXPECT_EQ(file.SetFilePos(PFile::PM_NO_SEEK, 0), 0);
    EXPECT_TRUE(std::filesystem::exists(scratch / "f"));
}

TEST(FilePositionOfMissingFile, OnlyANegativeOffsetReportsTheFailedOpening) {
    CPortableFile file("/no-such-file", CPortableFile::OM_READ);
    EXPECT_EQ(file.SetFilePos(PFile::PM_NO_SEEK, 1), 0);
    EXPECT_EQ(file.SetFilePos(PFile::PM_START, 1), 0);
    EXPECT_EQ(file.SetFilePos(PFile::PM_START, -1), ENOENT);
}

TEST_F(FilePosition, TheEndOfTheFileIsSetToItsStart) {
    EXPECT_EQ(m_file.SetEndOfFile(), 0);
    EXPECT_EQ(std::filesystem::file_size(m_scratch / "f"), 0u);
    EXPECT_EQ(Position(), 5);
}

TEST(EndOfFile, IsSetInAFileThatWasNotOpenYet) {
    const CScratchDirectory scratch;
    CPortableFile file(scratch.Write("f", "0123456789").c_str(), CPortableFile::OM_WRITE);
    EXPECT_EQ(file.SetEndOfFile(), 0);
    EXPECT_EQ(std::filesystem::file_size(scratch / "f"), 0u);
}

TEST(EndOfFile, ARefusedTruncationIsReported) {
    const CScratchDirectory scratch;
    CPortableFile file(scratch.Write("f", "0123456789").c_str(), CPortableFile::OM_READ);
    EXPECT_EQ(file.SetEndOfFile(), EINVAL);
    EXPECT_EQ(std::filesystem::file_size(scratch / "f"), 10u);
}

TEST(EndOfFile, AFileThatCannotBeOpenedReportsSuccess) {
    CPortableFile file("/no-such-file", CPortableFile::OM_READ);
    EXPECT_EQ(file.SetEndOfFile(), 0);
    EXPECT_EQ(file.Status(), 0);
}

TEST(EndOfFile, WithoutAPositionNothingIsTruncated) {
    const CScratchDirectory scratch;
    CLostFile failing(scratch.Write("f", "0123456789").c_str(), ESPIPE);
    EXPECT_EQ(failing.SetEndOfFile(), 0);
    CLostFile refusing((scratch / "f").c_str(), -1);
    EXPECT_EQ(refusing.SetEndOfFile(), EIO);
    EXPECT_EQ(std::filesystem::file_size(scratch / "f"), 10u);
}

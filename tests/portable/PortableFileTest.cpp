// The life of a file object: naming, opening, transfer, closing.
#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>

#include "portable/PortableFile.h"
#include "tests/support/ProcessState.h"
#include "tests/support/ScratchDirectory.h"
#include "tests/support/SlotTable.h"

namespace {

constexpr std::size_t kDescriptorOffset = 32;

int DescriptorOf(const CPortableFile& file) { return FieldAt<int>(&file, kDescriptorOffset); }

std::string ContentOf(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(stream), {});
}

int AccessOf(int descriptor) { return fcntl(descriptor, F_GETFL) & O_ACCMODE; }

// A file whose operations are counted and refused in the places that the library calls virtually.
class CObservedFile : public CPortableFile {
public:
    using CPortableFile::CPortableFile;

    int OpenFile(CPortableFile::OpenMode mode) override {
        ++m_nOpened;
        return CPortableFile::OpenFile(mode);
    }
    using CPortableFile::Status;
    int Status() const override { return 1000 + CPortableFile::Status(); }

    int m_nOpened = 0;
};

// A file whose opening answers something of its own.
class CSelfWilledFile : public CPortableFile {
public:
    using CPortableFile::CPortableFile;

    int OpenFile(CPortableFile::OpenMode mode) override {
        CPortableFile::OpenFile(mode);
        return 7;
    }
};

}  // namespace

TEST(PortableFile, ARelativeNameBecomesAbsolute) {
    const CScratchDirectory scratch;
    const CScopedCurrentDirectory inside(scratch.Path());
    CPortableFile file("f", CPortableFile::OM_READ);
    EXPECT_EQ(file.GetName(), scratch / "f");
    EXPECT_EQ(static_cast<const CPortableFile&>(file).GetName(), scratch / "f");
    EXPECT_EQ(static_cast<PFile&>(file).GetName(), scratch / "f");
}

TEST(PortableFile, ANameBelowALinkedDirectoryIsResolved) {
    const CScratchDirectory scratch;
    std::filesystem::create_directory(scratch / "sub");
    std::filesystem::create_directory_symlink("sub", scratch / "link");
    CPortableFile file((scratch / "link/f").c_str(), CPortableFile::OM_READ);
    EXPECT_EQ(file.GetName(), scratch / "sub/f");
}

TEST(PortableFile, ANameInAMissingDirectoryIsEmpty) {
    CPortableFile file("/no/such/dir/f", CPortableFile::OM_READ);
    EXPECT_STREQ(file.GetName(), "");
}

TEST(PortableFile, ANullNameIsEmpty) {
    CPortableFile file(nullptr, CPortableFile::OM_READ);
    EXPECT_STREQ(file.GetName(), "");
}

TEST(PortableFile, ANewObjectIsClosedWithStatusZeroAndItsMode) {
    const CScratchDirectory scratch;
    CPortableFile file((scratch / "f").c_str(), CPortableFile::OM_READ_WRITE);
    EXPECT_EQ(DescriptorOf(file), -1);
    EXPECT_EQ(file.Status(), 0);
    EXPECT_EQ(file.GetAccessMode(), 4);
    EXPECT_TRUE(std::filesystem::is_empty(scratch.Path()));
}

TEST(PortableFile, EachOpenModeHasItsFlags) {
    const struct {
        int mode;
        bool creates;
        int access;
    } rows[] = {{0, false, O_RDONLY}, {1, false, O_RDONLY}, {2, true, O_WRONLY},  {3, false, O_RDONLY},
                {4, true, O_RDWR},    {5, false, O_RDONLY}, {6, false, O_RDONLY}, {-1, false, O_RDONLY}};
    for (const auto& row : rows) {
        const CScratchDirectory scratch;
        const auto mode = static_cast<CPortableFile::OpenMode>(row.mode);
        CPortableFile missing((scratch / "missing").c_str(), CPortableFile::OM_READ);
        EXPECT_EQ(missing.OpenFile(mode), row.creates ? 0 : ENOENT) << row.mode;
        EXPECT_EQ(std::filesystem::exists(scratch / "missing"), row.creates) << row.mode;
        EXPECT_EQ(missing.GetAccessMode(), row.mode);

        CPortableFile existing(scratch.Write("f", "0123456789").c_str(), mode);
        ASSERT_EQ(existing.OpenFile(mode), 0) << row.mode;
        EXPECT_EQ(AccessOf(DescriptorOf(existing)), row.access) << row.mode;
        EXPECT_EQ(ContentOf(scratch / "f"), "0123456789") << row.mode;
    }
}

TEST(PortableFile, ACreatedFileBelongsToOwnerAndGroup) {
    const CScratchDirectory scratch;
    const mode_t previous = umask(0);
    CPortableFile file((scratch / "f").c_str(), CPortableFile::OM_WRITE);
    EXPECT_EQ(file.OpenFile(CPortableFile::OM_WRITE), 0);
    umask(previous);
    struct stat status = {};
    ASSERT_EQ(stat((scratch / "f").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0660u);
}

TEST(PortableFile, OpeningTwiceLeavesTheFirstDescriptorOpen) {
    const CScratchDirectory scratch;
    CPortableFile file(scratch.Write("f", "").c_str(), CPortableFile::OM_READ);
    ASSERT_EQ(file.OpenFile(CPortableFile::OM_READ), 0);
    const int first = DescriptorOf(file);
    ASSERT_EQ(file.OpenFile(CPortableFile::OM_READ), 0);
    EXPECT_NE(DescriptorOf(file), first);
    EXPECT_NE(fcntl(first, F_GETFD), -1);
    close(first);
}

TEST(PortableFile, ReadingOpensTheFileAndCountsTheBytes) {
    const CScratchDirectory scratch;
    CPortableFile file(scratch.Write("f", "abc").c_str(), CPortableFile::OM_READ);
    char buffer[8];
    std::memset(buffer, '#', sizeof(buffer));
    unsigned int done = 99;
    EXPECT_EQ(file.Read(buffer, sizeof(buffer), &done), 0);
    EXPECT_EQ(done, 3u);
    EXPECT_EQ(std::memcmp(buffer, "abc\0\0\0\0\0", 8), 0);
    EXPECT_EQ(file.Read(buffer, sizeof(buffer), &done), 0);
    EXPECT_EQ(done, 0u);
}

TEST(PortableFile, ReadingAMissingFileInModeFourCreatesItEmpty) {
    const CScratchDirectory scratch;
    CPortableFile file((scratch / "f").c_str(), CPortableFile::OM_READ_WRITE);
    char buffer[4] = {1, 2, 3, 4};
    unsigned int done = 99;
    EXPECT_EQ(file.Read(buffer, sizeof(buffer), &done), 0);
    EXPECT_EQ(done, 0u);
    EXPECT_EQ(std::memcmp(buffer, "\0\0\0\0", 4), 0);
    EXPECT_EQ(std::filesystem::file_size(scratch / "f"), 0u);
}

TEST(PortableFile, AFailedReadZeroesTheBufferAndReportsTheSystemsError) {
    const CScratchDirectory scratch;
    CPortableFile file(scratch.Path().c_str(), CPortableFile::OM_READ);
    char buffer[4] = {1, 2, 3, 4};
    unsigned int done = 99;
    EXPECT_EQ(file.Read(buffer, sizeof(buffer), &done), EISDIR);
    EXPECT_EQ(file.Status(), EISDIR);
    EXPECT_EQ(done, 0u);
    EXPECT_EQ(std::memcmp(buffer, "\0\0\0\0", 4), 0);
}

TEST(PortableFile, ReadingNothingLeavesTheBufferAlone) {
    const CScratchDirectory scratch;
    CPortableFile file(scratch.Write("f", "abc").c_str(), CPortableFile::OM_READ);
    char untouched = '#';
    unsigned int done = 99;
    EXPECT_EQ(file.Read(&untouched, 0, &done), 0);
    EXPECT_EQ(untouched, '#');
    EXPECT_EQ(done, 0u);
}

TEST(PortableFile, AFileThatCannotBeOpenedReportsWhyAtEveryTransfer) {
    const CScratchDirectory scratch;
    CPortableFile file((scratch / "missing").c_str(), CPortableFile::OM_READ);
    char buffer[4] = {1, 2, 3, 4};
    unsigned int done = 99;
    long position = 99;
    EXPECT_EQ(file.Read(buffer, sizeof(buffer), &done), ENOENT);
    EXPECT_EQ(done, 0u);
    EXPECT_EQ(std::memcmp(buffer, "\0\0\0\0", 4), 0);
    done = 99;
    EXPECT_EQ(file.Write(buffer, sizeof(buffer), &done), ENOENT);
    EXPECT_EQ(done, 0u);
    EXPECT_EQ(file.GetFilePos(&position), ENOENT);
    EXPECT_EQ(position, 0);
}

TEST(PortableFile, WritingInModeTwoDoesNotTruncate) {
    const CScratchDirectory scratch;
    CPortableFile file(scratch.Write("f", "0123456789").c_str(), CPortableFile::OM_WRITE);
    char text[] = "abc";
    unsigned int done = 0;
    EXPECT_EQ(file.Write(text, 3, &done), 0);
    EXPECT_EQ(done, 3u);
    EXPECT_EQ(ContentOf(scratch / "f"), "abc3456789");
}

TEST(PortableFile, AFailedWriteCountsNothing) {
    const CScratchDirectory scratch;
    CPortableFile file(scratch.Write("f", "0123456789").c_str(), CPortableFile::OM_READ);
    char text[] = "abc";
    unsigned int done = 99;
    EXPECT_EQ(file.Write(text, 3, &done), EBADF);
    EXPECT_EQ(done, 0u);
    EXPECT_EQ(ContentOf(scratch / "f"), "0123456789");
}

TEST(PortableFile, AFullDeviceIsAnErrorOfTheWrite) {
    if (access("/dev/full", W_OK) != 0) GTEST_SKIP() << "no /dev/full on this system";
    CPortableFile file("/dev/full", CPortableFile::OM_READ_WRITE);
    char text[] = "abc";
    unsigned int done = 99;
    EXPECT_EQ(file.Write(text, 3, &done), ENOSPC);
    EXPECT_EQ(done, 0u);
}

TEST(PortableFile, ASuccessClearsTheStatus) {
    const CScratchDirectory scratch;
    CPortableFile file((scratch / "f").c_str(), CPortableFile::OM_READ);
    EXPECT_EQ(file.OpenFile(CPortableFile::OM_READ), ENOENT);
    EXPECT_EQ(file.Status(), ENOENT);
    EXPECT_EQ(file.OpenFile(CPortableFile::OM_WRITE), 0);
    EXPECT_EQ(file.Status(), 0);
}

TEST(PortableFile, ClosingGivesTheDescriptorBack) {
    const CScratchDirectory scratch;
    CPortableFile file(scratch.Write("f", "").c_str(), CPortableFile::OM_READ);
    ASSERT_EQ(file.OpenFile(CPortableFile::OM_READ), 0);
    const int descriptor = DescriptorOf(file);
    EXPECT_EQ(file.CloseFile(), 0);
    EXPECT_EQ(DescriptorOf(file), -1);
    EXPECT_EQ(fcntl(descriptor, F_GETFD), -1);
}

TEST(PortableFile, ClosingAClosedFileSucceedsAndClearsTheStatus) {
    CPortableFile file("/no-such-file", CPortableFile::OM_READ);
    EXPECT_EQ(file.OpenFile(CPortableFile::OM_READ), ENOENT);
    EXPECT_EQ(file.CloseFile(), 0);
    EXPECT_EQ(file.Status(), 0);
}

TEST(PortableFile, AFailedCloseIsReportedAndStillForgetsTheDescriptor) {
    const CScratchDirectory scratch;
    CPortableFile file(scratch.Write("f", "").c_str(), CPortableFile::OM_READ);
    ASSERT_EQ(file.OpenFile(CPortableFile::OM_READ), 0);
    close(DescriptorOf(file));
    EXPECT_EQ(file.CloseFile(), EBADF);
    EXPECT_EQ(DescriptorOf(file), -1);
}

TEST(PortableFile, DestructionClosesTheDescriptor) {
    const CScratchDirectory scratch;
    int descriptor = -1;
    {
        CPortableFile file(scratch.Write("f", "").c_str(), CPortableFile::OM_READ);
        ASSERT_EQ(file.OpenFile(CPortableFile::OM_READ), 0);
        descriptor = DescriptorOf(file);
    }
    EXPECT_EQ(fcntl(descriptor, F_GETFD), -1);
}

TEST(PortableFile, DeletingRemovesTheFileAndKeepsTheDescriptor) {
    const CScratchDirectory scratch;
    CPortableFile file(scratch.Write("f", "abc").c_str(), CPortableFile::OM_READ);
    ASSERT_EQ(file.OpenFile(CPortableFile::OM_READ), 0);
    EXPECT_EQ(file.DeleteFile(), 0);
    EXPECT_FALSE(std::filesystem::exists(scratch / "f"));
    EXPECT_NE(DescriptorOf(file), -1);
    EXPECT_EQ(file.DeleteFile(), ENOENT);
    EXPECT_EQ(file.Status(), ENOENT);
}

TEST(PortableFile, DeletingRemovesAnEmptyDirectoryAsWell) {
    const CScratchDirectory scratch;
    std::filesystem::create_directory(scratch / "dir");
    scratch.Write("dir/file", "");
    CPortableFile directory((scratch / "dir").c_str(), CPortableFile::OM_READ);
    EXPECT_EQ(directory.DeleteFile(), ENOTEMPTY);
    std::filesystem::remove(scratch / "dir/file");
    EXPECT_EQ(directory.DeleteFile(), 0);
    EXPECT_FALSE(std::filesystem::exists(scratch / "dir"));
}

TEST(PortableFile, ACloneHasTheNameInModeFourAndIsClosed) {
    const CScratchDirectory scratch;
    CPortableFile file(scratch.Write("f", "").c_str(), CPortableFile::OM_WRITE);
    ASSERT_EQ(file.OpenFile(CPortableFile::OM_WRITE), 0);
    const std::unique_ptr<CPortableFile> clone(file.Clone());
    EXPECT_STREQ(clone->GetName(), file.GetName());
    EXPECT_EQ(clone->GetAccessMode(), 4);
    EXPECT_EQ(DescriptorOf(*clone), -1);
    EXPECT_EQ(clone->Status(), 0);
}

TEST(PortableFile, ACloneOfANamelessFileIsNameless) {
    CPortableFile file(nullptr, CPortableFile::OM_READ);
    const std::unique_ptr<PFile> clone(static_cast<PFile&>(file).Clone());
    EXPECT_STREQ(clone->GetName(), "");
}

TEST(PortableFile, AssignmentTakesNameAndModeAndKeepsStatusAndOpenDescriptor) {
    const CScratchDirectory scratch;
    CPortableFile target(scratch.Write("t", "").c_str(), CPortableFile::OM_READ);
    CPortableFile source(scratch.Write("s", "").c_str(), CPortableFile::OM_WRITE);
    ASSERT_EQ(target.OpenFile(CPortableFile::OM_READ), 0);
    const int descriptor = DescriptorOf(target);
    char byte = 0;
    unsigned int done = 0;
    ASSERT_EQ(target.Write(&byte, 1, &done), EBADF);
    ASSERT_EQ(source.OpenFile(CPortableFile::OM_WRITE), 0);

    target = source;
    EXPECT_STREQ(target.GetName(), source.GetName());
    EXPECT_EQ(target.GetAccessMode(), 2);
    EXPECT_EQ(DescriptorOf(target), -1);
    EXPECT_EQ(target.Status(), EBADF);
    EXPECT_NE(fcntl(descriptor, F_GETFD), -1);
    close(descriptor);
}

TEST(PortableFile, SelfAssignmentChangesNothing) {
    const CScratchDirectory scratch;
    CPortableFile file(scratch.Write("f", "").c_str(), CPortableFile::OM_READ);
    ASSERT_EQ(file.OpenFile(CPortableFile::OM_READ), 0);
    const int descriptor = DescriptorOf(file);
    CPortableFile& same = file;
    file = same;
    EXPECT_EQ(DescriptorOf(file), descriptor);
    EXPECT_EQ(file.GetName(), scratch / "f");
}

TEST(PortableFile, LazyOpeningAndResultsGoThroughTheVirtualTable) {
    const CScratchDirectory scratch;
    CObservedFile file(scratch.Write("f", "abc").c_str(), CPortableFile::OM_READ);
    char byte = 0;
    unsigned int done = 0;
    long position = 0;
    EXPECT_EQ(file.GetFilePos(&position), 1000);
    EXPECT_EQ(file.m_nOpened, 1);
    EXPECT_EQ(file.CloseFile(), 1000);
    EXPECT_EQ(file.SetFilePos(PFile::PM_NO_SEEK, 0), 1000);
    EXPECT_EQ(file.m_nOpened, 2);
    EXPECT_EQ(file.Write(&byte, 1, &done), 1000 + EBADF);
    EXPECT_EQ(static_cast<PFile&>(file).Status(), 1000 + EBADF);
    EXPECT_EQ(file.m_nOpened, 2);
}

TEST(PortableFile, AFileThatCameOpenIsUsedWhateverItsOpeningAnswers) {
    const CScratchDirectory scratch;
    const std::string path = scratch.Write("f", "0123456789");
    char buffer[4] = "";
    unsigned int done = 0;
    CSelfWilledFile read(path.c_str(), CPortableFile::OM_READ);
    EXPECT_EQ(read.Read(buffer, 3, &done), 0);
    EXPECT_STREQ(buffer, "012");
    CSelfWilledFile written(path.c_str(), CPortableFile::OM_WRITE);
    EXPECT_EQ(written.Write(buffer, 3, &done), 0);
    EXPECT_EQ(done, 3u);
    CSelfWilledFile positioned(path.c_str(), CPortableFile::OM_READ);
    EXPECT_EQ(positioned.SetFilePos(PFile::PM_END, -1), 0);
    EXPECT_EQ(positioned.Read(buffer, 3, &done), 0);
    EXPECT_STREQ(buffer, "9");

    CObservedFile observed(path.c_str(), CPortableFile::OM_READ);
    EXPECT_EQ(observed.Read(buffer, 3, &done), 1000);
    EXPECT_STREQ(buffer, "012");
    CSelfWilledFile missing((scratch / "missing").c_str(), CPortableFile::OM_READ);
    EXPECT_EQ(missing.Read(buffer, 3, &done), ENOENT);
}

TEST(PortableFile, TheDriveIsAlwaysAFixedOne) {
    CPortableFile file("/no-such-file", CPortableFile::OM_READ);
    EXPECT_EQ(file.GetDrive(), 3);
    EXPECT_EQ(file.PFile::GetDrive(), 3);
}

TEST(PortableFile, TheErrorReporterIsNullUntilItIsSet) {
    EXPECT_EQ(CPortableFile::m_pErrorReporter, nullptr);
    int anything = 0;
    auto* const reporter = reinterpret_cast<CAbstractErrorReporter*>(&anything);
    CPortableFile::SetErrorReporter(reporter);
    EXPECT_EQ(CPortableFile::m_pErrorReporter, reporter);
    CPortableFile::SetErrorReporter(nullptr);
    EXPECT_EQ(CPortableFile::m_pErrorReporter, nullptr);
}

TEST(PortableInvalidFile, HasAnEmptyNameAndModeFour) {
    CPortableInvalidFile file;
    EXPECT_STREQ(file.GetName(), "");
    EXPECT_EQ(file.GetAccessMode(), 4);
    EXPECT_EQ(file.FileExists(), 0);
}

TEST(PortableInvalidFile, NeverExistsEvenAfterTakingANameOver) {
    const CScratchDirectory scratch;
    CPortableFile existing(scratch.Write("f", "").c_str(), CPortableFile::OM_READ);
    CPortableInvalidFile file;
    static_cast<CPortableFile&>(file) = existing;
    EXPECT_EQ(static_cast<CPortableFile&>(file).FileExists(), 1);
    EXPECT_EQ(file.FileExists(), 0);
}

TEST(PortableInvalidFile, ItsTransfersFailAsTheEmptyPathDoes) {
    CPortableInvalidFile file;
    char buffer[4];
    unsigned int done = 99;
    long length = 99;
    EXPECT_EQ(file.OpenFile(CPortableFile::OM_READ_WRITE), ENOENT);
    EXPECT_EQ(file.Read(buffer, sizeof(buffer), &done), ENOENT);
    EXPECT_EQ(file.Write(buffer, sizeof(buffer), &done), ENOENT);
    EXPECT_EQ(file.DeleteFile(), ENOENT);
    EXPECT_EQ(file.GetLength(&length), 1);
    EXPECT_EQ(length, 0);
}

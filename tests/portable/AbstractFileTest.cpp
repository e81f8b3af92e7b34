// Layout and slot order of files, seen from outside.
#include <errno.h>
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <type_traits>

#include "portable/PortableFile.h"
#include "tests/support/ScratchDirectory.h"
#include "tests/support/SlotTable.h"

static_assert(sizeof(PFile) == 8, "a virtual table and nothing else");
static_assert(sizeof(CPortableFile) == 48, "virtual table, name, descriptor, status, mode");
static_assert(sizeof(CPortableInvalidFile) == sizeof(CPortableFile), "adds no field");
static_assert(sizeof(PFile::POSMODE) == 4 && sizeof(CPortableFile::OpenMode) == 4, "32-bit enumerations");
static_assert(std::is_base_of<PFile, CPortableFile>::value, "a portable file is a file");
static_assert(std::is_abstract<PFile>::value, "a file is abstract");
static_assert(!std::is_copy_constructible<CPortableFile>::value, "a file cannot be copied");

namespace {

enum ESlot {
    kDestroy = 0,
    kDestroyAndFree,
    kClone,
    kWrite,
    kRead,
    kStatus,
    kGetFilePos,
    kSetFilePos,
    kCloseFile,
    kGetName,
    kGetLength,
    kSetEndOfFile,
    kDeleteFile,
    kGetDrive,
    kOpenFile,
    kConstStatus,
};

}  // namespace

TEST(AbstractFile, FieldsOfAFileLieInTheirOrder) {
    const CScratchDirectory scratch;
    CPortableFile file(scratch.Write("f", "").c_str(), CPortableFile::OM_WRITE);
    EXPECT_EQ(FieldAt<const char*>(&file, 16), file.GetName());
    EXPECT_EQ(FieldAt<int>(&file, 28), static_cast<int>(std::strlen(file.GetName())));
    EXPECT_EQ(FieldAt<int>(&file, 32), -1);
    EXPECT_EQ(FieldAt<int>(&file, 36), 0);
    EXPECT_EQ(FieldAt<int>(&file, 40), 2);
    char byte = 0;
    unsigned int done = 0;
    EXPECT_EQ(file.Read(&byte, 1, &done), EBADF);
    EXPECT_GE(FieldAt<int>(&file, 32), 0);
    EXPECT_EQ(FieldAt<int>(&file, 36), EBADF);
}

TEST(AbstractFile, EverySlotOfAFileDoesItsOperation) {
    const CScratchDirectory scratch;
    auto* const file = new CPortableFile((scratch / "f").c_str(), CPortableFile::OM_READ_WRITE);
    char text[] = "0123456789";
    char buffer[4] = "";
    unsigned int done = 0;
    long number = -1;
    EXPECT_EQ((CallSlot<int, int>(file, kOpenFile, 4)), 0);
    EXPECT_EQ((CallSlot<int, void*, unsigned int, unsigned int*>(file, kWrite, text, 10u, &done)), 0);
    EXPECT_EQ(done, 10u);
    EXPECT_EQ((CallSlot<int, long*>(file, kGetFilePos, &number)), 0);
    EXPECT_EQ(number, 10);
    EXPECT_EQ((CallSlot<int, int, long>(file, kSetFilePos, 1, 2L)), 0);
    EXPECT_EQ((CallSlot<int, void*, unsigned int, unsigned int*>(file, kRead, buffer, 3u, &done)), 0);
    EXPECT_STREQ(buffer, "234");
    EXPECT_EQ((CallSlot<int, long*>(file, kGetLength, &number)), 0);
    EXPECT_EQ(number, 10);
    EXPECT_EQ((CallSlot<const char*>(file, kGetName)), scratch / "f");
    EXPECT_EQ((CallSlot<int>(file, kGetDrive)), 3);
    EXPECT_EQ((CallSlot<int>(file, kSetEndOfFile)), 0);
    EXPECT_EQ(std::filesystem::file_size(scratch / "f"), 0u);
    EXPECT_EQ((CallSlot<int>(file, kCloseFile)), 0);
    EXPECT_EQ(FieldAt<int>(file, 32), -1);
    EXPECT_EQ((CallSlot<int>(file, kDeleteFile)), 0);
    EXPECT_EQ((CallSlot<int>(file, kDeleteFile)), ENOENT);
    EXPECT_EQ((CallSlot<int>(file, kStatus)), ENOENT);
    EXPECT_EQ((CallSlot<int>(file, kConstStatus)), ENOENT);

    void* const clone = CallSlot<void*>(file, kClone);
    EXPECT_EQ((CallSlot<const char*>(clone, kGetName)), scratch / "f");
    CallSlot<void>(clone, kDestroyAndFree);
    CallSlot<void>(file, kDestroyAndFree);
}

TEST(AbstractFile, AnInvalidFileKeepsEveryOperationButItsDestructor) {
    CPortableFile file("/no-such-file", CPortableFile::OM_READ);
    CPortableInvalidFile invalid;
    // The destructors are left out: a compiler may or may not give both classes the same one.
    for (std::size_t slot = kClone; slot <= kConstStatus; ++slot) {
        EXPECT_EQ(SlotOf(&invalid, slot), SlotOf(&file, slot)) << slot;
    }
}

TEST(AbstractFile, DestructionInPlaceClosesAndLeavesTheStorage) {
    const CScratchDirectory scratch;
    alignas(CPortableFile) unsigned char storage[sizeof(CPortableFile)];
    void* const file = new (storage) CPortableFile(scratch.Write("f", "").c_str(), CPortableFile::OM_READ);
    EXPECT_EQ((CallSlot<int, int>(file, kOpenFile, 1)), 0);
    const std::string link = "/proc/self/fd/" + std::to_string(FieldAt<int>(file, 32));
    EXPECT_TRUE(std::filesystem::exists(link));
    CallSlot<void>(file, kDestroy);
    EXPECT_FALSE(std::filesystem::exists(link));
}

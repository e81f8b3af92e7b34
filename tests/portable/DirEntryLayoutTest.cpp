// Layout and slot order of enumerations, seen from outside.
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <memory>
#include <type_traits>

#include "portable/DirEntry.h"
#include "tests/support/ScratchDirectory.h"
#include "tests/support/SlotTable.h"

static_assert(sizeof(CPortableFileInfo) == 120, "name, number, three times, long number, number");
static_assert(sizeof(CDirEntry) == 88, "virtual table, mask, four values, valid flag, file, directory");
static_assert(sizeof(CPosixDirEntry) == 88 + 8 + 120, "adds the stream and the record");
static_assert(std::is_abstract<CDirEntry>::value, "an enumeration is abstract");
static_assert(!std::is_copy_constructible<CPosixDirEntry>::value, "an enumeration cannot be copied");

namespace {

enum ESlot {
    kIsValid = 0,
    kDereference,
    kGetFileInfo,
    kGetFile,
    kGetFilePtr,
    kNext,
    kDestroy,
    kDestroyAndFree,
    kReadNextEntry,
};

}  // namespace

TEST(DirEntryLayout, FieldsLieInTheirOrder) {
    const CScratchDirectory scratch;
    scratch.Write("file", "");
    const CPortableFile directory(scratch.Path().c_str(), CPortableFile::OM_READ_WRITE);
    CPosixDirEntry entry(directory, "*", 0, 0, 0x40, 0x82);
    EXPECT_STREQ(FieldAt<const char*>(&entry, 16), "*");
    EXPECT_EQ(FieldAt<int>(&entry, 32), 0);
    EXPECT_EQ(FieldAt<int>(&entry, 36), 0);
    EXPECT_EQ(FieldAt<int>(&entry, 40), 0x40);
    EXPECT_EQ(FieldAt<int>(&entry, 44), 0x82);
    EXPECT_EQ(FieldAt<int>(&entry, 48), 1);
    EXPECT_EQ(FieldAt<CPortableFile*>(&entry, 56), entry.GetFilePtr());
    EXPECT_EQ(FieldAt<const char*>(&entry, 72), scratch.Path().string());
    EXPECT_NE(FieldAt<void*>(&entry, 88), nullptr);
    EXPECT_EQ(static_cast<const void*>(&entry.GetFileInfo()), reinterpret_cast<const char*>(&entry) + 96);
}

TEST(DirEntryLayout, TheFirstTwoFilterValuesLieBeforeTheOthers) {
    const CScratchDirectory scratch;
    const CPortableFile directory(scratch.Path().c_str(), CPortableFile::OM_READ_WRITE);
    CPosixDirEntry entry(directory, "mask", 11, 12, 13, 14);
    for (int i = 0; i < 4; ++i) EXPECT_EQ(FieldAt<int>(&entry, 32 + 4 * static_cast<std::size_t>(i)), 11 + i);
    EXPECT_EQ(FieldAt<int>(&entry, 48), 0);
}

TEST(DirEntryLayout, FieldsOfTheRecordLieInTheirOrder) {
    const CPortableFileInfo info;
    const auto offsetOf = [&info](const void* field) {
        return static_cast<const char*>(field) - reinterpret_cast<const char*>(&info);
    };
    EXPECT_EQ(offsetOf(&info.m_strName), 0);
    EXPECT_EQ(offsetOf(&info.m_nAttributes), 24);
    EXPECT_EQ(offsetOf(&info.m_creationTime), 32);
    EXPECT_EQ(offsetOf(&info.m_lastAccessTime), 56);
    EXPECT_EQ(offsetOf(&info.m_lastWriteTime), 80);
    EXPECT_EQ(offsetOf(&info.m_nLength), 104);
    EXPECT_EQ(offsetOf(&info.m_nReserved), 112);
}

TEST(DirEntryLayout, ADirectoryThatCannotBeOpenedHasNoStream) {
    const CPortableFile missing("/no-such-dir", CPortableFile::OM_READ_WRITE);
    CPosixDirEntry entry(missing, "*", 0, 0, 0, 2);
    EXPECT_EQ(FieldAt<void*>(&entry, 88), nullptr);
}

TEST(DirEntryLayout, EverySlotDoesItsOperation) {
    const CScratchDirectory scratch;
    for (const char* name : {"a", "b", "c"}) scratch.Write(name, "");
    const CPortableFile directory(scratch.Path().c_str(), CPortableFile::OM_READ_WRITE);
    CDirEntry* const entry = directory.OpenDir("*", 0, 0, 0, 2);
    const auto nameOf = [](void* file) { return std::string(FieldAt<const char*>(file, 16)); };

    EXPECT_EQ((CallSlot<int>(entry, kIsValid)), 1);
    void* const first = CallSlot<void*>(entry, kGetFile);
    EXPECT_EQ((CallSlot<void*>(entry, kGetFilePtr)), first);
    EXPECT_EQ((CallSlot<void*>(entry, kDereference)), first);
    EXPECT_EQ((CallSlot<void*>(entry, kGetFileInfo)), reinterpret_cast<char*>(entry) + 96);
    const std::string firstName = nameOf(first);
    CallSlot<int>(entry, kNext);
    const std::string secondName = nameOf(CallSlot<void*>(entry, kGetFile));
    EXPECT_NE(secondName, firstName);
    CallSlot<int>(entry, kReadNextEntry);
    const std::string thirdName = nameOf(CallSlot<void*>(entry, kGetFile));
    EXPECT_NE(thirdName, firstName);
    EXPECT_NE(thirdName, secondName);
    EXPECT_EQ((CallSlot<int>(entry, kIsValid)), 1);
    CallSlot<int>(entry, kNext);
    EXPECT_EQ((CallSlot<int>(entry, kIsValid)), 0);
    EXPECT_EQ((CallSlot<int>(entry, kNext)), 0);
    CallSlot<void>(entry, kDestroyAndFree);
}

TEST(DirEntryLayout, DestructionInPlaceLeavesTheStorage) {
    const CScratchDirectory scratch;
    const CPortableFile directory(scratch.Path().c_str(), CPortableFile::OM_READ_WRITE);
    alignas(CPosixDirEntry) unsigned char storage[sizeof(CPosixDirEntry)];
    CDirEntry* const entry = new (storage) CPosixDirEntry(directory, "*", 0, 0, 0, 2);
    CallSlot<void>(entry, kDestroy);
    EXPECT_EQ(static_cast<void*>(entry), static_cast<void*>(storage));
}

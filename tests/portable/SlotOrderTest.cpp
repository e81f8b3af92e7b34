// The tables of this folder's classes hold the exported functions, slot by slot, and nothing behind them.
#include <gtest/gtest.h>

#include "portable/BasicString.h"
#include "portable/DirEntry.h"
#include "portable/PortableFile.h"
#include "portable/PortableTime.h"
#include "portable/PosixEvent.h"
#include "portable/PosixMutex.h"
#include "portable/PosixSemaphore.h"
#include "portable/PosixSingleLock.h"
#include "tests/support/ClassTable.h"

namespace {

using support::ExpectSlots;
using support::ExpectTableLengths;
using support::kPure;
using support::TableOf;
using support::TableOfClass;

// Of an abstract class, which no object has but while it is built, the exported table itself is read. A compiler may
// leave the slots of its destructors empty there.

TEST(SlotOrder, OfAnAbstractFile) {
    const support::CTable table = TableOfClass("_ZTV5PFile");
    ASSERT_NE(table, nullptr);
    ExpectSlots(table + 2,
                {kPure, kPure, kPure, kPure, kPure, kPure, kPure, kPure, kPure, kPure, kPure, "_ZN5PFile8GetDriveEv"});
    ExpectTableLengths("_ZTV5PFile", {14});
}

TEST(SlotOrder, OfAPortableFile) {
    const CPortableFile file(nullptr, CPortableFile::OM_READ);
    ExpectSlots(
        TableOf(&file),
        {"_ZN13CPortableFileD1Ev", "_ZN13CPortableFileD0Ev", "_ZN13CPortableFile5CloneEv",
         "_ZN13CPortableFile5WriteEPvjPj", "_ZN13CPortableFile4ReadEPvjPj", "_ZN13CPortableFile6StatusEv",
         "_ZN13CPortableFile10GetFilePosEPl", "_ZN13CPortableFile10SetFilePosEN5PFile7POSMODEEl",
         "_ZN13CPortableFile9CloseFileEv", "_ZN13CPortableFile7GetNameEv", "_ZN13CPortableFile9GetLengthEPl",
         "_ZN13CPortableFile12SetEndOfFileEv", "_ZN13CPortableFile10DeleteFileEv", "_ZN13CPortableFile8GetDriveEv",
         "_ZN13CPortableFile8OpenFileENS_8OpenModeE", "_ZNK13CPortableFile6StatusEv"});
    ExpectTableLengths("_ZTV13CPortableFile", {16});
}

TEST(SlotOrder, OfAnInvalidFile) {
    const CPortableInvalidFile file;
    ExpectSlots(
        TableOf(&file),
        {"_ZN20CPortableInvalidFileD1Ev", "_ZN20CPortableInvalidFileD0Ev", "_ZN13CPortableFile5CloneEv",
         "_ZN13CPortableFile5WriteEPvjPj", "_ZN13CPortableFile4ReadEPvjPj", "_ZN13CPortableFile6StatusEv",
         "_ZN13CPortableFile10GetFilePosEPl", "_ZN13CPortableFile10SetFilePosEN5PFile7POSMODEEl",
         "_ZN13CPortableFile9CloseFileEv", "_ZN13CPortableFile7GetNameEv", "_ZN13CPortableFile9GetLengthEPl",
         "_ZN13CPortableFile12SetEndOfFileEv", "_ZN13CPortableFile10DeleteFileEv", "_ZN13CPortableFile8GetDriveEv",
         "_ZN13CPortableFile8OpenFileENS_8OpenModeE", "_ZNK13CPortableFile6StatusEv"});
    ExpectTableLengths("_ZTV20CPortableInvalidFile", {16});
}

TEST(SlotOrder, OfAnAbstractEnumeration) {
    const support::CTable table = TableOfClass("_ZTV9CDirEntry");
    ExpectSlots(table, {"_ZN9CDirEntry7IsValidEv", "_ZN9CDirEntrydeEv", kPure, "_ZN9CDirEntry7GetFileEv",
                        "_ZN9CDirEntry10GetFilePtrEv", "_ZN9CDirEntry4NextEv"});
    ExpectSlots(table + 8, {kPure});
    ExpectTableLengths("_ZTV9CDirEntry", {9});
}

TEST(SlotOrder, OfAnEnumeration) {
    const CPortableFile missing("/no-such-dir", CPortableFile::OM_READ_WRITE);
    const CPosixDirEntry entry(missing, "*", 0, 0, 0, 2);
    ExpectSlots(TableOf(&entry),
                {"_ZN9CDirEntry7IsValidEv", "_ZN9CDirEntrydeEv", "_ZNK14CPosixDirEntry11GetFileInfoEv",
                 "_ZN9CDirEntry7GetFileEv", "_ZN9CDirEntry10GetFilePtrEv", "_ZN9CDirEntry4NextEv",
                 "_ZN14CPosixDirEntryD1Ev", "_ZN14CPosixDirEntryD0Ev", "_ZN14CPosixDirEntry13ReadNextEntryEv"});
    ExpectTableLengths("_ZTV14CPosixDirEntry", {9});
}

TEST(SlotOrder, OfAnAbstractSynchronisationObject) {
    const support::CTable table = TableOfClass("_ZTV16CPosixSyncObject");
    ASSERT_NE(table, nullptr);
    ExpectSlots(table + 2, {kPure, kPure});
    ExpectTableLengths("_ZTV16CPosixSyncObject", {4});
}

TEST(SlotOrder, OfAMutex) {
    const CPosixMutex mutex(0);
    ExpectSlots(TableOf(&mutex), {"_ZN11CPosixMutexD1Ev", "_ZN11CPosixMutexD0Ev", "_ZN11CPosixMutex4LockEj",
                                  "_ZN11CPosixMutex6UnlockEv"});
    ExpectTableLengths("_ZTV11CPosixMutex", {4});
}

TEST(SlotOrder, OfASemaphore) {
    const CPosixSemaphore semaphore(0, 1);
    ExpectSlots(TableOf(&semaphore), {"_ZN15CPosixSemaphoreD1Ev", "_ZN15CPosixSemaphoreD0Ev",
                                      "_ZN15CPosixSemaphore4LockEj", "_ZN15CPosixSemaphore6UnlockEv"});
    ExpectTableLengths("_ZTV15CPosixSemaphore", {4});
}

TEST(SlotOrder, OfAnEventTakesLockAndUnlockFromTheSemaphore) {
    const CPosixEvent event(0, 0);
    ExpectSlots(TableOf(&event), {"_ZN11CPosixEventD1Ev", "_ZN11CPosixEventD0Ev", "_ZN15CPosixSemaphore4LockEj",
                                  "_ZN15CPosixSemaphore6UnlockEv"});
    ExpectTableLengths("_ZTV11CPosixEvent", {4});
}

TEST(SlotOrder, OfAScopeLock) {
    CPosixMutex mutex(0);
    const CPosixSingleLock lock(&mutex, 0);
    ExpectSlots(TableOf(&lock), {"_ZN16CPosixSingleLockD1Ev", "_ZN16CPosixSingleLockD0Ev",
                                 "_ZN16CPosixSingleLock4LockEj", "_ZN16CPosixSingleLock6UnlockEv"});
    ExpectTableLengths("_ZTV16CPosixSingleLock", {4});
}

TEST(SlotOrder, OfATimeIsItsDestructorAlone) {
    const CPortableTime time;
    ExpectSlots(TableOf(&time), {"_ZN13CPortableTimeD1Ev", "_ZN13CPortableTimeD0Ev"});
    ExpectTableLengths("_ZTV13CPortableTime", {2});
}

TEST(SlotOrder, OfATimeSpanIsItsDestructorAlone) {
    const CPortableTimeSpan span(1);
    ExpectSlots(TableOf(&span), {"_ZN17CPortableTimeSpanD1Ev", "_ZN17CPortableTimeSpanD0Ev"});
    ExpectTableLengths("_ZTV17CPortableTimeSpan", {2});
}

TEST(SlotOrder, OfAStringIsItsDestructorAlone) {
    const CBasicString<char> string;
    ExpectSlots(TableOf(&string), {"_ZN12CBasicStringIcED1Ev", "_ZN12CBasicStringIcED0Ev"});
    ExpectTableLengths("_ZTV12CBasicStringIcE", {2});
}

}  // namespace

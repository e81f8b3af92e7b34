// The abstract file.
// A file object belongs to one thread at a time. [any thread]
#pragma once

#include "portable/Export.h"

// Implemented by CPortableFile; called by the library, hosts and plug-ins.
// Results are 0 for success and the errno value of the failed call otherwise, unless an operation says differently.
class KELO_EXPORT PFile {
public:
    // Where SetFilePos counts from; a value without a name counts from the start.
    enum POSMODE : int {
        PM_NO_SEEK = 0,
        PM_START = 1,
        PM_END = 2,
        PM_CURRENT = 3,
    };

    PFile();
    virtual ~PFile();

    // A new, unopened object for the same file; the caller deletes it.
    virtual PFile* Clone() = 0;

    // Transfers at most `size` bytes and stores the count in `*done`, 0 on failure. Neither pointer may be null.
    virtual int Write(void* buffer, unsigned int size, unsigned int* done) = 0;
    virtual int Read(void* buffer, unsigned int size, unsigned int* done) = 0;

    // The result of the last operation that stores one.
    virtual int Status() = 0;

    // Positions and lengths count bytes.
    virtual int GetFilePos(long* position) = 0;
    virtual int SetFilePos(PFile::POSMODE mode, long offset) = 0;
    virtual int CloseFile() = 0;

    // Lent by the object until its name changes or it ends; never null.
    virtual const char* GetName() = 0;

    // 0, or 1 when there is no such file.
    virtual int GetLength(long* length) = 0;
    virtual int SetEndOfFile() = 0;

    // Removes the named file.
    virtual int DeleteFile() = 0;

    // Always 3, the Win32 kind of a fixed drive.
    virtual int GetDrive();
};

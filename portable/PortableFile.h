// Named files in the Win32 manner over POSIX descriptors, with the path and directory functions that belong to them.
// A file object belongs to one thread at a time; static functions share only the process's current directory and
// environment, whose changes the callers serialise. [any thread]
#pragma once

#include <cstdint>

#include "portable/AbstractFile.h"
#include "portable/BasicString.h"
#include "portable/Export.h"
#include "portable/PortableTime.h"

class CAbstractErrorReporter;
class CDirEntry;

// Implemented by the library; called by the library, hosts and plug-ins.
// The file opens itself with its stored mode at the first read, write or positioning.
// Results are those of PFile; questions about the named path answer 1 or 0, examine a symbolic link itself and leave
// the status alone.
class KELO_EXPORT CPortableFile : public PFile {
public:
    // A value without a name reads only. A missing file is created with permissions 0660; nothing is truncated.
    enum OpenMode : int {
        OM_READ = 1,
        OM_WRITE = 2,
        OM_READ_WRITE = 4,
    };

    // Makes `name` absolute and opens nothing. The name stays empty when `name` is null or its directory is missing.
    CPortableFile(const char* name, CPortableFile::OpenMode mode);

    CPortableFile(const CPortableFile&) = delete;

    // Takes over mode and name and counts as closed. The target's descriptor stays open and its status stays as it
    // was: part of the contract.
    CPortableFile& operator=(CPortableFile& other);

    ~CPortableFile() override;

    // Has the open mode 4 whatever this object's mode is.
    CPortableFile* Clone() override;

    // One write() or read(), after the lazy opening. Read zero-fills the buffer first; at the end of the file it
    // succeeds with 0 bytes.
    int Write(void* buffer, unsigned int size, unsigned int* done) override;
    int Read(void* buffer, unsigned int size, unsigned int* done) override;

    int Status() override;
    int GetFilePos(long* position) override;

    // A failed seek by an offset of 0 or more goes unreported: part of the contract.
    int SetFilePos(PFile::POSMODE mode, long offset) override;
    int CloseFile() override;
    const char* GetName() override;
    int GetLength(long* length) override;

    // Cuts the file to length zero wherever the position is, and reports no failure to find the position: part of the
    // contract.
    int SetEndOfFile() override;

    // Does not close the descriptor.
    int DeleteFile() override;
    int GetDrive() override;

    // Opens the file and stores the mode. A descriptor that is open already is not closed.
    virtual int OpenFile(CPortableFile::OpenMode mode);
    virtual int Status() const;

    // The path and the mode that the object was made or opened with; the path is lent.
    const char* GetName() const;
    OpenMode GetAccessMode() const;

    // 1 or 0 for the entry itself (lstat(2)): a link to nothing exists, a link to a directory is none.
    int FileExists() const;
    int IsLink() const;
    int IsDirectory() const;
    static int IsDirectory(const char* path);

    // Bytes; 0 for a missing file.
    long FileLength() const;

    // Stores 0x10 for a directory and 0 for anything else; a missing path answers 0 and stores nothing.
    int GetAttributes_WinStyle(unsigned int& attributes) const;

    // Does nothing and answers 0.
    int SetAttributes_WinStyle(unsigned int attributes) const;

    // All three are the time of the last modification: part of the contract. The time 0 for a missing path.
    CPortableTime GetCreationTime() const;
    CPortableTime GetLastWrite() const;
    CPortableTime GetLastAccessTime() const;

    // The text of a symbolic link, empty for anything else.
    CBasicString<char> ReadLink() const;

    // A hook for hosts, borrowed; the library never calls it. [host set-up]
    static void SetErrorReporter(CAbstractErrorReporter* reporter);

    // 1 for success. A target created here has permissions 0700. An existing target fails when `failIfExists` is not 0,
    // and otherwise keeps what lies behind the copied bytes.
    static int CopyFile(const char* source, const char* target, int failIfExists);

    // Path splitting. "/" separates and only one is stepped over, so "a//b" has the components "a", "" and "b".
    // Components are numbered from 0; a null path counts as the empty one.
    static int Split_GetPathComponentCount(const char* path);

    // Empty when there is no component `n`.
    static CBasicString<char> Split_GetPathComponent(const char* path, int n);

    // The path without its first `n` components; the trailing slash stays.
    static CBasicString<char> Split_CutLeft(const char* path, int n);

    // The path without its last `n` components and without one trailing slash, so "/c" without 1 is empty.
    static CBasicString<char> Split_CutRight(const char* path, int n);

    // The path itself when it is a directory, else the path without its last component, "/" when nothing is left:
    // a bare file name gives "/", not the current directory.
    static CBasicString<char> Split_GetPath(const char* path);

    // The last component; empty when the path is a directory.
    static CBasicString<char> Split_GetFileName(const char* path);

    // From the last dot of the file name on, dot included; empty without a dot.
    static CBasicString<char> Split_GetExtension(const char* path);

    // The file name before its last dot.
    static CBasicString<char> Split_GetFileWithoutExt(const char* path);

    // Joins `count` further arguments of type `const char*`. A later component that begins with "/" does not restart
    // the path; a result of "/" comes out empty.
    static CBasicString<char> CombinePathComponents(int rooted, int count, ...);

    // Absolute form with every directory resolved and the last component kept as written, unless it is a directory.
    // Empty when the directory part does not exist.
    static CBasicString<char> MakeAbsolute(const char* path);

    // Always empty: there are no short names here.
    static CBasicString<char> MakeShortPathName(const char* path);

    // 1, or 0 when the `size` bytes do not suffice.
    static int GetCurrentDirectory(int size, char* buffer);

    // Always 1; on failure the text stays as it was.
    static int GetCurrentDirectory(CBasicString<char>& result);
    static int SetCurrentDirectory(const char* path);

    // The value of HOME, or "/".
    static CBasicString<char> GetDefaultDirectory();
    static CBasicString<char> GetDefaultRootDirectory();

    // A proposal only, nothing is created; empty on failure.
    static CBasicString<char> GetTempPath();
    static CBasicString<char> CreateTempName(const char* directory, const char* prefix);

    // Bytes available to unprivileged users; 0 on failure.
    static std::uint64_t GetDiscFreeSpace(const char* path);

    // Probes with a temporary file in the directory of `path`; always 1. Between 0x7FFFFFFF and 0x3FFFFFFFF bytes.
    static int GetMaximumFileLength(const char* path, long& maximum);

    // Enumerations, never null, which the caller deletes. `skipAll` other than 0 rejects every entry; attributes are
    // those of GetAttributes_WinStyle; bit 0 of `matchFlags` compares names with case.
    // A mask without a directory, or directly below "/", lists the current directory.
    static CDirEntry* FindFirst(const char* mask, int skipAll, int requiredAttributes, int excludedAttributes,
                                unsigned int matchFlags);
    static CDirEntry* FindFirstChildDir(const char* mask, int skipAll, unsigned int matchFlags);
    static CDirEntry* FindFirstNonDir(const char* mask, int skipAll, unsigned int matchFlags);

    // Lists this directory.
    CDirEntry* OpenDir(const char* entryMask, int skipAll, int requiredAttributes, int excludedAttributes,
                       unsigned int matchFlags) const;

    // Bytes of all matching entries of the directory and of the directories below it; links are not followed.
    static long GetDirectoryContentSize(const char* directory, const char* entryMask, int skipAll,
                                        int requiredAttributes, int excludedAttributes, unsigned int matchFlags);

    // Removes a file, a link, or a directory with everything in it. 1 when all of it is gone; a failure does not stop
    // the rest. The empty path removes nothing.
    static int DeleteDirectoryTree(const char* path);

    static CAbstractErrorReporter* m_pErrorReporter;

private:
    friend struct SResolvedFile;

    void CommonConstructor(const char* name, CPortableFile::OpenMode mode);
    KELO_HIDDEN bool IsOpenAfterLazyOpening();
    KELO_HIDDEN int KeepResult(bool succeeded);
    KELO_HIDDEN int SeekBackwards(PFile::POSMODE mode, long offset);

    CBasicString<char> m_strName;
    int m_nDescriptor;
    int m_nStatus;
    OpenMode m_eMode;
};

// What an enumeration stands on after its last entry: a file with an empty name and the open mode 4.
class KELO_EXPORT CPortableInvalidFile : public CPortableFile {
public:
    CPortableInvalidFile();
    ~CPortableInvalidFile() override;

    // Always 0.
    int FileExists() const;
};

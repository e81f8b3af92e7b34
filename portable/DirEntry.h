// Enumeration of one directory's entries.
// An enumeration belongs to one thread at a time. [any thread]
#pragma once

#include <dirent.h>

#include <memory>

#include "portable/BasicString.h"
#include "portable/Export.h"
#include "portable/PortableFile.h"
#include "portable/PortableFileInfo.h"

// Implemented by CPosixDirEntry; made by CPortableFile::FindFirst and OpenDir, looped over and deleted by their caller:
// for (...; entry->IsValid(); entry->Next()).
class KELO_EXPORT CDirEntry {
public:
    CDirEntry(const CDirEntry&) = delete;
    CDirEntry& operator=(const CDirEntry&) = delete;

    // 1 while the enumeration stands on an entry.
    virtual int IsValid();

    // The same file as GetFile.
    virtual CPortableFile& operator*();

    // Always the empty record.
    virtual const CPortableFileInfo& GetFileInfo() const = 0;

    // The current entry under its absolute name, a CPortableInvalidFile after the end; lent by the enumeration until
    // Next or its end.
    virtual CPortableFile& GetFile();
    virtual CPortableFile* GetFilePtr();

    // Goes to the next matching entry. 0 after the end; otherwise the result means nothing, ask IsValid.
    virtual int Next();

    virtual ~CDirEntry();

protected:
    // The conditions of CPortableFile::FindFirst; all texts are copied.
    CDirEntry(const CPortableFile& directory, const char* entryMask, int skipAll, int requiredAttributes,
              int excludedAttributes, unsigned int matchFlags);

    // Stands on the next entry that passes, or on the end.
    virtual int ReadNextEntry() = 0;

    CBasicString<char> m_strMask;
    int m_nSkipAll;
    int m_nRequiredAttributes;
    int m_nExcludedAttributes;
    int m_nMatchFlags;
    int m_bValid;
    int m_bDirectoryResolved;  // lies in the alignment gap behind the valid flag: no offset depends on it
    std::unique_ptr<CPortableFile> m_pFile;
    CBasicString<char> m_strDirectory;
};

// Closes a directory stream.
struct SDirectoryCloser {
    // For std::unique_ptr.
    void operator()(DIR* stream) const noexcept { closedir(stream); }
};

// The entries of a directory in the order of the file system, "." and ".." left out.
// A directory that cannot be opened has none.
class KELO_EXPORT CPosixDirEntry : public CDirEntry {
public:
    // Stands on the first entry that passes.
    CPosixDirEntry(const CPortableFile& directory, const char* entryMask, int skipAll, int requiredAttributes,
                   int excludedAttributes, unsigned int matchFlags);
    ~CPosixDirEntry() override;

    const CPortableFileInfo& GetFileInfo() const override;

protected:
    int ReadNextEntry() override;

private:
    // Makes the entry current; false, with no current file, when it is gone or its attributes do not pass.
    KELO_HIDDEN bool Accept(const char* name);
    KELO_HIDDEN int StandOnEnd();

    std::unique_ptr<DIR, SDirectoryCloser> m_pStream;
    CPortableFileInfo m_info;
};

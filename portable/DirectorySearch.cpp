// Starting points of directory enumerations.
#include "portable/DirEntry.h"
#include "portable/ResolvedFile.h"

namespace {

constexpr int kDirectoryAttribute = 0x10;  // Win32 FILE_ATTRIBUTE_DIRECTORY

}  // namespace

CDirEntry* CPortableFile::FindFirst(const char* mask, int skipAll, int requiredAttributes, int excludedAttributes,
                                    unsigned int matchFlags) {
    // A mask directly below the root loses its slash here and lists the current directory: part of the contract.
    CBasicString<char> directory = Split_CutRight(mask, 1);
    if (directory.IsEmpty()) GetCurrentDirectory(directory);
    const CBasicString<char> entryMask = Split_GetPathComponent(mask, Split_GetPathComponentCount(mask) - 1);
    return CPortableFile(directory.GetText(), OM_READ_WRITE)
        .OpenDir(entryMask.GetText(), skipAll, requiredAttributes, excludedAttributes, matchFlags);
}

CDirEntry* CPortableFile::FindFirstChildDir(const char* mask, int skipAll, unsigned int matchFlags) {
    return FindFirst(mask, skipAll, kDirectoryAttribute, 0, matchFlags);
}

CDirEntry* CPortableFile::FindFirstNonDir(const char* mask, int skipAll, unsigned int matchFlags) {
    return FindFirst(mask, skipAll, 0, kDirectoryAttribute, matchFlags);
}

CDirEntry* CPortableFile::OpenDir(const char* entryMask, int skipAll, int requiredAttributes, int excludedAttributes,
                                  unsigned int matchFlags) const {
    // A file without a name has no entries; its empty name must not turn into the current directory.
    const CPortableFile directory(m_strName.IsEmpty() ? nullptr : GetName(), OM_READ_WRITE);
    return std::make_unique<CPosixDirEntry>(directory, entryMask, skipAll, requiredAttributes, excludedAttributes,
                                            matchFlags)
        .release();
}

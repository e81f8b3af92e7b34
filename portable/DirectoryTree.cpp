// Size and removal of directory trees.
#include <unistd.h>

#include <memory>
#include <vector>

#include "portable/DirEntry.h"
#include "portable/ResolvedFile.h"

namespace {

constexpr int kDirectoryAttribute = 0x10;  // Win32 FILE_ATTRIBUTE_DIRECTORY
constexpr unsigned int kAnyCase = 2;

// What an entry has to pass to be counted.
struct SEntryFilter {
    const char* m_szMask;
    int m_nSkipAll;
    int m_nRequiredAttributes;
    int m_nExcludedAttributes;
    unsigned int m_nMatchFlags;
};

std::unique_ptr<CDirEntry> List(const char* directory, const SEntryFilter& filter) {
    const CPortableFile file(directory, CPortableFile::OM_READ_WRITE);
    return std::unique_ptr<CDirEntry>(file.OpenDir(filter.m_szMask, filter.m_nSkipAll, filter.m_nRequiredAttributes,
                                                   filter.m_nExcludedAttributes, filter.m_nMatchFlags));
}

// Collects before anybody descends, so that a deep tree needs one open directory and not one for each level.
std::vector<CBasicString<char>> ListNames(const char* directory, const SEntryFilter& filter) {
    std::vector<CBasicString<char>> names;
    for (const auto entry = List(directory, filter); entry->IsValid() != 0; entry->Next()) {
        names.emplace_back(entry->GetFile().GetName());
    }
    return names;
}

long ContentSize(const char* directory, const SEntryFilter& filter) {
    long size = 0;
    for (const auto entry = List(directory, filter); entry->IsValid() != 0; entry->Next()) {
        size += entry->GetFile().FileLength();
    }
    const SEntryFilter directories = {"*", 0, kDirectoryAttribute, 0, kAnyCase};
    for (const CBasicString<char>& child : ListNames(directory, directories)) {
        size += ContentSize(child.GetText(), filter);
    }
    return size;
}

bool RemoveDirectory(const char* path);

bool RemoveEntry(const char* name) {
    return CPortableFile::IsDirectory(name) != 0 ? RemoveDirectory(name) : SResolvedFile::Make(name)->DeleteFile() == 0;
}

// Goes on after a failure, so that as much as possible is gone.
bool RemoveDirectory(const char* path) {
    bool complete = true;
    for (const CBasicString<char>& entry : ListNames(path, {"*", 0, 0, 0, kAnyCase})) {
        if (!RemoveEntry(entry.GetText())) complete = false;
    }
    return rmdir(path) == 0 && complete;
}

bool RemoveFile(const char* path) {
    // The empty path would come out as the current directory.
    if (path == nullptr || *path == '\0') return false;
    return CPortableFile(path, CPortableFile::OM_READ_WRITE).DeleteFile() == 0;
}

}  // namespace

long CPortableFile::GetDirectoryContentSize(const char* directory, const char* entryMask, int skipAll,
                                            int requiredAttributes, int excludedAttributes, unsigned int matchFlags) {
    return ContentSize(directory, {entryMask, skipAll, requiredAttributes, excludedAttributes, matchFlags});
}

int CPortableFile::DeleteDirectoryTree(const char* path) {
    return (IsDirectory(path) != 0 ? RemoveDirectory(path) : RemoveFile(path)) ? 1 : 0;
}

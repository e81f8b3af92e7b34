// Enumeration of one directory's entries, over readdir.
#include "portable/DirEntry.h"

#include <limits.h>
#include <stdlib.h>

#include <cstring>
#include <string>

#include "portable/MatchMask.h"
#include "portable/ResolvedFile.h"
#include "portable/StringCase.h"

namespace {

constexpr int kMatchCase = 1;

bool IsDotEntry(const char* name) { return std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0; }

// Only "*" and "?" make a wildcard; any other mask is the whole name, "[" included.
bool NameMatches(std::string mask, std::string name, int matchFlags) {
    if ((matchFlags & kMatchCase) == 0) {
        _strlwr(mask.data());
        _strlwr(name.data());
    }
    if (mask.find_first_of("*?") == std::string::npos) return mask == name;
    return MatchMask(mask.c_str(), name.c_str(), 1) != 0;
}

// Whether the names of entries of `directory` come out resolved without asking for each of them.
bool IsResolved(const char* directory) {
    char resolved[PATH_MAX];
    return realpath(directory, resolved) != nullptr && std::strcmp(resolved, directory) == 0;
}

}  // namespace

CDirEntry::CDirEntry(const CPortableFile& directory, const char* entryMask, int skipAll, int requiredAttributes,
                     int excludedAttributes, unsigned int matchFlags)
    : m_strMask(entryMask),
      m_nSkipAll(skipAll),
      m_nRequiredAttributes(requiredAttributes),
      m_nExcludedAttributes(excludedAttributes),
      m_nMatchFlags(static_cast<int>(matchFlags)),
      m_bValid(1),
      m_bDirectoryResolved(IsResolved(directory.GetName()) ? 1 : 0),
      m_strDirectory(directory.GetName()) {}

CDirEntry::~CDirEntry() { m_pFile.reset(); }

int CDirEntry::IsValid() { return m_bValid; }

CPortableFile& CDirEntry::operator*() { return GetFile(); }

CPortableFile& CDirEntry::GetFile() { return *m_pFile; }

CPortableFile* CDirEntry::GetFilePtr() { return m_pFile.get(); }

int CDirEntry::Next() {
    if (m_bValid == 0) return 0;
    m_pFile.reset();
    return ReadNextEntry();
}

CPosixDirEntry::CPosixDirEntry(const CPortableFile& directory, const char* entryMask, int skipAll,
                               int requiredAttributes, int excludedAttributes, unsigned int matchFlags)
    : CDirEntry(directory, entryMask, skipAll, requiredAttributes, excludedAttributes, matchFlags),
      m_pStream(opendir(directory.GetName())) {
    CPosixDirEntry::ReadNextEntry();
}

CPosixDirEntry::~CPosixDirEntry() { m_pStream.reset(); }

const CPortableFileInfo& CPosixDirEntry::GetFileInfo() const { return m_info; }

int CPosixDirEntry::ReadNextEntry() {
    if (m_pStream == nullptr) return StandOnEnd();
    while (const dirent64* entry = readdir64(m_pStream.get())) {
        // The flag rejects every entry and means nothing else: part of the contract.
        if (IsDotEntry(entry->d_name) || m_nSkipAll != 0) continue;
        if (NameMatches(m_strMask.GetText(), entry->d_name, m_nMatchFlags) && Accept(entry->d_name)) return 1;
    }
    return StandOnEnd();
}

bool CPosixDirEntry::Accept(const char* name) {
    const CBasicString<char> path = CPortableFile::CombinePathComponents(0, 2, m_strDirectory.GetText(), name);
    if (m_bDirectoryResolved != 0) {
        m_pFile = SResolvedFile::Make(path.GetText());
    } else {
        m_pFile = std::make_unique<CPortableFile>(path.GetText(), CPortableFile::OM_READ_WRITE);
    }

    unsigned int attributes = 0;
    const auto required = static_cast<unsigned int>(m_nRequiredAttributes);
    const auto excluded = static_cast<unsigned int>(m_nExcludedAttributes);
    if (m_pFile->GetAttributes_WinStyle(attributes) != 0 && (attributes & required) == required &&
        (attributes & excluded) == 0) {
        return true;
    }
    m_pFile.reset();
    return false;
}

int CPosixDirEntry::StandOnEnd() {
    m_pFile = std::make_unique<CPortableInvalidFile>();
    m_bValid = 0;
    return 0;
}

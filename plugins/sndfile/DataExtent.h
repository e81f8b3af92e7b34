// How many bytes of samples the header of a sound file declares, and how many are there.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "plugins/shared/FileBytes.h"
#include "plugins/sndfile/SplicedFile.h"

struct SDataExtent {
    std::uint64_t m_nDeclared;  // 0 where the header does not know
    std::uint64_t m_nPresent;   // up to the end of the file
    bool m_bMisleading;         // as the file stands, the codec would find fewer than are there, or more
    bool m_bTooLong;            // and nothing that the header can hold lets it find them
    SSplice m_splice;           // by which the codec finds those that are present

    bool IsCutShort() const { return m_nPresent < m_nDeclared; }
};

// Of a file of the format `formatName` (as CSoundFile::FormatName tells it). None when the format has no such field or
// when it is not found.
std::optional<SDataExtent> FindDataExtent(CFileBytes& file, const std::string& formatName);

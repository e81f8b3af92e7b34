// The pages of an Ogg file (RFC 3533, 6).
#pragma once

#include <cstdint>
#include <optional>

#include "plugins/shared/FileBytes.h"

struct SOggEnd {
    std::uint64_t m_nAt = 0;      // behind the last whole page, 0 without any
    std::uint64_t m_nSerial = 0;  // of the stream that the page belongs to

    // Granule positions that the stream's last page adds to those of the pages before it; none when not known.
    std::optional<std::uint64_t> m_lastPage;

    bool m_bCutShort = false;  // inside a page or a packet, with the end of the stream missing
};

SOggEnd FindOggEnd(CFileBytes& file);

// Whether streams follow one another (RFC 3533, 4): the last page belongs to none of those that begin the file, or one
// begins behind other pages. Looks at every page.
bool IsOggChain(CFileBytes& file, const SOggEnd& end);

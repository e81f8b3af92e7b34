// Where the pages of an Ogg file end (RFC 3533, 6).
#pragma once

#include <cstdint>

#include "plugins/sndfile/FileBytes.h"

struct SOggEnd {
    std::uint64_t m_nAt = 0;   // behind the last whole page
    bool m_bCutShort = false;  // inside a page or a packet, with the end of the stream missing
};

SOggEnd FindOggEnd(CFileBytes& file);

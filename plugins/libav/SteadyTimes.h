// Whether timestamps run on with the sound.
#pragma once

#include <cstdint>
#include <memory>

#include "plugins/libav/InputFile.h"

enum ESteadiness {
    UNSTEADY,  // with gaps, or damaged
    JOINED,    // going back, where another recording was joined on
    STEADY,
    TAKEN_FOR_STEADY,  // as far as is known: of a large file, or where decoding alone tells the frames of packets
};

struct SSteadiness {
    ESteadiness m_eSteadiness;
    std::int64_t m_nGrid = 0;  // frames of which every block has a multiple, 0 when unknown
};

// Reads all packets of the sound track and decodes but the first ones: a timestamp that is not as far from those before
// as the frames between tell, behind a gap or where another recording was joined on, is no guide to a position.
// [stream-thread]
SSteadiness SteadinessOf(const std::shared_ptr<const CInputFile>& file);

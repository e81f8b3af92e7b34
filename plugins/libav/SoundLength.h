// How long a sound is.
#pragma once

#include <cstdint>
#include <memory>

#include "plugins/libav/PositionedTrack.h"

struct SSoundLength {
    std::int64_t m_nFrames = 0;       // 0 when unknown
    bool m_bIsLimit = false;          // what the codec delivers beyond is padding
    bool m_bPromised = false;         // the file counts its frames
    std::int64_t m_nUncertainty = 0;  // by which the file may be wrong about that
    bool m_bByTimes = false;          // placed by the timestamps of the end

    // Whether a sound that ends at `position` lacks something.
    bool IsCutShortAt(std::int64_t position) const { return m_bPromised && position + m_nUncertainty < m_nFrames; }
};

// `track` stands on its first block, also afterwards. Reads on in the file where its header does not tell. Unknown
// where only timestamps would tell that are no guide, and where another recording was joined on.
SSoundLength LengthOf(const std::shared_ptr<const CInputFile>& file, CPositionedTrack& track);

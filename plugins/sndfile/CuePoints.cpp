// Cue points of a sound file.
#include "plugins/sndfile/CuePoints.h"

#include <algorithm>
#include <cstddef>

namespace {

// SF_CUES is declared for 100 points; with fewer or more it is cut or goes on.
std::size_t CuesSize(std::uint32_t count) { return offsetof(SF_CUES, cue_points) + count * sizeof(SF_CUE_POINT); }

}  // namespace

std::vector<std::uint64_t> CuePointsOf(SNDFILE* file) {
    std::uint32_t count = 0;
    if (sf_command(file, SFC_GET_CUE_COUNT, &count, sizeof count) == SF_FALSE || count == 0) return {};

    const std::size_t size = std::max(CuesSize(count), sizeof(SF_CUES));
    std::vector<std::uint32_t> storage(size / sizeof(std::uint32_t) + 1);
    auto* const cues = reinterpret_cast<SF_CUES*>(storage.data());
    if (sf_command(file, SFC_GET_CUE, cues, static_cast<int>(size)) == SF_FALSE) return {};

    std::vector<std::uint64_t> positions;
    const SF_CUE_POINT* const first = cues->cue_points;
    std::transform(first, first + std::min(count, cues->cue_count), std::back_inserter(positions),
                   [](const SF_CUE_POINT& cue) { return std::uint64_t{cue.sample_offset}; });
    std::sort(positions.begin(), positions.end());
    return positions;
}

// The order of channels in a frame: that of the codec and that of RIFF WAVE.
#include "plugins/sndfile/ChannelOrder.h"

#include <algorithm>
#include <iterator>
#include <numeric>

namespace {

constexpr int kLeft = SF_CHANNEL_MAP_LEFT;
constexpr int kRight = SF_CHANNEL_MAP_RIGHT;
constexpr int kCenter = SF_CHANNEL_MAP_CENTER;
constexpr int kLfe = SF_CHANNEL_MAP_LFE;
constexpr int kRearLeft = SF_CHANNEL_MAP_REAR_LEFT;
constexpr int kRearRight = SF_CHANNEL_MAP_REAR_RIGHT;
constexpr int kRearCenter = SF_CHANNEL_MAP_REAR_CENTER;
constexpr int kSideLeft = SF_CHANNEL_MAP_SIDE_LEFT;
constexpr int kSideRight = SF_CHANNEL_MAP_SIDE_RIGHT;

// Bit of dwChannelMask (ksmedia.h, SPEAKER_*); -1 for what is no speaker.
int MaskBitOf(int speaker) {
    constexpr int kByBit[] = {kLeft,
                              kRight,
                              kCenter,
                              kLfe,
                              kRearLeft,
                              kRearRight,
                              SF_CHANNEL_MAP_FRONT_LEFT_OF_CENTER,
                              SF_CHANNEL_MAP_FRONT_RIGHT_OF_CENTER,
                              kRearCenter,
                              kSideLeft,
                              kSideRight,
                              SF_CHANNEL_MAP_TOP_CENTER,
                              SF_CHANNEL_MAP_TOP_FRONT_LEFT,
                              SF_CHANNEL_MAP_TOP_FRONT_CENTER,
                              SF_CHANNEL_MAP_TOP_FRONT_RIGHT,
                              SF_CHANNEL_MAP_TOP_REAR_LEFT,
                              SF_CHANNEL_MAP_TOP_REAR_CENTER,
                              SF_CHANNEL_MAP_TOP_REAR_RIGHT};
    const auto* const found = std::find(std::begin(kByBit), std::end(kByBit), speaker);
    return found == std::end(kByBit) ? -1 : static_cast<int>(found - std::begin(kByBit));
}

}  // namespace

CChannelOrder CChannelOrder::OfFile(SNDFILE* file, int channels) {
    std::vector<int> speakers(static_cast<std::size_t>(channels));
    const int bytes = static_cast<int>(speakers.size() * sizeof(int));
    if (sf_command(file, SFC_GET_CHANNEL_MAP_INFO, speakers.data(), bytes) == SF_FALSE) return {};
    return CChannelOrder(speakers);
}

CChannelOrder CChannelOrder::OfVorbis(int channels) {
    switch (channels) {
        case 3:
            return CChannelOrder({kLeft, kCenter, kRight});
        case 5:
            return CChannelOrder({kLeft, kCenter, kRight, kRearLeft, kRearRight});
        case 6:
            return CChannelOrder({kLeft, kCenter, kRight, kRearLeft, kRearRight, kLfe});
        case 7:
            return CChannelOrder({kLeft, kCenter, kRight, kSideLeft, kSideRight, kRearCenter, kLfe});
        case 8:
            return CChannelOrder({kLeft, kCenter, kRight, kSideLeft, kSideRight, kRearLeft, kRearRight, kLfe});
        default:
            return {};
    }
}

CChannelOrder::CChannelOrder(const std::vector<int>& speakers) {
    std::vector<int> bits(speakers.size());
    std::transform(speakers.begin(), speakers.end(), bits.begin(), MaskBitOf);
    if (bits.size() > kMostChannels || std::find(bits.begin(), bits.end(), -1) != bits.end()) return;
    if (std::is_sorted(bits.begin(), bits.end())) return;
    m_vPlaces.resize(bits.size());
    std::iota(m_vPlaces.begin(), m_vPlaces.end(), std::size_t{0});
    std::stable_sort(m_vPlaces.begin(), m_vPlaces.end(),
                     [&bits](std::size_t left, std::size_t right) { return bits[left] < bits[right]; });
}

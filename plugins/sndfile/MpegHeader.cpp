// The header of an MPEG audio frame.
#include "plugins/sndfile/MpegHeader.h"

#include "plugins/shared/FileBytes.h"

namespace {

// ISO/IEC 11172-3, 2.4.2.3, bitrate_index 1 to 14 by layer; ISO/IEC 13818-3, 2.4.2.3 for the low rates.
constexpr int kBitRates[3][15] = {{0, 32, 64, 96, 128, 160, 192, 224, 256, 288, 320, 352, 384, 416, 448},
                                  {0, 32, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 384},
                                  {0, 32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320}};
constexpr int kLowBitRates[2][15] = {{0, 32, 48, 56, 64, 80, 96, 112, 128, 144, 160, 176, 192, 224, 256},
                                     {0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160}};
constexpr int kSamplingRates[3] = {44100, 48000, 32000};

constexpr std::uint32_t kSync = 0xFFE00000;
constexpr std::uint32_t kBitRateIndex = 0x0000F000;
constexpr std::uint32_t kBitRateStep = 0x00001000;
constexpr std::uint32_t kPadding = 0x00000200;
constexpr std::uint32_t kNoCrc = 0x00010000;
// Sync, version, layer and sampling rate.
constexpr std::uint32_t kKinship = 0xFFFE0C00;

}  // namespace

std::optional<CMpegHeader> CMpegHeader::Parse(std::string_view bytes) {
    if (bytes.size() < kMpegHeaderBytes) return std::nullopt;
    const auto word = static_cast<std::uint32_t>(FromBigEndian(bytes.substr(0, kMpegHeaderBytes)));
    const bool version = (word >> 19 & 3) != 1;
    const bool layer = (word >> 17 & 3) != 0;
    const std::uint32_t bitRate = word >> 12 & 15;
    const bool samplingRate = (word >> 10 & 3) != 3;
    if ((word & kSync) != kSync || !version || !layer || bitRate == 0 || bitRate == 15 || !samplingRate) {
        return std::nullopt;
    }
    return CMpegHeader(word);
}

int CMpegHeader::BitRate() const {
    const std::uint32_t index = m_nWord >> 12 & 15;
    return HasLowRate() ? kLowBitRates[Layer() == 1 ? 0 : 1][index] : kBitRates[Layer() - 1][index];
}

int CMpegHeader::SamplingRate() const {
    const int rate = kSamplingRates[m_nWord >> 10 & 3];
    if (!HasLowRate()) return rate;
    return (m_nWord >> 20 & 1) != 0 ? rate / 2 : rate / 4;
}

// ISO/IEC 11172-3, 2.4.3.1: slots of 4 bytes in Layer I, of 1 byte in the others.
std::size_t CMpegHeader::FrameBytes() const {
    const int padding = (m_nWord & kPadding) != 0 ? 1 : 0;
    const int slotBytes = Layer() == 1 ? 4 : 1;
    const auto samples = static_cast<int>(FrameSamples());
    return static_cast<std::size_t>((samples / 8 / slotBytes * 1000 * BitRate() / SamplingRate() + padding) *
                                    slotBytes);
}

std::uint64_t CMpegHeader::FrameSamples() const {
    if (Layer() == 1) return 384;
    return Layer() == 3 && HasLowRate() ? 576 : 1152;
}

std::size_t CMpegHeader::SideInfoBytes() const {
    if (HasLowRate()) return IsMono() ? 9 : 17;
    return IsMono() ? 17 : 32;
}

bool CMpegHeader::IsAkinTo(const CMpegHeader& other) const { return ((m_nWord ^ other.m_nWord) & kKinship) == 0; }

CMpegHeader CMpegHeader::WithRoomFor(std::size_t bytes) const {
    CMpegHeader header((m_nWord | kNoCrc) & ~(kPadding | kBitRateIndex));
    do {
        header.m_nWord += kBitRateStep;
    } while (header.FrameBytes() < bytes);
    return header;
}

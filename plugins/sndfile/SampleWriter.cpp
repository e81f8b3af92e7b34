// Packed little-endian PCM into a sound file.
#include "plugins/sndfile/SampleWriter.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace {

// Samples per piece; a piece always holds at least one frame.
constexpr sf_count_t kPieceSamples = 16384;

// Samples of `bytes` bytes, lowest first, moved to the top of integers; 8-bit samples are unsigned in `data`.
void Unpack(const unsigned char* data, std::size_t count, int bytes, int* samples) {
    const std::uint32_t flip = bytes == 1 ? 0x80000000u : 0u;
    for (std::size_t i = 0; i < count; ++i) {
        std::uint32_t sample = 0;
        for (int byte = 4 - bytes; byte < 4; ++byte) sample |= static_cast<std::uint32_t>(*data++) << (8 * byte);
        samples[i] = static_cast<int>(sample ^ flip);
    }
}

template <typename T>
bool IsAligned(const unsigned char* data) {
    return reinterpret_cast<std::uintptr_t>(data) % alignof(T) == 0;
}

}  // namespace

CSampleWriter::CSampleWriter(const SWavFormat& format)
    : m_format(format),
      m_nPieceFrames(std::max<sf_count_t>(1, kPieceSamples / format.nChannels)),
      m_vPiece(static_cast<std::size_t>(m_nPieceFrames * format.nChannels)) {}

bool CSampleWriter::WritesDirectly(const unsigned char* data) const {
    if (m_format.nBitsPerSample == 16) return IsAligned<short>(data);
    return m_format.nBitsPerSample == 32 && IsAligned<int>(data);
}

sf_count_t CSampleWriter::Write(SNDFILE* file, const unsigned char* data, sf_count_t frames) {
    if (WritesDirectly(data)) {
        return m_format.nBitsPerSample == 16 ? sf_writef_short(file, reinterpret_cast<const short*>(data), frames)
                                             : sf_writef_int(file, reinterpret_cast<const int*>(data), frames);
    }
    sf_count_t total = 0;
    while (total < frames) {
        const sf_count_t wanted = std::min(frames - total, m_nPieceFrames);
        Unpack(data + total * BlockSizeOf(m_format), static_cast<std::size_t>(wanted * m_format.nChannels),
               m_format.nBitsPerSample / 8, m_vPiece.data());
        const sf_count_t count = sf_writef_int(file, m_vPiece.data(), wanted);
        total += count;
        if (count < wanted) break;
    }
    return total;
}

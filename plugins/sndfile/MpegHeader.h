// The header of an MPEG audio frame (ISO/IEC 11172-3, 2.4.1.3 and 2.4.2.3; ISO/IEC 13818-3 for the low rates).
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

constexpr std::size_t kMpegHeaderBytes = 4;

// The four bytes of a header that is not free format.
class CMpegHeader {
public:
    // None for bytes that are no header, and for free format, whose frames do not tell their size.
    static std::optional<CMpegHeader> Parse(std::string_view bytes);

    std::uint32_t Word() const { return m_nWord; }

    int Layer() const { return 4 - static_cast<int>(m_nWord >> 17 & 3); }

    // MPEG-2 and MPEG-2.5.
    bool HasLowRate() const { return (m_nWord >> 19 & 1) == 0; }
    bool IsMono() const { return (m_nWord >> 6 & 3) == 3; }

    // Bytes of the whole frame.
    std::size_t FrameBytes() const;
    // Sample frames that it decodes to.
    std::uint64_t FrameSamples() const;
    // Bytes of Layer III side information, which follows the header and its CRC.
    std::size_t SideInfoBytes() const;

    // Same version, layer and sampling rate: what holds for all frames of a stream.
    bool IsAkinTo(const CMpegHeader& other) const;

    // The same frame without CRC and padding, at the lowest bit rate whose frame holds `bytes` bytes.
    CMpegHeader WithRoomFor(std::size_t bytes) const;

private:
    explicit CMpegHeader(std::uint32_t word) : m_nWord(word) {}

    int BitRate() const;  // kbit/s
    int SamplingRate() const;

    std::uint32_t m_nWord;
};

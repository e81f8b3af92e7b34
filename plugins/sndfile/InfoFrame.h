// The frame that tells the length of an MPEG Layer III file: the Xing header ("Xing" or "Info") where the main data of
// the first frame would be, with LAME's extension behind it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "plugins/sndfile/MpegHeader.h"

// What such a frame says; 0 where it does not say it.
struct SInfoFrame {
    std::uint64_t m_nFrames = 0;   // without this one
    std::uint64_t m_nBytes = 0;    // with this one
    std::uint64_t m_nDelay = 0;    // sample frames that the encoder put before the sound ...
    std::uint64_t m_nPadding = 0;  // ... and behind it

    // Sample frames that a decoder adds before the sound and takes from the padding (Layer III's filter bank).
    static constexpr std::uint64_t kDecoderDelay = 529;

    // None when the first frame is sound already.
    static std::optional<SInfoFrame> Parse(std::string_view frame, const CMpegHeader& header);

    // A frame to precede frames like `header` that says this.
    std::string Bytes(const CMpegHeader& header) const;
};

// A frame like `header` without any sound in it.
std::string SilentFrame(const CMpegHeader& header);

// A sound that makes a program ask for everything.
#pragma once

#include <cstdint>
#include <string>

namespace marked_sound {

// As WAV files have numbers, the low byte first.
inline std::string Number(std::uint32_t number, int size) {
    std::string bytes;
    for (int i = 0; i < size; ++i) bytes += static_cast<char>(number >> 8 * i);
    return bytes;
}

inline std::string Chunk(const std::string& name, const std::string& content) {
    return name + Number(static_cast<std::uint32_t>(content.size()), 4) + content;
}

}  // namespace marked_sound

// The bytes of a WAV file of half a second, 48000 Hz, 16 bits, stereo, with a title and an index point.
inline std::string MarkedSound() {
    using marked_sound::Chunk;
    using marked_sound::Number;
    const std::string format =
        Number(1, 2) + Number(2, 2) + Number(48000, 4) + Number(4 * 48000, 4) + Number(4, 2) + Number(16, 2);
    const std::string point = Number(1, 4) + Number(0, 4) + "data" + Number(0, 4) + Number(0, 4) + Number(1000, 4);
    const std::string chunks = Chunk("fmt ", format) + Chunk("cue ", Number(1, 4) + point) +
                               Chunk("LIST", "INFO" + Chunk("INAM", "Marked")) +
                               Chunk("data", std::string(std::size_t{4} * 24000, '\1'));
    return Chunk("RIFF", "WAVE" + chunks);
}

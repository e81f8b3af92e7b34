// The wave format record and the scalar types of the stream interfaces.
#pragma once

#include <cstdint>

// PCM format. Samples are packed little-endian integers; 8-bit samples are unsigned, as in RIFF WAVE.
struct SWavFormat {
    std::int32_t nSampleRate;     // sample frames per second
    std::int32_t nBitsPerSample;  // 8, 16, 24, 32
    std::int32_t nChannels;
};

// Bytes per sample frame; bits are counted in whole bytes, truncated toward zero.
constexpr std::int64_t BlockSizeOf(const SWavFormat& format) {
    return static_cast<std::int64_t>(format.nBitsPerSample / 8) * format.nChannels;
}

// Bytes per second.
constexpr std::int64_t ByteRateOf(const SWavFormat& format) {
    return static_cast<std::int64_t>(format.nBitsPerSample / 8) * format.nSampleRate * format.nChannels;
}

// Format qualifiers.
constexpr std::int32_t kIntegerSamples = 0;
constexpr std::int32_t kFloatSamples = 1;  // IEEE 754 binary32, little-endian, full scale -1 to 1; 32 bits per sample

// A format as streams hold it: the record followed by the format qualifier, 0 for an ordinary format.
// A pointer to the record of a held format may be read as four words.
struct SHeldWavFormat {
    SWavFormat m_format;
    std::int32_t m_nQualifier;
};

constexpr SHeldWavFormat kUnsetWavFormat{{-1, -1, -1}, 0};

// Formats are the same when all four words are the same.
constexpr bool operator==(const SHeldWavFormat& left, const SHeldWavFormat& right) {
    return left.m_format.nSampleRate == right.m_format.nSampleRate &&
           left.m_format.nBitsPerSample == right.m_format.nBitsPerSample &&
           left.m_format.nChannels == right.m_format.nChannels && left.m_nQualifier == right.m_nQualifier;
}
constexpr bool operator!=(const SHeldWavFormat& left, const SHeldWavFormat& right) { return !(left == right); }

// A held format with room for what it may come to tell; the reserved words are 0.
struct SAdvancedWavFormat {
    SHeldWavFormat m_held;
    std::int32_t m_nReserved[5];
};

// Whether more data follows a raw read or write. Values other than 0 belong to decoders and hosts and pass unchanged.
enum EAudioRawState : unsigned int {
    ARS_MORE = 0,
    ARS_END = 1,  // the value that the reference plug-ins use for "nothing follows"
};

// Capabilities of an opener and the required and excluded sets of an open request. Bits other than AUX_CONVERT are
// only matched against each other.
enum EAuxFlags : unsigned int {
    AUX_NONE = 0,
    AUX_CONVERT = 0x1000,  // required: wrap the decoder in a converting source; capability: the decoder can be wrapped
};

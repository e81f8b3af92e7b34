// Files that no encoder of the system writes.
#pragma once

#include <cmath>
#include <string>

#include "tests/plugins/sndfile/AudioFiles.h"

// One bit of DSD per sample, the first one in the highest bit: a sine by a first-order delta-sigma modulator.
inline std::string DsdSine(double frequency, int rate, std::size_t bytes) {
    constexpr double kTurn = 6.283185307179586;
    std::string stream;
    double sum = 0;
    for (std::size_t i = 0; i < bytes; ++i) {
        unsigned int byte = 0;
        for (std::size_t bit = 0; bit < 8; ++bit) {
            sum += 0.5 * std::sin(kTurn * frequency * static_cast<double>(8 * i + bit) / rate);
            const bool one = sum >= 0;
            sum += one ? -1 : 1;
            byte = byte << 1 | (one ? 1u : 0u);
        }
        stream += static_cast<char>(byte);
    }
    return stream;
}

inline std::string BigEndian(std::uint64_t value, int bytes) {
    const std::string text = LittleEndian(value, bytes);
    return {text.rbegin(), text.rend()};
}

// A stereo DSF file: blocks of 4096 bytes of one channel after the other, the first sample in the lowest bit.
inline std::string DsfFile(const std::string& left, const std::string& right, int rate) {
    constexpr std::size_t kBlock = 4096;
    const auto reversed = [](char byte) {
        unsigned int bits = 0;
        for (int i = 0; i < 8; ++i) bits |= (static_cast<unsigned int>(byte) >> i & 1u) << (7 - i);
        return static_cast<char>(bits);
    };
    std::string data;
    for (std::size_t at = 0; at < left.size(); at += kBlock) {
        for (const std::string& channel : {left, right}) {
            std::string block = channel.substr(at, kBlock);
            for (char& byte : block) byte = reversed(byte);
            data += block + std::string(kBlock - block.size(), '\x69');
        }
    }
    const std::string format = "fmt " + LittleEndian(52, 8) + LittleEndian(1, 4) + LittleEndian(0, 4) +
                               LittleEndian(2, 4) + LittleEndian(2, 4) +
                               LittleEndian(static_cast<std::uint64_t>(rate), 4) + LittleEndian(1, 4) +
                               LittleEndian(8 * left.size(), 8) + LittleEndian(kBlock, 4) + LittleEndian(0, 4);
    const std::string body = format + "data" + LittleEndian(12 + data.size(), 8) + data;
    return "DSD " + LittleEndian(28, 8) + LittleEndian(28 + body.size(), 8) + LittleEndian(0, 8) + body;
}

// A stereo DSDIFF file: bytes of the channels in turn.
inline std::string DffFile(const std::string& left, const std::string& right, int rate) {
    const auto chunk = [](const std::string& name, const std::string& content) {
        return name + BigEndian(content.size(), 8) + content + std::string(content.size() % 2, '\0');
    };
    std::string data;
    for (std::size_t i = 0; i < left.size(); ++i) data += {left[i], right[i]};
    const std::string properties = "SND " + chunk("FS  ", BigEndian(static_cast<std::uint64_t>(rate), 4)) +
                                   chunk("CHNL", BigEndian(2, 2) + "SLFTSRGT") +
                                   chunk("CMPR", "DSD \x0Enot compressed" + std::string(1, '\0'));
    const std::string body =
        "DSD " + chunk("FVER", BigEndian(0x01050000, 4)) + chunk("PROP", properties) + chunk("DSD ", data);
    return "FRM8" + BigEndian(body.size(), 8) + body;
}

inline std::size_t Byte(const std::string& content, std::size_t at) { return static_cast<unsigned char>(content[at]); }

// Of the Ogg page at an offset: its header, the table of the segments' lengths and the segments (RFC 3533, 6).
inline std::size_t PageSize(const std::string& content, std::size_t at) {
    const std::size_t segments = Byte(content, at + 26);
    std::size_t size = 27 + segments;
    for (std::size_t i = 0; i < segments; ++i) size += Byte(content, at + 27 + i);
    return size;
}

// Of the WavPack block at an offset, below 64 KiB: "wvpk" and the size of what follows.
inline std::size_t BlockSize(const std::string& content, std::size_t at) {
    return 8 + Byte(content, at + 4) + 256 * Byte(content, at + 5);
}

// `content` without `count` of its pages or blocks from `first` on.
inline std::string WithoutPieces(const std::string& content, std::size_t sizeOf(const std::string&, std::size_t),
                                 int first, int count = 1) {
    std::size_t begin = 0;
    while (first-- > 0) begin += sizeOf(content, begin);
    std::size_t end = begin;
    while (count-- > 0) end += sizeOf(content, end);
    return content.substr(0, begin) + content.substr(end);
}

// A WAV file of `valid` bits in samples of `format`'s width (WAVE_FORMAT_EXTENSIBLE).
inline std::string ExtensibleWav(const SWavFormat& format, int valid, const std::string& samples) {
    const auto number = [](std::int64_t value, int bytes) {
        return LittleEndian(static_cast<std::uint64_t>(value), bytes);
    };
    const std::string header = number(0xFFFE, 2) + number(format.nChannels, 2) + number(format.nSampleRate, 4) +
                               number(ByteRateOf(format), 4) + number(BlockSizeOf(format), 2) +
                               number(format.nBitsPerSample, 2) + number(22, 2) + number(valid, 2) + number(3, 4) +
                               std::string("\1\0\0\0\0\0\x10\0\x80\0\0\xAA\0\x38\x9B\x71", 16);
    return Chunk("RIFF", "WAVE" + Chunk("fmt ", header) + Chunk("data", samples));
}

// `movie`, an MP4 file that ends with its moov box and has a list of tags, with the encoder's note "iTunSMPB" added.
inline std::string WithEncoderNote(std::string movie, const std::string& note) {
    const auto box = [](const std::string& type, const std::string& content) {
        return BigEndian(8 + content.size(), 4) + type + content;
    };
    const std::string zeros(4, '\0');
    const std::string added = box("----", box("mean", zeros + "com.apple.iTunes") + box("name", zeros + "iTunSMPB") +
                                              box("data", BigEndian(1, 4) + zeros + note));
    for (const char* const type : {"moov", "udta", "meta", "ilst"}) {
        const std::size_t at = movie.rfind(type) - 4;
        std::uint32_t size = 0;
        for (std::size_t i = 0; i < 4; ++i) size = size << 8 | static_cast<unsigned char>(movie[at + i]);
        movie.replace(at, 4, BigEndian(size + added.size(), 4));
    }
    return movie + added;
}

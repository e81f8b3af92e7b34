// The files that make-media makes.
#pragma once

#include <cstdint>
#include <string>

#include "stream/WavFormat.h"

struct SLosslessFile {
    const char* m_strName;
    const char* m_strOriginal;  // <original>.pcm has the samples
    SWavFormat m_format;
};

inline void PrintTo(const SLosslessFile& file, std::ostream* out) { *out << file.m_strName; }

inline constexpr SLosslessFile kLosslessFiles[] = {
    {"alac.m4a", "source", {44100, 16, 2}},   {"alac24.m4a", "deep", {48000, 24, 2}},
    {"six.m4a", "six", {44100, 16, 6}},       {"alac.caf", "source", {44100, 16, 2}},
    {"source.tta", "source", {44100, 16, 2}}, {"deep.tta", "deep", {48000, 24, 2}},
    {"small.wv", "source", {44100, 16, 2}},   {"source.wv", "source", {44100, 16, 2}},
    {"deep.wv", "deep", {48000, 24, 2}},      {"narrow.wv", "narrow", {48000, 8, 2}},
    {"deep.thd", "deep", {48000, 24, 2}},     {"deep.m2ts", "deep", {48000, 24, 2}},
    {"flac.mka", "source", {44100, 16, 2}},   {"pcm.mkv", "source", {44100, 16, 2}},
    {"deep.mov", "deep", {48000, 24, 2}},     {"source.voc", "source", {44100, 16, 2}},
    {"deep.mxf", "deep", {48000, 24, 2}},
};

struct SLossyFile {
    const char* m_strName;
    SWavFormat m_format;          // as it comes out for 16 bits
    std::uint64_t m_nFrames = 0;  // 0: as many as <name>.f32 has
    int m_nTolerance = 0;         // by which samples behind a jump may differ
};

inline void PrintTo(const SLossyFile& file, std::ostream* out) { *out << file.m_strName; }

// Samples that the codec fills up with noise differ behind a jump.
constexpr int kFilledUp = 32768;

inline constexpr SLossyFile kLossyFiles[] = {
    {"aac.m4a", {44100, 16, 2}, 176401},
    {"adts.aac", {44100, 16, 2}},
    {"aac.mka", {44100, 16, 2}},
    {"aac.3gp", {44100, 16, 2}, 176401},
    {"aac.flv", {44100, 16, 2}},
    {"aac.loas", {44100, 16, 2}},
    {"fragments.mp4", {44100, 16, 2}, 177425},
    {"two.wma", {44100, 16, 2}},
    {"one.wma", {44100, 16, 2}},
    {"one.ac3", {44100, 16, 2}, 0, kFilledUp},
    {"six.ac3", {48000, 16, 6}, 0, kFilledUp},
    {"one.eac3", {44100, 16, 2}, 0, kFilledUp},
    {"one.dts", {44100, 16, 2}},
    {"vorbis.webm", {44100, 16, 2}},
    {"opus.webm", {48000, 16, 2}, 0, 16},
    {"opus.mp4", {48000, 16, 2}, 192002, 16},
    {"opus.ogg", {48000, 16, 2}, 192002, 16},
    {"speech.spx", {16000, 16, 1}},
    {"lossy.wv", {44100, 16, 2}},
    {"video.mp4", {44100, 16, 2}, 176401},
    {"video.mkv", {44100, 16, 2}},
    {"video.avi", {44100, 16, 2}, 0, 1},
    {"video.flv", {44100, 16, 2}, 0, 1},
    {"video.ts", {44100, 16, 2}},
    {"video.vob", {44100, 16, 2}, 0, kFilledUp},
    {"video.ogv", {44100, 16, 2}},
};

// "aac_m4a".
inline std::string TestNameOf(const char* file) {
    std::string name = file;
    return name.replace(name.find('.'), 1, "_");
}

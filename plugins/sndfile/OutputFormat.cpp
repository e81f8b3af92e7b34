// The file formats that are written and what each of them takes.
#include "plugins/sndfile/OutputFormat.h"

#include <strings.h>

#include <algorithm>
#include <cstdio>

#include "plugins/sndfile/SndFileHandle.h"

namespace {

// A RIFF chunk's size has 32 bits; the file's header and its padding need less than the kilobyte left here.
constexpr std::uint64_t kMostWavBytes = 0xFFFFFFFFu - 1024u;

constexpr SOutputFormat kFormats[] = {
    {"wav", "WAV", SF_FORMAT_WAV, 8, 32, kMostWavBytes},
    {"flac", "FLAC", SF_FORMAT_FLAC, 16, 24, 0},
};

int CodingOf(int bits) {
    switch (bits) {
        case 8:
            return SF_FORMAT_PCM_U8;
        case 16:
            return SF_FORMAT_PCM_16;
        case 24:
            return SF_FORMAT_PCM_24;
        default:
            return SF_FORMAT_PCM_32;
    }
}

// A file that keeps nothing but its length and position.
struct SVoidFile {
    sf_count_t m_nLength = 0;
    sf_count_t m_nPosition = 0;
};

sf_count_t VoidLength(void* file) { return static_cast<SVoidFile*>(file)->m_nLength; }

sf_count_t VoidTell(void* file) { return static_cast<SVoidFile*>(file)->m_nPosition; }

sf_count_t VoidSeek(sf_count_t offset, int whence, void* file) {
    auto& target = *static_cast<SVoidFile*>(file);
    const sf_count_t base = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? target.m_nPosition : target.m_nLength;
    return target.m_nPosition = base + offset;
}

sf_count_t VoidWrite(const void* /*data*/, sf_count_t count, void* file) {
    auto& target = *static_cast<SVoidFile*>(file);
    target.m_nPosition += count;
    target.m_nLength = std::max(target.m_nLength, target.m_nPosition);
    return count;
}

}  // namespace

int OutputFormatCount() { return static_cast<int>(std::size(kFormats)); }

const SOutputFormat* OutputFormatAt(int n) { return n >= 0 && n < OutputFormatCount() ? &kFormats[n] : nullptr; }

const SOutputFormat* FindOutputFormat(const char* extension) {
    for (const SOutputFormat& format : kFormats) {
        if (strcasecmp(format.m_strExtension, extension) == 0) return &format;
    }
    return nullptr;
}

SWavFormat AcceptedFormat(const SOutputFormat& output, const SWavFormat& wanted) {
    const int wholeBytes = (std::clamp(wanted.nBitsPerSample, 1, 32) + 7) / 8 * 8;
    return {wanted.nSampleRate, std::clamp(wholeBytes, output.m_nLeastBits, output.m_nMostBits), wanted.nChannels};
}

SF_INFO OutputInfo(const SOutputFormat& output, const SWavFormat& accepted) {
    SF_INFO info = {};
    info.samplerate = accepted.nSampleRate;
    info.channels = accepted.nChannels;
    info.format = output.m_nContainer | CodingOf(accepted.nBitsPerSample);
    return info;
}

std::string ReasonAgainst(const SF_INFO& info) {
    if (info.samplerate < 1 || info.channels < 1) return "Not a sample rate or not a channel count.";
    if (sf_format_check(&info) == SF_FALSE) return sf_error_number(SF_ERR_UNSUPPORTED_ENCODING);

    // The check above knows nothing of sample rates; the encoders themselves do.
    SF_VIRTUAL_IO operations = {VoidLength, VoidSeek, nullptr, VoidWrite, VoidTell};
    SVoidFile file;
    SF_INFO request = info;
    const CSndFileHandle probe(sf_open_virtual(&operations, SFM_WRITE, &request, &file));
    return probe != nullptr ? "" : sf_strerror(nullptr);
}

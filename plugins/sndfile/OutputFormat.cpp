// The file formats that are written and what each of them takes.
#include "plugins/sndfile/OutputFormat.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

#include "plugins/sndfile/SndFileHandle.h"
#include "sdk/Guard.h"

namespace {

constexpr unsigned int kAllTags =
    1u << TAG_TITLE | 1u << TAG_ARTIST | 1u << TAG_ALBUM | 1u << TAG_YEAR | 1u << TAG_GENRE;
constexpr unsigned int kTitleAndArtist = 1u << TAG_TITLE | 1u << TAG_ARTIST;

// A chunk's size has 32 bits; the file's header and its padding need less than the kilobytes left here.
constexpr std::uint64_t kMostAiffBytes = 0xFFFFFFFFu - 65536u;

constexpr int kVorbis = SF_FORMAT_OGG | SF_FORMAT_VORBIS;
constexpr int kOpus = SF_FORMAT_OGG | SF_FORMAT_OPUS;
constexpr int kMp3 = SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III;

constexpr SOutputFormat kFormats[] = {
    {"wav", "WAV", SF_FORMAT_WAV, OC_PCM, 8, 32, kAllTags, 0},
    {"rf64", "RF64", SF_FORMAT_RF64, OC_PCM, 8, 32, kAllTags, 0},
    {"w64", "W64", SF_FORMAT_W64, OC_PCM, 8, 32, 0, 0},
    {"aiff", "AIFF", SF_FORMAT_AIFF, OC_PCM, 8, 32, kTitleAndArtist, kMostAiffBytes},
    {"aif", "AIFF", SF_FORMAT_AIFF, OC_PCM, 8, 32, kTitleAndArtist, kMostAiffBytes},
    {"caf", "CAF", SF_FORMAT_CAF, OC_PCM, 8, 32, kAllTags, 0},
    {"au", "AU", SF_FORMAT_AU, OC_PCM, 8, 32, 0, 0},
    {"flac", "FLAC", SF_FORMAT_FLAC, OC_FLAC, 16, 24, kAllTags, 0},
    {"ogg", "Ogg Vorbis", kVorbis, OC_VORBIS, 16, 32, kAllTags, 0},
    {"oga", "Ogg Vorbis", kVorbis, OC_VORBIS, 16, 32, kAllTags, 0},
    {"opus", "Opus", kOpus, OC_OPUS, 16, 32, kAllTags, 0},
    {"mp3", "MP3", kMp3, OC_MP3, 16, 32, kAllTags, 0},
};

// Ascending.
const std::vector<int>& SampleRatesOf(EOutputCoding coding) {
    static const std::vector<int> any;
    static const std::vector<int> opus = {8000, 12000, 16000, 24000, 48000};
    static const std::vector<int> mp3 = {8000, 11025, 12000, 16000, 22050, 24000, 32000, 44100, 48000};
    return coding == OC_OPUS ? opus : coding == OC_MP3 ? mp3 : any;
}

// The least one that keeps everything audible, else the greatest.
int NextSampleRate(EOutputCoding coding, int wanted) {
    constexpr int kMostVorbisRate = 192000;
    if (coding == OC_VORBIS) return std::min(wanted, kMostVorbisRate);
    const std::vector<int>& rates = SampleRatesOf(coding);
    if (rates.empty() || wanted < 1) return wanted;
    const auto next = std::lower_bound(rates.begin(), rates.end(), wanted);
    return next == rates.end() ? rates.back() : *next;
}

int CodingOf(int container, int bits) {
    switch (bits) {
        case 8:
            return HoldsPackedPcm(container) ? SF_FORMAT_PCM_U8 : SF_FORMAT_PCM_S8;
        case 16:
            return SF_FORMAT_PCM_16;
        case 24:
            return SF_FORMAT_PCM_24;
        default:
            return SF_FORMAT_PCM_32;
    }
}

// What the installed libsndfile would say about one frame of sound in stereo.
bool IsKnown(const SOutputFormat& output) {
    const SF_INFO info = OutputInfo(output, {48000, output.m_nMostBits, 2}, false);
    return sf_format_check(&info) != SF_FALSE;
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

// Empty when libsndfile writes such a file. Some encoders look at the sample rate with the first frame only.
std::string ReasonAgainst(const SF_INFO& info) {
    if (info.samplerate < 1 || info.channels < 1) return "Not a sample rate or not a channel count.";
    if (sf_format_check(&info) == SF_FALSE) return sf_error_number(SF_ERR_UNSUPPORTED_ENCODING);

    SF_VIRTUAL_IO operations = {VoidLength, VoidSeek, nullptr, VoidWrite, VoidTell};
    SVoidFile file;
    SF_INFO request = info;
    const CSndFileHandle probe(sf_open_virtual(&operations, SFM_WRITE, &request, &file));
    if (probe == nullptr) return sf_strerror(nullptr);
    const std::vector<int> frame(static_cast<std::size_t>(info.channels));
    return sf_writef_int(probe.get(), frame.data(), 1) == 1 ? "" : sf_strerror(probe.get());
}

}  // namespace

bool HoldsPackedPcm(int container) {
    return container == SF_FORMAT_WAV || container == SF_FORMAT_RF64 || container == SF_FORMAT_W64;
}

std::vector<std::string> WritableExtensions() {
    std::vector<std::string> extensions;
    for (const SOutputFormat& output : kFormats) {
        if (IsKnown(output)) extensions.emplace_back(output.m_strExtension);
    }
    return extensions;
}

const SOutputFormat& OutputFormatOf(const std::string& extension) {
    return *std::find_if(std::begin(kFormats), std::end(kFormats),
                         [&extension](const SOutputFormat& output) { return extension == output.m_strExtension; });
}

SWavFormat AcceptedFormat(const SOutputFormat& output, const SWavFormat& wanted) {
    const int wholeBytes = (std::clamp(wanted.nBitsPerSample, 1, 32) + 7) / 8 * 8;
    return {NextSampleRate(output.m_eCoding, wanted.nSampleRate),
            std::clamp(wholeBytes, output.m_nLeastBits, output.m_nMostBits),
            output.m_eCoding == OC_MP3 ? std::min(wanted.nChannels, 2) : wanted.nChannels};
}

SF_INFO OutputInfo(const SOutputFormat& output, const SWavFormat& accepted, bool floatSamples) {
    SF_INFO info = {};
    info.samplerate = accepted.nSampleRate;
    info.channels = accepted.nChannels;
    info.format = output.m_nFormat;
    if ((info.format & SF_FORMAT_SUBMASK) == 0) {
        info.format |= floatSamples ? SF_FORMAT_FLOAT : CodingOf(output.m_nFormat, accepted.nBitsPerSample);
    }
    return info;
}

void RequireWritable(const SOutputFormat& output, const SF_INFO& info) {
    const std::string reason = ReasonAgainst(info);
    if (reason.empty()) return;
    Refuse(std::string(output.m_strName) + " does not take " + std::to_string(info.channels) + " channels at " +
           std::to_string(info.samplerate) + " Hz: " + reason);
}

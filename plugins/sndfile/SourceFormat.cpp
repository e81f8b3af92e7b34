// Which PCM a sound file comes out as, and which files the installed libsndfile reads.
#include "plugins/sndfile/SourceFormat.h"

#include <algorithm>

namespace {

// Bits per sample of a lossless coding, rounded up to whole bytes; 0 for every other coding.
int LosslessBitsOf(int coding) {
    switch (coding) {
        case SF_FORMAT_PCM_S8:
        case SF_FORMAT_PCM_U8:
            return 8;
        case SF_FORMAT_PCM_16:
        case SF_FORMAT_ALAC_16:
        case SF_FORMAT_DWVW_12:
        case SF_FORMAT_DWVW_16:
            return 16;
        case SF_FORMAT_PCM_24:
        case SF_FORMAT_ALAC_20:
        case SF_FORMAT_ALAC_24:
        case SF_FORMAT_DWVW_24:
            return 24;
        case SF_FORMAT_PCM_32:
        case SF_FORMAT_ALAC_32:
            return 32;
        default:
            return 0;
    }
}

struct SExtension {
    const char* m_strExtension;
    int m_nContainer;
    int m_nCoding;  // 0: any
};

constexpr SExtension kExtensions[] = {
    {"wav", SF_FORMAT_WAV, 0},
    {"wave", SF_FORMAT_WAV, 0},
    {"aif", SF_FORMAT_AIFF, 0},
    {"aiff", SF_FORMAT_AIFF, 0},
    {"aifc", SF_FORMAT_AIFF, 0},
    {"au", SF_FORMAT_AU, 0},
    {"snd", SF_FORMAT_AU, 0},
    {"caf", SF_FORMAT_CAF, 0},
    {"w64", SF_FORMAT_W64, 0},
    {"flac", SF_FORMAT_FLAC, 0},
    {"ogg", SF_FORMAT_OGG, SF_FORMAT_VORBIS},
    {"oga", SF_FORMAT_OGG, SF_FORMAT_VORBIS},
    {"opus", SF_FORMAT_OGG, SF_FORMAT_OPUS},
    {"mp3", SF_FORMAT_MPEG, SF_FORMAT_MPEG_LAYER_III},
};

// Everything that one of libsndfile's lists of formats holds.
std::vector<int> KnownFormats(int countCommand, int entryCommand) {
    int count = 0;
    sf_command(nullptr, countCommand, &count, sizeof count);
    std::vector<int> formats;
    for (int i = 0; i < count; ++i) {
        SF_FORMAT_INFO entry = {};
        entry.format = i;
        if (sf_command(nullptr, entryCommand, &entry, sizeof entry) == 0) formats.push_back(entry.format);
    }
    return formats;
}

bool Holds(const std::vector<int>& formats, int format) {
    return std::find(formats.begin(), formats.end(), format) != formats.end();
}

}  // namespace

SSourceFormat SourceFormatOf(const SF_INFO& info) {
    const int bits = LosslessBitsOf(info.format & SF_FORMAT_SUBMASK);
    if (bits == 0) return {{info.samplerate, 16, info.channels}, SR_FLOAT_TO_16};
    return {{info.samplerate, bits, info.channels}, SR_INTEGER};
}

std::vector<const char*> ReadableExtensions() {
    const std::vector<int> containers = KnownFormats(SFC_GET_FORMAT_MAJOR_COUNT, SFC_GET_FORMAT_MAJOR);
    const std::vector<int> codings = KnownFormats(SFC_GET_FORMAT_SUBTYPE_COUNT, SFC_GET_FORMAT_SUBTYPE);
    std::vector<const char*> readable;
    for (const SExtension& entry : kExtensions) {
        if (!Holds(containers, entry.m_nContainer)) continue;
        if (entry.m_nCoding == 0 || Holds(codings, entry.m_nCoding)) readable.push_back(entry.m_strExtension);
    }
    return readable;
}

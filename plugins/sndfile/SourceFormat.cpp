// Which PCM a sound file comes out as, and which files the installed libsndfile reads.
#include "plugins/sndfile/SourceFormat.h"

#include <algorithm>

namespace {

// Bits per sample that the decoder of a coding works with, rounded up to whole bytes; 0 for floating point.
int IntegerBitsOf(int coding) {
    switch (coding) {
        case SF_FORMAT_FLOAT:
        case SF_FORMAT_DOUBLE:
        case SF_FORMAT_VORBIS:
        case SF_FORMAT_OPUS:
        case SF_FORMAT_MPEG_LAYER_I:
        case SF_FORMAT_MPEG_LAYER_II:
        case SF_FORMAT_MPEG_LAYER_III:
            return 0;
        case SF_FORMAT_PCM_S8:
        case SF_FORMAT_PCM_U8:
        case SF_FORMAT_DPCM_8:
            return 8;
        case SF_FORMAT_PCM_24:
        case SF_FORMAT_ALAC_20:
        case SF_FORMAT_ALAC_24:
        case SF_FORMAT_DWVW_24:
            return 24;
        case SF_FORMAT_PCM_32:
        case SF_FORMAT_ALAC_32:
            return 32;
        default:  // logarithmic, ADPCM and GSM 6.10 among them
            return 16;
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
    {"bwf", SF_FORMAT_WAV, 0},
    {"amb", SF_FORMAT_WAVEX, 0},
    {"rf64", SF_FORMAT_RF64, 0},
    {"w64", SF_FORMAT_W64, 0},
    {"aif", SF_FORMAT_AIFF, 0},
    {"aiff", SF_FORMAT_AIFF, 0},
    {"aifc", SF_FORMAT_AIFF, 0},
    {"caf", SF_FORMAT_CAF, 0},
    {"au", SF_FORMAT_AU, 0},
    {"snd", SF_FORMAT_AU, 0},
    {"flac", SF_FORMAT_FLAC, 0},
    {"ogg", SF_FORMAT_OGG, SF_FORMAT_VORBIS},
    {"oga", SF_FORMAT_OGG, SF_FORMAT_VORBIS},
    {"opus", SF_FORMAT_OGG, SF_FORMAT_OPUS},
    {"mp3", SF_FORMAT_MPEG, SF_FORMAT_MPEG_LAYER_III},
    {"mp2", SF_FORMAT_MPEG, SF_FORMAT_MPEG_LAYER_II},
    {"mp1", SF_FORMAT_MPEG, SF_FORMAT_MPEG_LAYER_I},
    {"mpa", SF_FORMAT_MPEG, 0},
    {"voc", SF_FORMAT_VOC, 0},
    {"sf", SF_FORMAT_IRCAM, 0},
    {"ircam", SF_FORMAT_IRCAM, 0},
    {"sph", SF_FORMAT_NIST, 0},
    {"nist", SF_FORMAT_NIST, 0},
    {"iff", SF_FORMAT_SVX, 0},
    {"svx", SF_FORMAT_SVX, 0},
    {"8svx", SF_FORMAT_SVX, 0},
    {"16sv", SF_FORMAT_SVX, 0},
    {"paf", SF_FORMAT_PAF, 0},
    {"fap", SF_FORMAT_PAF, 0},
    {"avr", SF_FORMAT_AVR, 0},
    {"htk", SF_FORMAT_HTK, 0},
    {"mat", SF_FORMAT_MAT5, 0},
    {"pvf", SF_FORMAT_PVF, 0},
    {"sds", SF_FORMAT_SDS, 0},
    {"wve", SF_FORMAT_WVE, 0},
    {"xi", SF_FORMAT_XI, 0},
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

SSourceFormat SourceFormatOf(const SF_INFO& info, EAudioFeature level) {
    const int bits = IntegerBitsOf(info.format & SF_FORMAT_SUBMASK);
    if (bits != 0) return {{info.samplerate, bits, info.channels}, SR_INTEGER};
    if (level == AF_ADVANCED_FORMATS) return {{info.samplerate, 32, info.channels}, SR_FLOAT};
    return {{info.samplerate, 16, info.channels}, SR_FLOAT_TO_16};
}

bool IsPackedPcm(const SF_INFO& info) {
    const int container = info.format & SF_FORMAT_TYPEMASK;
    const bool known = container == SF_FORMAT_WAV || container == SF_FORMAT_WAVEX || container == SF_FORMAT_RF64 ||
                       container == SF_FORMAT_W64;
    if (!known || (info.format & SF_FORMAT_ENDMASK) != SF_ENDIAN_FILE) return false;
    switch (info.format & SF_FORMAT_SUBMASK) {
        case SF_FORMAT_PCM_U8:
        case SF_FORMAT_PCM_16:
        case SF_FORMAT_PCM_24:
        case SF_FORMAT_PCM_32:
            return true;
        default:
            return false;
    }
}

std::vector<std::string> ReadableExtensions() {
    const std::vector<int> containers = KnownFormats(SFC_GET_FORMAT_MAJOR_COUNT, SFC_GET_FORMAT_MAJOR);
    const std::vector<int> codings = KnownFormats(SFC_GET_FORMAT_SUBTYPE_COUNT, SFC_GET_FORMAT_SUBTYPE);
    std::vector<std::string> readable;
    for (const SExtension& entry : kExtensions) {
        if (!Holds(containers, entry.m_nContainer)) continue;
        if (entry.m_nCoding == 0 || Holds(codings, entry.m_nCoding)) readable.emplace_back(entry.m_strExtension);
    }
    return readable;
}

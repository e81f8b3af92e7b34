// Which format a conversion aims at.
#include "host/convert/TargetFormat.h"

#include <strings.h>

#include <algorithm>
#include <iterator>

namespace {

// File formats whose usual codings are lossy. Float samples of any other format are taken for float PCM, which a wider
// output keeps; AVI, Matroska video, QuickTime and MXF carry that as well.
constexpr const char* kLossyExtensions[] = {
    "3g2",  "3ga", "3gp", "aa3", "aac",  "ac3",  "adts", "aea", "amr", "asf",  "at3", "awb", "dss", "dts",
    "eac3", "ec3", "f4a", "f4v", "flv",  "loas", "m2ts", "m4a", "m4b", "m4r",  "m4v", "mka", "mp+", "mp1",
    "mp2",  "mp3", "mp4", "mpa", "mpc",  "mpeg", "mpg",  "mpp", "mts", "oga",  "ogg", "ogm", "ogv", "oma",
    "opus", "qcp", "ra",  "rm",  "rmvb", "spx",  "ts",   "vob", "vqf", "webm", "wma", "wmv", "xwma"};

constexpr int kLossyBits = 16;
constexpr int kFloatBits = 32;

bool IsLossy(const std::string& extension) {
    return std::any_of(std::begin(kLossyExtensions), std::end(kLossyExtensions),
                       [&](const char* lossy) { return strcasecmp(lossy, extension.c_str()) == 0; });
}

}  // namespace

SWavFormat AimedFormat(const SFormatOptions& options, const SHeldWavFormat& source, const std::string& sourceExtension,
                       const std::string& targetExtension) {
    SWavFormat format = source.m_format;
    if (source.m_nQualifier == kFloatSamples) {
        format.nBitsPerSample = IsLossy(sourceExtension) && !IsLossy(targetExtension) ? kLossyBits : kFloatBits;
    }
    if (options.m_nSampleRate != 0) format.nSampleRate = options.m_nSampleRate;
    if (options.m_nBitsPerSample != 0) format.nBitsPerSample = options.m_nBitsPerSample;
    if (options.m_nChannels != 0) format.nChannels = options.m_nChannels;
    return format;
}

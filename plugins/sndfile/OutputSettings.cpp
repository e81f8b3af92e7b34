// The settings of the file formats that are written.
#include "plugins/sndfile/OutputSettings.h"

#include <algorithm>
#include <charconv>
#include <optional>

namespace {

constexpr const char* kSamples = "samples";
constexpr const char* kCompression = "compression";
constexpr const char* kQuality = "quality";
constexpr const char* kBitRate = "bitrate";

constexpr double kMostQuality = 10;

// kbit/s in which libsndfile counts Opus.
constexpr int kLeastOpusPerChannel = 6;
constexpr int kMostOpusPerChannel = 256;
constexpr int kMostOpusChannels = 255;

// kbit/s of Layer III by sample rate: ISO/IEC 11172-3 2.4.2.3, ISO/IEC 13818-3 2.4.2.3, and MPEG-2.5 for the lowest.
const std::vector<int>& Mp3BitRates(int sampleRate) {
    static const std::vector<int> high = {32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320};
    static const std::vector<int> low = {8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160};
    static const std::vector<int> lowest = {8, 16, 24, 32, 40, 48, 56, 64};
    return sampleRate >= 32000 ? high : sampleRate >= 16000 ? low : lowest;
}

bool Holds(const std::vector<int>& numbers, int number) {
    return std::find(numbers.begin(), numbers.end(), number) != numbers.end();
}

std::string Listed(const std::vector<int>& numbers) {
    std::string text;
    for (const int number : numbers) text += (text.empty() ? "" : ", ") + std::to_string(number);
    return text;
}

template <typename T>
std::optional<T> NumberOf(const std::string& text) {
    T number = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    if (result.ec != std::errc() || result.ptr != text.data() + text.size()) return std::nullopt;
    return number;
}

bool IsBitRate(EOutputCoding coding, int bitRate) {
    if (coding == OC_MP3) return Holds(Mp3BitRates(44100), bitRate) || Holds(Mp3BitRates(22050), bitRate);
    return bitRate >= kLeastOpusPerChannel && bitRate <= kMostOpusPerChannel * kMostOpusChannels;
}

std::string BitRateValues(EOutputCoding coding) {
    if (coding == OC_MP3) return "8 to 320 kbit/s, as MP3 has them";
    return std::to_string(kLeastOpusPerChannel) + " to " + std::to_string(kMostOpusPerChannel) +
           " kbit/s for each channel";
}

void Command(SNDFILE* file, int command, double value, const char* name) {
    if (sf_command(file, command, &value, sizeof value) == SF_TRUE) return;
    Refuse(std::string("the codec does not take this ") + name);
}

// libsndfile counts from 0, the best, to 1. LAME's scale ends just before 10.
void ApplyQuality(SNDFILE* file, double quality) {
    constexpr double kWorst = 0.9999;
    Command(file, SFC_SET_COMPRESSION_LEVEL, std::min(1 - quality / kMostQuality, kWorst), kQuality);
}

void ApplyOpusBitRate(SNDFILE* file, int bitRate, int channels) {
    const double perChannel = static_cast<double>(bitRate) / channels;
    constexpr double kRange = kMostOpusPerChannel - kLeastOpusPerChannel;
    Command(file, SFC_SET_COMPRESSION_LEVEL, 1 - (perChannel - kLeastOpusPerChannel) / kRange, kBitRate);
}

// libsndfile places the rate between the least and the greatest one of the sample rate and cuts off what is behind the
// point; half a kbit/s keeps it from falling to the next lower number.
void ApplyMp3BitRate(SNDFILE* file, int bitRate, int sampleRate) {
    const std::vector<int>& rates = Mp3BitRates(sampleRate);
    int mode = SF_BITRATE_MODE_CONSTANT;
    // Answers for the level too, which is not set yet.
    sf_command(file, SFC_SET_BITRATE_MODE, &mode, sizeof mode);
    const double below = std::max(rates.back() - bitRate - 0.5, 0.0);
    Command(file, SFC_SET_COMPRESSION_LEVEL, below / (rates.back() - rates.front()), kBitRate);
}

}  // namespace

std::vector<SSetting> SettingsOf(const SOutputFormat& output) {
    const SSetting quality{kQuality, "0 to 10", "4"};
    switch (output.m_eCoding) {
        case OC_FLAC:
            return {{kCompression, "0|1|2|3|4|5|6|7|8", "5"}};
        case OC_VORBIS:
            return {quality};
        case OC_OPUS:
            return {{kQuality, quality.m_strValues, "2"}, {kBitRate, BitRateValues(OC_OPUS), ""}};
        case OC_MP3:
            return {{kQuality, quality.m_strValues, "7"}, {kBitRate, BitRateValues(OC_MP3), ""}};
        default:
            return {{kSamples, "integer|float", "integer"}};
    }
}

void CheckSettingValue(const SOutputFormat& output, const std::string& name, const std::string& value) {
    const std::string refusal = "no " + name + " \"" + value + "\"; " + output.m_strName + " takes ";
    if (name == kQuality) {
        const auto quality = NumberOf<double>(value);
        if (!quality || !(*quality >= 0 && *quality <= kMostQuality)) Refuse(refusal + "0 to 10");
    }
    if (name == kBitRate && !value.empty()) {
        const auto bitRate = NumberOf<int>(value);
        if (!bitRate || !IsBitRate(output.m_eCoding, *bitRate)) Refuse(refusal + BitRateValues(output.m_eCoding));
    }
}

void CheckBitRate(const SOutputFormat& output, const CSettings& settings, const SWavFormat& accepted) {
    const SSetting* const setting = settings.Find(kBitRate);
    if (setting == nullptr || setting->m_strValue.empty()) return;
    const int bitRate = *NumberOf<int>(setting->m_strValue);
    const std::string refusal = std::string(output.m_strName) + " has no " + setting->m_strValue + " kbit/s ";
    if (output.m_eCoding == OC_MP3) {
        const std::vector<int>& rates = Mp3BitRates(accepted.nSampleRate);
        if (Holds(rates, bitRate)) return;
        Refuse(refusal + "at " + std::to_string(accepted.nSampleRate) + " Hz; there are " + Listed(rates));
    }
    const int least = kLeastOpusPerChannel * accepted.nChannels;
    const int most = kMostOpusPerChannel * accepted.nChannels;
    if (bitRate >= least && bitRate <= most) return;
    Refuse(refusal + "for " + std::to_string(accepted.nChannels) + " channels; it takes " + std::to_string(least) +
           " to " + std::to_string(most));
}

bool WantsFloat(const CSettings& settings) {
    const SSetting* const samples = settings.Find(kSamples);
    return samples != nullptr && samples->m_strValue == "float";
}

void ApplySettings(SNDFILE* file, const SOutputFormat& output, const CSettings& settings, const SWavFormat& accepted) {
    if (output.m_eCoding == OC_PCM) {
        // Its time stamp would make two files of the same samples differ.
        sf_command(file, SFC_SET_ADD_PEAK_CHUNK, nullptr, SF_FALSE);
    } else if (output.m_eCoding == OC_FLAC) {
        constexpr double kMostCompression = 8;
        Command(file, SFC_SET_COMPRESSION_LEVEL, *NumberOf<int>(settings[kCompression]) / kMostCompression,
                kCompression);
    } else if (output.m_eCoding == OC_VORBIS || settings[kBitRate].empty()) {
        ApplyQuality(file, *NumberOf<double>(settings[kQuality]));
    } else if (output.m_eCoding == OC_OPUS) {
        ApplyOpusBitRate(file, *NumberOf<int>(settings[kBitRate]), accepted.nChannels);
    } else {
        ApplyMp3BitRate(file, *NumberOf<int>(settings[kBitRate]), accepted.nSampleRate);
    }
}

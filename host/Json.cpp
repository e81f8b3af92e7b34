// What the commands say to programs.
#include "host/Json.h"

#include <cstdio>
#include <nlohmann/json.hpp>

namespace {

constexpr int kIndent = 2;

}  // namespace

nlohmann::ordered_json FormatJson(const SHeldWavFormat& format) {
    return {{"sampleRate", format.m_format.nSampleRate},
            {"bits", format.m_format.nBitsPerSample},
            {"channels", format.m_format.nChannels},
            {"float", format.m_nQualifier == kFloatSamples}};
}

double SecondsOf(std::uint64_t frames, std::int32_t sampleRate) {
    return static_cast<double>(frames) / static_cast<double>(sampleRate);
}

void PrintJson(const nlohmann::ordered_json& document) {
    const std::string text = document.dump(kIndent, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
    std::puts(text.c_str());
}

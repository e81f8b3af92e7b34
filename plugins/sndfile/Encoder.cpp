// The encoder component.
#include "plugins/sndfile/Encoder.h"

#include <libintl.h>

#include "plugins/sndfile/OutputFormat.h"
#include "plugins/sndfile/OutputSettings.h"
#include "plugins/sndfile/SampleWriter.h"

namespace {

// libsndfile reads RIFF texts into 2048 bytes.
constexpr std::size_t kMostTagBytes = 2000;

const SOutputFormat& OutputOf(const STargetRequest& request) { return OutputFormatOf(request.m_strExtension); }

}  // namespace

CEncoder::CEncoder() : CCodecComponent("libsndfile Encoder", WritableExtensions()) {}

SWavFormat CEncoder::AcceptFormat(const STargetRequest& request, const SWavFormat& format) {
    const SOutputFormat& output = OutputOf(request);
    SWavFormat accepted = AcceptedFormat(output, format);
    const bool floats = WantsFloat(request.m_settings);
    if (floats) accepted.nBitsPerSample = 32;
    RequireWritable(output, OutputInfo(output, accepted, floats));
    CheckBitRate(output, request.m_settings, accepted);
    return accepted;
}

std::unique_ptr<CSoundWriter> CEncoder::CreateWriter(const STargetRequest& request, const SWavFormat& accepted) {
    return std::make_unique<CSampleWriter>(OutputOf(request), request, accepted);
}

bool CEncoder::HasTag(const STargetRequest& request, ETag tag) { return OutputOf(request).Has(tag); }

void CEncoder::CheckTag(const STargetRequest& /*request*/, ETag /*tag*/, const std::string& text) {
    if (text.size() > kMostTagBytes) {
        Refuse("a tag of " + std::to_string(text.size()) + " bytes; there is room for " +
               std::to_string(kMostTagBytes));
    }
}

std::vector<SSetting> CEncoder::GetSettings(const std::string& extension) {
    return SettingsOf(OutputFormatOf(extension));
}

void CEncoder::CheckSetting(const STargetRequest& request, const std::string& name, const std::string& value) {
    CheckSettingValue(OutputOf(request), name, value);
}

const char* CEncoder::AboutFormat() const { return dgettext(kTextDomain, "Writes sound files with %s."); }

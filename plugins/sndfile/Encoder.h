// The encoder component.
#pragma once

#include "plugins/sndfile/CodecComponent.h"
#include "sdk/Encoder.h"

// Writes what OutputFormat.h lists and the installed libsndfile can. [any thread]
class CEncoder final : public CCodecComponent<CEncoderComponent<IComponentAbout>> {
public:
    CEncoder();

private:
    SWavFormat AcceptFormat(const STargetRequest& request, const SWavFormat& format) override;
    std::unique_ptr<CSoundWriter> CreateWriter(const STargetRequest& request, const SWavFormat& accepted) override;
    bool HasTag(const STargetRequest& request, ETag tag) override;
    void CheckTag(const STargetRequest& request, ETag tag, const std::string& text) override;
    std::vector<SSetting> GetSettings(const std::string& extension) override;
    void CheckSetting(const STargetRequest& request, const std::string& name, const std::string& value) override;
    const char* AboutFormat() const override;
};

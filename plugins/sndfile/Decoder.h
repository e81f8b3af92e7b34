// The decoder component.
#pragma once

#include "plugins/sndfile/CodecComponent.h"
#include "sdk/Decoder.h"

// Opens what the installed libsndfile reads. [any thread]
class CDecoder final : public CCodecComponent<CDecoderComponent<IComponentAbout>> {
public:
    CDecoder();

private:
    std::unique_ptr<CSound> OpenSound(const std::string& path, EAudioFeature level) override;
    const char* AboutFormat() const override;
};

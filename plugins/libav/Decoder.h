// The decoder component.
#pragma once

#include "com/Configurable.h"
#include "plugins/shared/AboutBox.h"
#include "sdk/Decoder.h"

// Opens the sound tracks that the installed libavcodec decodes. [any thread], and HasAbout and About [GTK thread]
class CLibavDecoder final : public CDecoderComponent<IComponentAbout> {
public:
    CLibavDecoder();

    const char* GetVendor() override { return kVendor; }
    bool HasAbout() override;
    void About() override;

private:
    std::unique_ptr<CSound> OpenSound(const std::string& path, EAudioFeature level) override;
};

// The plug-in's primary component: a factory of convertors.
#pragma once

#include <memory>

#include "plugins/soxr/ConversionSettings.h"
#include "sdk/Convertor.h"

// Takes integers of 8 to 32 bits and kFloatSamples, on both sides. [any thread]
class CSoxrComponent final : public CConvertorComponent<IConfigurable, IComponentAbout, INamedSettings> {
public:
    CSoxrComponent() : CConvertorComponent("SoX Resampler Convertor") {}

    bool IsSupported(EAudioFeature feature) override;

    // The resampling quality of convertors made afterwards. False, with nothing changed, where GTK 2 cannot show the
    // dialog. [GTK thread]
    bool Configure() override;

    const char* GetVendor() override;
    bool HasAbout() override;
    void About() override;

    // "quality" and "dither" of convertors made afterwards; the texts stay valid as long as the component.
    int GetSettingCount() override;
    const char* GetSettingName(int n) override;
    const char* GetSettingValues(int n) override;
    const char* GetSetting(const char* name) override;
    bool SetSetting(const char* name, const char* value, IStatus** status) override;

private:
    std::unique_ptr<CConversion> CreateConversion(const SHeldWavFormat& from, const SHeldWavFormat& to) override;

    CConversionSettings m_settings;
};

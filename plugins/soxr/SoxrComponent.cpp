// The plug-in's primary component: a factory of convertors.
#include "plugins/soxr/SoxrComponent.h"

#include <libintl.h>
#include <soxr.h>

#include <string>

#include "plugins/shared/AboutBox.h"
#include "plugins/shared/Gtk.h"
#include "plugins/soxr/QualityDialog.h"
#include "plugins/soxr/SampleConversion.h"
#include "sdk/Plugin.h"

bool CSoxrComponent::IsSupported(EAudioFeature feature) {
    return feature == AF_BASIC || feature == AF_ADVANCED_FORMATS;
}

bool CSoxrComponent::Configure() {
    EResamplingQuality quality = m_settings.Quality();
    if (!AskResamplingQuality(AppWindowOf(Manager()), quality)) return false;
    m_settings.SetQuality(quality);
    return true;
}

const char* CSoxrComponent::GetVendor() { return kVendor; }

bool CSoxrComponent::HasAbout() { return CanShowDialogs(); }

void CSoxrComponent::About() {
    ShowAboutBox(AppWindowOf(Manager()), GetName(),
                 dgettext(kTextDomain, "Converts sample rates, sample sizes and channels with %s."), soxr_version());
}

int CSoxrComponent::GetSettingCount() { return CConversionSettings::kCount; }

const char* CSoxrComponent::GetSettingName(int n) {
    const CChoice* const choice = m_settings.At(n);
    return choice != nullptr ? choice->Name() : nullptr;
}

const char* CSoxrComponent::GetSettingValues(int n) {
    const CChoice* const choice = m_settings.At(n);
    return choice != nullptr ? choice->Values() : nullptr;
}

const char* CSoxrComponent::GetSetting(const char* name) {
    const CChoice* const choice = m_settings.Find(name);
    return choice != nullptr ? choice->Word() : nullptr;
}

bool CSoxrComponent::SetSetting(const char* name, const char* value, IStatus** status) {
    return Guarded(status, "", [&] {
        m_settings.Set(name, value);
        return true;
    });
}

std::unique_ptr<CConversion> CSoxrComponent::CreateConversion(const SHeldWavFormat& from, const SHeldWavFormat& to) {
    const std::string obstacle = WhyNotConvertible(from, to);
    if (!obstacle.empty()) Refuse(obstacle);
    return MakeConversion({from, to, m_settings.Quality(), m_settings.Dither()});
}

KELO_PLUGIN(CSoxrComponent);

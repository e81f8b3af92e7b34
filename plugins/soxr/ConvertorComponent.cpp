// The plug-in's primary component: a factory of convertors.
#include "plugins/soxr/ConvertorComponent.h"

#include <libintl.h>
#include <soxr.h>

#include <string>

#include "com/QueryTable.h"
#include "plugins/shared/AboutBox.h"
#include "plugins/shared/Gtk.h"
#include "plugins/soxr/Convertor.h"
#include "plugins/soxr/Guard.h"
#include "plugins/soxr/QualityDialog.h"

namespace {

// The formats handed to a factory are the records of held formats.
SHeldWavFormat HeldFormat(const SWavFormat* record) { return *reinterpret_cast<const SHeldWavFormat*>(record); }

IAudioConvertor* MakeConvertor(const SHeldWavFormat& from, const SHeldWavFormat& to, IStatus** status) {
    const std::string obstacle = WhyNotConvertible(from, to);
    if (obstacle.empty()) return new CConvertor(SConversionPlan{from.m_format, to.m_format, GetResamplingQuality()});
    ReportStatus(status, obstacle.c_str());
    return nullptr;
}

}  // namespace

unsigned int CConvertorComponent::AddRef() { return ++m_nReferences; }

unsigned int CConvertorComponent::Release() {
    unsigned int count = m_nReferences;
    while (count != 0 && !m_nReferences.compare_exchange_weak(count, count - 1)) {
    }
    return count == 0 ? 0 : count - 1;
}

int CConvertorComponent::QueryInterface(unsigned long identity, void** face) {
    return AnswerQuery(*this, identity, face,
                       {{IID_IUnknown, static_cast<IAudioComponent*>(this)},
                        {IID_IConvertorFactory, static_cast<IConvertorFactory*>(this)},
                        {IID_IFeatureSupport, static_cast<IFeatureSupport*>(this)},
                        {IID_IConfigurable, static_cast<IConfigurable*>(this)},
                        {IID_IComponentAbout, static_cast<IComponentAbout*>(this)}});
}

const char* CConvertorComponent::GetName() { return "SoX Resampler Convertor"; }

EAudioComponentType CConvertorComponent::GetType() { return ACT_CONVERTOR; }

bool CConvertorComponent::Initialize(IAudioPluginMgr* manager, IStatus** /*status*/) {
    m_pManager = manager;
    return true;
}

void CConvertorComponent::Terminate() { m_pManager = nullptr; }

void CConvertorComponent::ReservedFirst() {}

bool CConvertorComponent::CreateConvertor(const SWavFormat* from, const SWavFormat* to, IAudioConvertor** convertor,
                                          IStatus** status) {
    return Guarded(status, [&] {
        if (convertor != nullptr) *convertor = nullptr;
        if (from == nullptr || to == nullptr || convertor == nullptr) {
            ReportStatus(status, AE_BAD_ARGUMENT);
            return false;
        }
        *convertor = MakeConvertor(HeldFormat(from), HeldFormat(to), status);
        return *convertor != nullptr;
    });
}

bool CConvertorComponent::IsSupported(EAudioFeature feature) { return feature == AF_BASIC; }

bool CConvertorComponent::EnableSupport(EAudioFeature /*feature*/, bool /*enable*/) { return false; }

bool CConvertorComponent::Configure() {
    EResamplingQuality quality = GetResamplingQuality();
    if (!AskResamplingQuality(AppWindowOf(m_pManager), quality)) return false;
    SetResamplingQuality(quality);
    return true;
}

const char* CConvertorComponent::GetVendor() { return kVendor; }

bool CConvertorComponent::HasAbout() { return CanShowDialogs(); }

void CConvertorComponent::About() {
    ShowAboutBox(AppWindowOf(m_pManager), GetName(),
                 dgettext(kTextDomain, "Converts sample rates, sample sizes and channels with %s."), soxr_version());
}

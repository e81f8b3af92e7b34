// The plug-in's primary component: a factory of convertors.
#include "plugins/soxr/ConvertorComponent.h"

#include <string>

#include "com/QueryTable.h"
#include "plugins/soxr/Convertor.h"
#include "plugins/soxr/Guard.h"

namespace {

// The formats handed to a factory are the records of held formats.
SHeldWavFormat HeldFormat(const SWavFormat* record) { return *reinterpret_cast<const SHeldWavFormat*>(record); }

IAudioConvertor* MakeConvertor(const SHeldWavFormat& from, const SHeldWavFormat& to, IStatus** status) {
    const std::string obstacle = WhyNotConvertible(from, to);
    if (obstacle.empty()) return new CConvertor(SConversionPlan{from.m_format, to.m_format});
    ReportStatus(status, obstacle.c_str());
    return nullptr;
}

}  // namespace

unsigned int CConvertorComponent::AddRef() { return m_references.Increment(); }

unsigned int CConvertorComponent::Release() { return m_references.Decrement(); }

int CConvertorComponent::QueryInterface(unsigned long identity, void** face) {
    return AnswerQuery(*this, identity, face,
                       {{IID_IUnknown, static_cast<IAudioComponent*>(this)},
                        {IID_IConvertorFactory, static_cast<IConvertorFactory*>(this)},
                        {IID_IFeatureSupport, static_cast<IFeatureSupport*>(this)}});
}

const char* CConvertorComponent::GetName() { return "SoX Resampler Convertor"; }

EAudioComponentType CConvertorComponent::GetType() { return ACT_CONVERTOR; }

bool CConvertorComponent::Initialize(IAudioPluginMgr* /*manager*/, IStatus** /*status*/) { return true; }

void CConvertorComponent::Terminate() {}

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

// The plug-in's primary component: a factory of convertors.
#pragma once

#include <atomic>

#include "com/AudioComponent.h"
#include "com/Configurable.h"
#include "com/FeatureSupport.h"
#include "stream/Convertor.h"

// Lives as long as the plug-in stays loaded; its references are only counted, and one release too many changes nothing:
// converting targets take references of the factory without asking. [any thread]
class CConvertorComponent final : public IAudioComponent,
                                  public IConvertorFactory,
                                  public IFeatureSupport,
                                  public IConfigurable,
                                  public IComponentAbout {
public:
    unsigned int AddRef() override;
    unsigned int Release() override;
    int QueryInterface(unsigned long identity, void** face) override;

    const char* GetName() override;
    EAudioComponentType GetType() override;
    bool Initialize(IAudioPluginMgr* manager, IStatus** status) override;
    void Terminate() override;

    void ReservedFirst() override;

    // False with a description of what cannot be mapped; `*convertor` is null then.
    bool CreateConvertor(const SWavFormat* from, const SWavFormat* to, IAudioConvertor** convertor,
                         IStatus** status) override;

    // Basic conversion is always there; nothing can be switched.
    bool IsSupported(EAudioFeature feature) override;
    bool EnableSupport(EAudioFeature feature, bool enable) override;

    // The resampling quality of convertors made afterwards. False, with nothing changed, where GTK 2 cannot show the
    // dialog.
    bool Configure() override;

    const char* GetVendor() override;
    bool HasAbout() override;
    void About() override;

private:
    IAudioPluginMgr* m_pManager = nullptr;  // borrowed until Terminate
    std::atomic<unsigned int> m_nReferences{0};
};

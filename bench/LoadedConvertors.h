// The soxr plug-in as a host loads it, for measurements.
#pragma once

#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

#include "com/AudioComponent.h"
#include "com/ComPtr.h"
#include "com/InterfaceIds.h"
#include "com/NamedSettings.h"
#include "portable/DynamicLibrary.h"
#include "stream/Convertor.h"

// One object belongs to one thread.
class CLoadedConvertors {
public:
    CLoadedConvertors() : m_pModule(LoadLibrary(KELO_SOXR_PLUGIN)) {
        using CGetPrimary = bool(IAudioComponent**);
        void* const entry =
            m_pModule != nullptr ? GetProcAddress(m_pModule, "KELO_PLUGIN_GetPrimaryAudioObject") : nullptr;
        if (entry == nullptr || !reinterpret_cast<CGetPrimary*>(entry)(m_pComponent.Out())) {
            throw std::runtime_error("cannot load " KELO_SOXR_PLUGIN);
        }
        m_pFactory = CComPtr<IConvertorFactory>::Query(m_pComponent.Get(), IID_IConvertorFactory);
    }
    ~CLoadedConvertors() {
        m_pFactory.Reset();
        m_pComponent.Reset();
        FreeLibrary(m_pModule);
    }

    CLoadedConvertors(const CLoadedConvertors&) = delete;
    CLoadedConvertors& operator=(const CLoadedConvertors&) = delete;

    CComPtr<IAudioConvertor> Create(const char* quality, const SHeldWavFormat& from, const SHeldWavFormat& to) const {
        const auto settings = CComPtr<INamedSettings>::Query(m_pComponent.Get(), IID_INamedSettings);
        CComPtr<IAudioConvertor> convertor;
        if (!settings->SetSetting("quality", quality, nullptr) ||
            !m_pFactory->CreateConvertor(&from.m_format, &to.m_format, convertor.Out(), nullptr)) {
            throw std::runtime_error("no convertor of quality " + std::string(quality));
        }
        return convertor;
    }

private:
    void* m_pModule;
    CComPtr<IAudioComponent> m_pComponent;
    CComPtr<IConvertorFactory> m_pFactory;
};

// The built plug-in, loaded as the manager loads it.
#pragma once

#include <stdexcept>
#include <string>

#include "com/AudioComponent.h"
#include "com/ComPtr.h"
#include "com/InterfaceIds.h"
#include "portable/DynamicLibrary.h"
#include "stream/URLSourceHandler.h"

// What one Fetch left behind.
struct SFetched {
    bool m_bFetched;
    std::string m_strPath;         // what the buffer holds afterwards
    std::string m_strDescription;  // of the status, "none" without one
};

// Terminated and unloaded by the destructor.
class CPluginUnderTest {
public:
    CPluginUnderTest() : m_pModule(LoadLibrary(KELO_CURL_PLUGIN)) {
        const auto primary = GetProcAddress(m_pModule, "KELO_PLUGIN_GetPrimaryAudioObject");
        const auto ready = GetProcAddress(m_pModule, "KELO_PLUGIN_ReadyToFinish");
        if (primary == nullptr || ready == nullptr) throw std::runtime_error("no plug-in " KELO_CURL_PLUGIN);
        reinterpret_cast<bool (*)(IAudioComponent**)>(primary)(m_component.Out());
        m_pReady = reinterpret_cast<bool (*)()>(ready);
        m_handler = CComPtr<IURLSourceHandler>::Query(m_component.Get(), IID_IURLSourceHandler);
        m_component->Initialize(nullptr, nullptr);
    }
    ~CPluginUnderTest() {
        m_component->Terminate();
        m_handler.Reset();
        m_component.Reset();
        FreeLibrary(m_pModule);
    }

    CPluginUnderTest(const CPluginUnderTest&) = delete;
    CPluginUnderTest& operator=(const CPluginUnderTest&) = delete;

    IAudioComponent& Component() const { return *m_component; }
    IURLSourceHandler& Handler() const { return *m_handler; }
    bool ReadyToFinish() const { return m_pReady(); }

    SFetched Fetch(const std::string& url) const {
        char path[kLocalPathCapacity] = "untouched";
        CComPtr<IStatus> status;
        const bool fetched = m_handler->Fetch(url.c_str(), path, 0, status.Out());
        return {fetched, path, status ? status->GetDescription() : "none"};
    }

private:
    void* m_pModule;
    CComPtr<IAudioComponent> m_component;
    CComPtr<IURLSourceHandler> m_handler;
    bool (*m_pReady)() = nullptr;
};

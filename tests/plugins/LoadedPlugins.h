// The manager with reference plug-ins loaded.
#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "com/AudioComponent.h"
#include "com/ComPtr.h"
#include "com/Configurable.h"
#include "com/InterfaceIds.h"
#include "tests/support/ManagerHold.h"
#include "tests/support/ScratchDirectory.h"

class CLoadedPlugins {
public:
    // sndfile, soxr and `further` ones.
    explicit CLoadedPlugins(std::vector<std::filesystem::path> further = {}) {
        further.insert(further.end(), {KELO_SNDFILE_PLUGIN, KELO_SOXR_PLUGIN});
        for (const std::filesystem::path& plugin : further) {
            std::filesystem::create_symlink(plugin, m_scratch.Path() / plugin.filename());
        }
        m_manager->SetPluginDirectory(m_scratch.Path().c_str());
        m_manager->LoadPlugins();
    }
    ~CLoadedPlugins() { m_manager->UnloadPlugins(); }

    CLoadedPlugins(const CLoadedPlugins&) = delete;
    CLoadedPlugins& operator=(const CLoadedPlugins&) = delete;

    CAudioPluginMgr& Manager() const { return *m_manager.Get(); }

    // By its name in the registry.
    CComPtr<IAudioComponent> Component(const std::string& name) const {
        for (int i = 0; i < m_manager->GetCount(); ++i) {
            CComPtr<IAudioComponent> component;
            if (m_manager->GetComponent(i, component.Out()) && component->GetName() == name) return component;
        }
        throw std::runtime_error("no component " + name);
    }

    CComPtr<IComponentAbout> About(const std::string& name) const {
        return CComPtr<IComponentAbout>::Query(Component(name).Get(), IID_IComponentAbout);
    }

private:
    CScratchDirectory m_scratch;
    support::CManagerHold m_manager;
};

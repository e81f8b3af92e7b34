// A manager with plug-ins loaded, and what the process shows of them.
#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "stream/Convertor.h"
#include "tests/pluginmgr/Manager.h"
#include "tests/pluginmgr/PluginDirectory.h"
#include "tests/support/CreationLockState.h"

using Lines = std::vector<std::string>;

// Loads from `plugins` for the length of a test.
class CLoadedManager {
public:
    explicit CLoadedManager(const CPluginDirectory& plugins) : m_manager(ObtainManager()) {
        m_manager->SetPluginDirectory(plugins.Path().c_str());
        EXPECT_TRUE(m_manager->LoadPlugins());
    }
    ~CLoadedManager() { m_manager->UnloadPlugins(); }

    CAudioPluginMgr* operator->() const { return m_manager.Get(); }
    CAudioPluginMgr& operator*() const { return *m_manager; }

private:
    CComPtr<CAudioPluginMgr> m_manager;
};

// A factory that the host owns.
class CHostFactory : public IConvertorFactory {
public:
    unsigned int AddRef() override { return static_cast<unsigned int>(++m_nReferences); }
    unsigned int Release() override { return static_cast<unsigned int>(--m_nReferences); }
    int QueryInterface(unsigned long, void** face) override {
        *face = nullptr;
        return kInterfaceMissing;
    }
    void ReservedFirst() override {}
    bool CreateConvertor(const SWavFormat*, const SWavFormat*, IAudioConvertor**, IStatus**) override { return false; }

    int m_nReferences = 0;
};

inline bool IsMapped(const std::string& path) {
    std::ifstream maps("/proc/self/maps");
    const std::string text((std::istreambuf_iterator<char>(maps)), {});
    return text.find(path) != std::string::npos;
}

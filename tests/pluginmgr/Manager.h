// The manager for the length of a test.
#pragma once

#include <string>
#include <vector>

#include "com/ComPtr.h"
#include "pluginmgr/AudioPluginMgr.h"
#include "pluginmgr/GetAudioPluginMgr.h"

inline CComPtr<CAudioPluginMgr> ObtainManager() {
    IAudioPluginMgr* manager = nullptr;
    GetAudioPluginMgr(&manager);
    return CComPtr<CAudioPluginMgr>::Adopt(static_cast<CAudioPluginMgr*>(manager));
}

inline std::vector<std::string> ComponentNames(CAudioPluginMgr& manager) {
    std::vector<std::string> names;
    for (int i = 0; i < manager.GetCount(); ++i) {
        CComPtr<IAudioComponent> component;
        manager.GetComponent(i, component.Out());
        names.emplace_back(component->GetName());
    }
    return names;
}

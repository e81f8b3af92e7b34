// A plug-in with its components.
#pragma once

#include <string>
#include <vector>

#include "com/ComPtr.h"
#include "host/validate/PluginFile.h"
#include "stream/AudioPluginMgrInterface.h"

struct SComponent {
    CComPtr<IAudioComponent> m_pComponent;
    EAudioComponentType m_eType;
    std::string m_strLabel;  // for findings: decoder "libsndfile Decoder"
};

using CComponents = std::vector<SComponent>;

// "decoder" for ACT_DECODER.
std::string TypeText(EAudioComponentType type);

// Loads the plug-in and takes its components as the manager does, which registers the members of collections instead of
// the collections. Nothing is given back unless the operations for it are called. One thread.
class CLoadedPlugin {
public:
    // Throws CFinding when there is no primary object. Labels hold the components' names only where `asksNames`.
    CLoadedPlugin(const std::string& path, bool asksNames);

    CLoadedPlugin(const CLoadedPlugin&) = delete;
    CLoadedPlugin& operator=(const CLoadedPlugin&) = delete;

    CPluginFile& GetFile() { return m_file; }

    // The collections among them, a collection before its members.
    const CComponents& GetEverything() const { return m_vEverything; }

    // What the manager registers, in its order.
    CComponents GetRegistered() const;
    CComponents GetRegistered(EAudioComponentType type) const;

    // Every registered component; throws CFinding for one that refuses.
    void Initialize(IAudioPluginMgr& manager);

    void Terminate();

    // Gives every component back; nothing else may hold any.
    void Release();

private:
    void List(CComPtr<IAudioComponent> component, int index, int depth);
    void ListMembers(IAudioComponent& collection, int depth);
    std::string LabelOf(IAudioComponent& component, EAudioComponentType type, int index) const;

    CPluginFile m_file;
    bool m_bAsksNames;
    CComponents m_vEverything;
};

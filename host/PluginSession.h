// The manager with its plug-ins loaded.
#pragma once

#include <string>
#include <vector>

#include "com/AudioComponent.h"
#include "com/ComPtr.h"
#include "host/PluginOptions.h"
#include "stream/AudioPluginMgrInterface.h"

// Loads in the constructor; the destructor unloads and gives the manager back. Streams and components taken from the
// session are released before it ends, and exceptions of plug-ins are handled before that too: CallPlugins does so.
// [host set-up]
class CPluginSession {
public:
    // Throws CFailure for a directory that cannot be read or yields no component, and when a plug-in throws.
    explicit CPluginSession(const SPluginOptions& options);
    ~CPluginSession();

    CPluginSession(const CPluginSession&) = delete;
    CPluginSession& operator=(const CPluginSession&) = delete;

    IAudioPluginMgr& GetManager() const { return *m_pManager; }

    // Absolute.
    const std::string& GetDirectory() const { return m_strDirectory; }

    // The registered components in registry order.
    std::vector<CComPtr<IAudioComponent>> GetComponents() const;

    // The names of the decoders that an open request for a converting source asks, separated by ", ".
    std::string GetDecoderNames() const;

private:
    void RequireComponents();
    void Unload();

    std::string m_strDirectory;
    std::vector<std::string> m_vCandidates;
    CComPtr<IAudioPluginMgr> m_pManager;
};

// The component's name; "(no name)" when it tells none.
std::string NameOf(IAudioComponent& component);

// The extensions that the component lists; empty without IExtensionList.
std::vector<std::string> ExtensionsOf(IAudioComponent& component);

// Names separated by ", ".
std::string JoinNames(const std::vector<std::string>& names);

// The manager with its plug-ins loaded.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "com/AudioComponent.h"
#include "com/ComPtr.h"
#include "host/ConvertorWatch.h"
#include "host/PluginOptions.h"
#include "stream/AudioPluginMgrInterface.h"

// Loads in the constructor, with advanced formats where the plug-ins' convertor knows them; the destructor unloads and
// gives the manager back. Streams and components taken from the session are released before it ends, and exceptions of
// plug-ins are handled before that too: CallPlugins does so.
// [host set-up] for its beginning and end and for settings, [any thread] in between
class CPluginSession {
public:
    // Throws CFailure as RequirePluginDirectory does and when a plug-in throws, and CNoUsablePlugin.
    explicit CPluginSession(const SPluginOptions& options);
    ~CPluginSession();

    CPluginSession(const CPluginSession&) = delete;
    CPluginSession& operator=(const CPluginSession&) = delete;

    IAudioPluginMgr& GetManager() const { return *m_pManager; }

    // Absolute.
    const std::string& GetDirectory() const { return m_strDirectory; }

    // The registered components in registry order.
    std::vector<CComPtr<IAudioComponent>> GetComponents() const;

    // The names of the decoders that an open request asks, separated by ", ".
    std::string GetDecoderNames() const;

    // The extensions that these decoders list, without the dot. A decoder whose list cannot be right is reported.
    std::vector<std::string> GetDecoderExtensions() const;

    // Changes a setting of the convertors that are made afterwards; throws CFailure about the option when it cannot.
    void SetConvertorSetting(const std::string& name, const std::string& value) const;

private:
    std::vector<CComPtr<IAudioComponent>> GetDecoders() const;
    void Load();
    void RequireComponents() const;
    void EnableFeatures() const;
    void Unload();

    std::string m_strDirectory;
    CComPtr<IAudioPluginMgr> m_pManager;
    std::unique_ptr<CConvertorWatch> m_convertorWatch;
};

// The component's name; "(no name)" when it tells none.
std::string NameOf(IAudioComponent& component);

// False for a count that only a lie can be: following it would take all memory.
bool IsPossibleCount(int count);

// Throws CFailure about `subject` for an impossible count.
void RequireCount(const std::string& subject, int count, const char* what);

// The extensions that the component lists; empty without IExtensionList. Throws as RequireCount does, about the
// component's name.
std::vector<std::string> ExtensionsOf(IAudioComponent& component);

// The same for whoever chooses among components, where one that lies does not stop the others: its list is empty, and
// its failure is added to `failures`.
std::vector<std::string> ExtensionsOf(IAudioComponent& component, std::vector<std::string>& failures);

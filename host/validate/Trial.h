// One check at work on one plug-in.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "com/ComPtr.h"
#include "host/validate/LoadedPlugin.h"
#include "stream/AudioPluginMgrInterface.h"

// What the checks of one plug-in work with.
struct SSurroundings {
    std::string m_strPlugin;              // absolute path
    std::vector<std::string> m_vSamples;  // sound files for the decoders
    std::string m_strURL;                 // a resource for URL handlers, or empty
    std::string m_strOtherPlugins;        // a directory with decoders for what the encoders write
    bool m_bOwnSamples = false;           // the validator has made the samples
    bool m_bOwnServer = false;            // the validator serves m_strURL
};

// For the process of a check, whose own directory is `scratch`: temporary files go there, and the validator's own web
// server is not behind a proxy.
void PrepareEnvironment(const std::string& scratch);

// Lives in the process of its check; what it holds of the plug-in is not given back unless the check does so.
// One thread.
class CTrial {
public:
    // `scratch` is a directory of this check's own; `mayUse` tells whether nothing is known against what a check is
    // about.
    CTrial(const SSurroundings& around, std::string scratch, std::function<bool(const std::string& check)> mayUse);

    CTrial(const CTrial&) = delete;
    CTrial& operator=(const CTrial&) = delete;

    const SSurroundings& Around() const { return m_around; }

    // A name in the check's own directory.
    std::string Scratch(const std::string& name) const { return m_strScratch + "/" + name; }

    // Writes a file there and returns its path. Throws CFailure when it cannot be written.
    std::string WriteScratch(const std::string& name, const std::string& content) const;

    // Whether `check` passed, or is not part of this run. Checks that look at everything leave out what is broken.
    bool MayUse(const std::string& check) const { return m_mayUse(check); }

    // The plug-in with its components, loaded at the first call.
    CLoadedPlugin& Loaded();

    // The same with every component initialised, at the first call.
    CLoadedPlugin& Plugin();

    // The registered components of one type, initialised. Throws CSkipped when there are none.
    CComponents Components(EAudioComponentType type);

    // The library's own, with no plug-ins loaded.
    IAudioPluginMgr& Manager();

private:
    const SSurroundings& m_around;
    std::string m_strScratch;
    std::function<bool(const std::string&)> m_mayUse;
    std::unique_ptr<CLoadedPlugin> m_pPlugin;
    CComPtr<IAudioPluginMgr> m_pManager;
    bool m_bInitialized = false;
};

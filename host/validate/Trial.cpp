// One check at work on one plug-in.
#include "host/validate/Trial.h"

#include <stdlib.h>

#include <utility>

#include "host/validate/Outcome.h"
#include "host/validate/SampleSound.h"
#include "pluginmgr/GetAudioPluginMgr.h"

void PrepareEnvironment(const std::string& scratch) {
    setenv("TMPDIR", scratch.c_str(), 1);
    // The validator's own server is reached directly, and whoever the person's list names.
    const char* const others = getenv("no_proxy") != nullptr ? getenv("no_proxy") : getenv("NO_PROXY");
    setenv("no_proxy", (std::string("127.0.0.1") + (others != nullptr ? "," + std::string(others) : "")).c_str(), 1);
}

CTrial::CTrial(const SSurroundings& around, std::string scratch, std::function<bool(const std::string&)> mayUse)
    : m_around(around), m_strScratch(std::move(scratch)), m_mayUse(std::move(mayUse)) {}

std::string CTrial::WriteScratch(const std::string& name, const std::string& content) const {
    const std::string path = Scratch(name);
    WriteFile(path, CBytes(content.begin(), content.end()));
    return path;
}

CLoadedPlugin& CTrial::Loaded() {
    if (!m_pPlugin) m_pPlugin = std::make_unique<CLoadedPlugin>(m_around.m_strPlugin, MayUse("component/name"));
    return *m_pPlugin;
}

CLoadedPlugin& CTrial::Plugin() {
    if (!std::exchange(m_bInitialized, true)) Loaded().Initialize(Manager());
    return Loaded();
}

CComponents CTrial::Components(EAudioComponentType type) {
    CComponents components = Plugin().GetRegistered(type);
    if (components.empty()) throw CSkipped("it has no " + TypeText(type));
    return components;
}

IAudioPluginMgr& CTrial::Manager() {
    if (!m_pManager) Expect(GetAudioPluginMgr(m_pManager.Out()) == 1, "the library gives no manager");
    return *m_pManager;
}

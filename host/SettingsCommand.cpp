// keloaudio settings.
#include "host/SettingsCommand.h"

#include <CLI/CLI.hpp>
#include <memory>

#include "com/Configurable.h"
#include "com/InterfaceIds.h"
#include "host/CrashNote.h"
#include "host/Failure.h"
#include "host/PluginCall.h"
#include "host/PluginOptions.h"
#include "host/PluginSession.h"
#include "host/ProgramDirectory.h"
#include "host/StopSignal.h"

namespace {

struct SSettingsOptions {
    SPluginOptions m_plugins;
    std::string m_strImagesDirectory;
};

std::string ChosenImagesDirectory(const SSettingsOptions& options) {
    if (!options.m_strImagesDirectory.empty()) return options.m_strImagesDirectory;
    return ProgramDirectory(KELO_INSTALLED_IMAGES, "../share/keloaudiopluginmgr/images");
}

int RunSettings(const SSettingsOptions& options) {
    NoteCrashes(ChosenPluginDirectory(options.m_plugins));
    const CPluginSession session(options.m_plugins);
    return CallPlugins(session.GetDirectory(), [&] {
        session.GetManager().SetImagesDirectory(ChosenImagesDirectory(options).c_str());
        const auto settings = CComPtr<IConfigurable>::Query(&session.GetManager(), IID_IConfigurable);
        UnwatchStopSignals();
        return settings && settings->Configure() ? 0 : kExitFailed;
    });
}

std::function<int()> DefineSettings(CLI::App& app) {
    const auto options = std::make_shared<SSettingsOptions>();
    AddPluginOptions(app, options->m_plugins);
    app.add_option("--images", options->m_strImagesDirectory,
                   "Directory of the dialog's icons; if left out, the one installed or built with keloaudio")
        ->type_name("DIR")
        ->check(RefuseEmpty);
    return [options] { return RunSettings(*options); };
}

}  // namespace

const SCommand kSettingsCommand = {"settings", "Show the plug-ins and their settings in a dialog",
                                   "Example: keloaudio settings --plugins /opt/kelo/plugins", DefineSettings};

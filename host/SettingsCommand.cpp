// keloaudio settings.
#include "host/SettingsCommand.h"

#include "com/Configurable.h"
#include "com/InterfaceIds.h"
#include "host/PluginCall.h"
#include "host/PluginSession.h"
#include "host/ProgramDirectory.h"
#include "host/StopSignal.h"

bool RunSettings(const std::string& pluginDirectory, const std::string& imagesDirectory) {
    const CPluginSession session(pluginDirectory);
    return CallPlugins(session.GetDirectory(), [&] {
        session.GetManager().SetImagesDirectory(imagesDirectory.c_str());
        const auto settings = CComPtr<IConfigurable>::Query(&session.GetManager(), IID_IConfigurable);
        UnwatchStopSignals();
        return settings && settings->Configure();
    });
}

std::string DefaultImagesDirectory() {
    return ProgramDirectory(KELO_INSTALLED_IMAGES, "../share/keloaudiopluginmgr/images");
}

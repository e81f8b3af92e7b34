// keloaudio settings.
#pragma once

#include <string>

// Shows the settings dialog of the plug-ins until it is closed; true when it was accepted. Where there is no dialog the
// library says why on standard error.
bool RunSettings(const std::string& pluginDirectory, const std::string& imagesDirectory);

// The directory of icons that was installed or built with the running program.
std::string DefaultImagesDirectory();

// keloaudio list.
#pragma once

#include <string>

// Prints one line for each component: type, name, plug-in file and index, extensions.
void RunList(const std::string& pluginDirectory);

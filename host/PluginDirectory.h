// The directory that plug-ins are loaded from.
#pragma once

#include <string>
#include <vector>

#include "host/Failure.h"
#include "host/PluginOptions.h"

// The absolute directory that the options choose. Throws CFailure for one that cannot be read, that holds no plug-in or
// that others may write to.
std::string RequirePluginDirectory(const SPluginOptions& options);

// The names of the files that the manager tries, in its order.
std::vector<std::string> PluginFileNames(const std::string& directory);

// None of the files in the directory gave a component.
class CNoUsablePlugin : public CFailure {
public:
    explicit CNoUsablePlugin(const std::string& directory);
};

// The choice of an encoder by the output's extension.
#pragma once

#include <string>
#include <vector>

#include "com/ComPtr.h"
#include "host/PluginSession.h"
#include "stream/AudioTargetOpener.h"

// The extension of `path` without its dot; empty when there is none.
std::string ExtensionOf(const std::string& path);

// Whether `listed` has the extension, in any case of letters.
bool HasExtension(const std::vector<std::string>& listed, const std::string& extension);

// The first encoder in registry order that lists `extension`, in any case of letters. Throws CFailure about `output`
// when there is none. [any thread]
CComPtr<IAudioTargetOpener> FindEncoder(const CPluginSession& session, const std::string& output,
                                        const std::string& extension);

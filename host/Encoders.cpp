// The choice of an encoder by the output's extension.
#include "host/Encoders.h"

#include <strings.h>

#include <algorithm>
#include <filesystem>
#include <vector>

#include "com/InterfaceIds.h"
#include "host/Failure.h"
#include "host/FailureText.h"

std::string ExtensionOf(const std::string& path) {
    const std::string extension = std::filesystem::path(path).extension().string();
    return extension.empty() ? extension : extension.substr(1);
}

bool HasExtension(const std::vector<std::string>& listed, const std::string& extension) {
    return std::any_of(listed.begin(), listed.end(), [&extension](const std::string& name) {
        return strcasecmp(name.c_str(), extension.c_str()) == 0;
    });
}

CComPtr<IAudioTargetOpener> FindEncoder(const CPluginSession& session, const std::string& output,
                                        const std::string& wanted) {
    std::vector<std::string> known;
    std::vector<std::string> failures;
    for (const CComPtr<IAudioComponent>& component : session.GetComponents()) {
        if (component->GetType() != ACT_ENCODER) continue;
        auto opener = CComPtr<IAudioTargetOpener>::Query(component.Get(), IID_IAudioTargetOpener);
        if (!opener) continue;
        const std::vector<std::string> extensions = ExtensionsOf(*component, failures);
        if (HasExtension(extensions, wanted)) return opener;
        known.insert(known.end(), extensions.begin(), extensions.end());
    }
    const std::string reason =
        wanted.empty() ? "no extension to choose an encoder by" : "no encoder lists \"." + wanted + "\"";
    std::string listed = JoinNames(known);
    for (const std::string& failure : failures) listed += "; " + failure;
    throw CFailure(output, reason, " (listed: " + listed + "; plug-ins from " + session.GetDirectory() + ")");
}

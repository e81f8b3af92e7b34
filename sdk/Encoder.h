// Base of encoder components.
#pragma once

#include <strings.h>

#include <string>
#include <utility>
#include <vector>

#include "sdk/EncoderTarget.h"
#include "sdk/ExtensionList.h"

// The author says in the constructor which files, and through CFileEncoding what each takes and how it is written.
// TFaces are further interfaces of the component. [any thread]
template <typename... TFaces>
class CEncoderComponent : public CExtensionComponent<IAudioTargetOpener, TFaces...>, protected CFileEncoding {
public:
    // Refuses extensions that the component does not list.
    bool OpenTarget(const char* path, const char* extension, IAudioTarget** target, IStatus** status) final {
        return Guarded(status, path != nullptr ? FileNameOf(path) : "", [&] {
            if (path == nullptr || extension == nullptr || target == nullptr) throw CBadArgument();
            const std::string& listed = RequireExtension(extension);
            *target = new CEncoderTarget(*this, {path, listed, {}, CSettings(this->GetSettings(listed))});
            return true;
        });
    }

protected:
    // `extensions` are without the dot.
    CEncoderComponent(std::string name, std::vector<std::string> extensions)
        : CExtensionComponent<IAudioTargetOpener, TFaces...>(std::move(name), ACT_ENCODER, std::move(extensions)) {}
    ~CEncoderComponent() = default;

private:
    // As the component lists it; compared without regard to case.
    const std::string& RequireExtension(const char* extension) const {
        std::string names;
        for (const std::string& listed : this->Extensions()) {
            if (strcasecmp(listed.c_str(), extension) == 0) return listed;
            names += (names.empty() ? "" : ", ") + listed;
        }
        Refuse("no encoder for \"." + std::string(extension) + "\"; it writes " + names);
    }
};

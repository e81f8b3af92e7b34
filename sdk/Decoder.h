// Base of decoder components.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "com/ComPtr.h"
#include "com/FeatureSupport.h"
#include "sdk/DecoderStream.h"
#include "sdk/ExtensionList.h"
#include "stream/AudioPluginMgrInterface.h"

// The author says in the constructor which files, and in Open how one is opened. TFaces are further interfaces of the
// component. [any thread]
template <typename... TFaces>
class CDecoderComponent : public CExtensionComponent<IAudioFileOpener, TFaces...> {
public:
    // Every stream of the SDK can be wrapped.
    EAuxFlags GetAuxFlags() final { return AUX_CONVERT; }

    // Enabled unless the author overrides it.
    unsigned int GetOpenerState() override { return kOpenerEnabled; }

    // The manager has matched the sets against GetAuxFlags: they change nothing here.
    bool Open(const char* path, IUnknown** stream, EAuxFlags /*required*/, EAuxFlags /*excluded*/,
              IStatus** status) final {
        return Guarded(status, path != nullptr ? FileNameOf(path) : "", [&] {
            if (path == nullptr || stream == nullptr) throw CBadArgument();
            std::unique_ptr<CSound> sound = OpenSound(path, Level());
            if (sound == nullptr) Refuse("not opened");
            *stream = CComPtr<IAggregatable>(new CDecoderStream(path, std::move(sound))).Detach();
            return true;
        });
    }

protected:
    // `extensions` are without the dot.
    CDecoderComponent(std::string name, std::vector<std::string> extensions)
        : CExtensionComponent<IAudioFileOpener, TFaces...>(std::move(name), ACT_DECODER, std::move(extensions)) {}
    ~CDecoderComponent() = default;

    // Opens the file at `path`, whose extension need not be a listed one, or throws the reason against it. Float
    // samples may be delivered only at AF_ADVANCED_FORMATS.
    virtual std::unique_ptr<CSound> OpenSound(const std::string& path, EAudioFeature level) = 0;

private:
    // What the manager's sources take at this moment.
    EAudioFeature Level() const {
        const auto features = CComPtr<IFeatureSupport>::Query(this->Manager(), IID_IFeatureSupport);
        return features && features->IsSupported(AF_ADVANCED_FORMATS) ? AF_ADVANCED_FORMATS : AF_BASIC;
    }
};

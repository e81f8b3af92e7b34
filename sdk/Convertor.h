// Base of convertor components.
#pragma once

#include <memory>
#include <string>
#include <utility>

#include "sdk/Component.h"
#include "sdk/ConvertorObject.h"

// A factory of convertors; the manager takes the first that plug-ins provide. TFaces are further interfaces of the
// component. [any thread]
template <typename... TFaces>
class CConvertorComponent : public CComponent<IConvertorFactory, IFeatureSupport, TFaces...> {
public:
    // Never called.
    void ReservedFirst() final {}

    // False with the reason; `*convertor` is null then.
    bool CreateConvertor(const SWavFormat* from, const SWavFormat* to, IAudioConvertor** convertor,
                         IStatus** status) final {
        return Guarded(status, "", [&] {
            if (convertor != nullptr) *convertor = nullptr;
            if (from == nullptr || to == nullptr || convertor == nullptr) throw CBadArgument();
            RequireFrames(*from);
            RequireFrames(*to);
            std::unique_ptr<CConversion> conversion = CreateConversion(HeldFormat(from), HeldFormat(to));
            if (conversion == nullptr) Refuse("no conversion");
            *convertor = new CConvertorObject(*from, *to, std::move(conversion));
            return true;
        });
    }

    // AF_ADVANCED_FORMATS belongs to convertors that take kFloatSamples.
    bool IsSupported(EAudioFeature feature) override { return feature == AF_BASIC; }

    // Nothing can be switched.
    bool EnableSupport(EAudioFeature /*feature*/, bool /*enable*/) final { return false; }

protected:
    // The name that people see.
    explicit CConvertorComponent(std::string name)
        : CComponent<IConvertorFactory, IFeatureSupport, TFaces...>(std::move(name), ACT_CONVERTOR) {}
    ~CConvertorComponent() = default;

    // Throws the reason against a conversion that does not exist.
    virtual std::unique_ptr<CConversion> CreateConversion(const SHeldWavFormat& from, const SHeldWavFormat& to) = 0;

private:
    // The formats handed to a factory are the records of held formats.
    static SHeldWavFormat HeldFormat(const SWavFormat* record) {
        return *reinterpret_cast<const SHeldWavFormat*>(record);
    }

    static void RequireFrames(const SWavFormat& format) {
        if (format.nSampleRate < 1 || format.nBitsPerSample < 8 || format.nChannels < 1) {
            Refuse("no conversion for " + std::to_string(format.nSampleRate) + " Hz, " +
                   std::to_string(format.nBitsPerSample) + " bits, " + std::to_string(format.nChannels) + " channels");
        }
    }
};

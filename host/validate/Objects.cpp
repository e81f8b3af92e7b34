// Every kind of object that a plug-in hands out.
#include "host/validate/Objects.h"

#include <iterator>

#include "com/InterfaceIds.h"
#include "host/validate/ConvertorRun.h"
#include "host/validate/Outcome.h"
#include "host/validate/Sink.h"
#include "host/validate/Source.h"
#include "host/validate/Steps.h"
#include "stream/FileOpener.h"
#include "stream/URLSourceHandler.h"

namespace {

struct SIdentity {
    unsigned long m_nIdentity;
    const char* m_szName;
};

constexpr SIdentity kIdentities[] = {
    {IID_IUnknown, "IUnknown"},
    {IID_IStatus, "IStatus"},
    {IID_IProcess, "IProcess"},
    {IID_ISourceName, "ISourceName"},
    {IID_IAggregatable, "IAggregatable"},
    {IID_IAudioRawReader, "IAudioRawReader"},
    {IID_IAudioFileOpener, "IAudioFileOpener"},
    {IID_IConvertorFactory, "IConvertorFactory"},
    {IID_IComponentEnum, "IComponentEnum"},
    {IID_ISeekable, "ISeekable"},
    {IID_IAudioRawBlockInfo, "IAudioRawBlockInfo"},
    {IID_IExtensionList, "IExtensionList"},
    {IID_IAudioRawWriter, "IAudioRawWriter"},
    {IID_IInfoReader, "IInfoReader"},
    {IID_IConfigurable, "IConfigurable"},
    {IID_IURLSourceHandler, "IURLSourceHandler"},
    {IID_IComponentAbout, "IComponentAbout"},
    {IID_IFeatureSupport, "IFeatureSupport"},
    {IID_IAdvancedFormat, "IAdvancedFormat"},
    {IID_IStatusCategory, "IStatusCategory"},
    {IID_IRealFormat, "IRealFormat"},
    {IID_IIndexArray, "IIndexArray"},
    {IID_IAudioTargetOpener, "IAudioTargetOpener"},
    {IID_ITargetTags, "ITargetTags"},
    {IID_INamedSettings, "INamedSettings"},
    {IID_IClippingCount, "IClippingCount"},
};

IUnknown* UnknownOf(unsigned long identity, void* face) {
    if (identity != IID_IAudioFileOpener) return static_cast<IUnknown*>(face);
    return static_cast<IAudioFileOpenerControl*>(static_cast<IAudioFileOpener*>(face));
}

void AddComponents(CTrial& trial, std::vector<SObject>& objects) {
    for (const SComponent& component : trial.Plugin().GetEverything()) {
        objects.push_back({component.m_strLabel, CComPtr<IUnknown>(component.m_pComponent.Get())});
    }
}

void AddSources(CTrial& trial, std::vector<SObject>& objects) {
    for (const SSampleCase& sample : SampleCases(trial)) {
        objects.push_back({"the stream of " + sample.GetLabel(), OpenSample(sample)});
    }
}

void AddTargets(CTrial& trial, std::vector<SObject>& objects) {
    ForEachOutput(trial, [&](const SOutputCase& output, const std::string& path) {
        const CComPtr<IAudioTarget> target = OpenTarget(output, path);
        objects.push_back({"the target of " + output.GetLabel(), CComPtr<IUnknown>(target.Get())});
        objects.push_back({"the stream of " + output.GetLabel(), CreateStream(*target)});
    });
}

void AddConvertors(CTrial& trial, std::vector<SObject>& objects) {
    ForEachConversion(trial, [&](IConvertorFactory& factory, const SConversionCase& conversion) {
        std::string reason;
        const CComPtr<IAudioConvertor> convertor = CreateConvertor(factory, conversion, reason);
        objects.push_back({"the convertor from " + conversion.GetLabel(), CComPtr<IUnknown>(convertor.Get())});
    });
}

// Adds what `check` is about, if the check found nothing against it and the plug-in has it.
void AddWhereUsable(CTrial& trial, const char* check, void (*add)(CTrial&, std::vector<SObject>&),
                    std::vector<SObject>& objects) {
    if (!trial.MayUse(check)) return;
    try {
        add(trial, objects);
    } catch (const CSkipped&) {
        // The plug-in has nothing of the kind.
    }
}

void AddDecoderStatuses(CTrial& trial, std::vector<SObject>& objects) {
    for (const SComponent& decoder : trial.Components(ACT_DECODER)) {
        const auto opener = CComPtr<IAudioFileOpener>::Query(decoder.m_pComponent.Get(), IID_IAudioFileOpener);
        TellStep("Open of a file that is not there");
        CComPtr<IUnknown> stream;
        CComPtr<IStatus> status;
        opener->Open(trial.Scratch("missing").c_str(), stream.Out(), AUX_NONE, AUX_NONE, status.Out());
        if (status) objects.push_back({"a status of " + decoder.m_strLabel, CComPtr<IUnknown>(status.Get())});
    }
}

void AddEncoderStatuses(CTrial& trial, std::vector<SObject>& objects) {
    for (const SOutputCase& output : OutputCases(trial)) {
        const auto opener =
            CComPtr<IAudioTargetOpener>::Query(output.m_encoder.m_pComponent.Get(), IID_IAudioTargetOpener);
        TellStep("OpenTarget for an extension that nobody lists");
        CComPtr<IAudioTarget> target;
        CComPtr<IStatus> status;
        opener->OpenTarget(trial.Scratch("x").c_str(), "kelo-no-such", target.Out(), status.Out());
        if (status) objects.push_back({"a status of " + output.GetLabel(), CComPtr<IUnknown>(status.Get())});
    }
}

void AddConvertorStatuses(CTrial& trial, std::vector<SObject>& objects) {
    constexpr SConversionCase kImpossible = {{{0, 0, 0}, 0}, {{44100, 16, 2}, 0}};
    ForEachFactory(trial, [&](IConvertorFactory& factory) {
        TellStep("CreateConvertor from " + kImpossible.GetLabel());
        CComPtr<IAudioConvertor> convertor;
        CComPtr<IStatus> status;
        factory.CreateConvertor(&kImpossible.m_from.m_format, &kImpossible.m_to.m_format, convertor.Out(),
                                status.Out());
        if (status) objects.push_back({"a status of a convertor factory", CComPtr<IUnknown>(status.Get())});
    });
}

void AddHandlerStatuses(CTrial& trial, std::vector<SObject>& objects) {
    if (!trial.Around().m_bOwnServer) return;
    for (const SComponent& component : trial.Components(ACT_URL_HANDLER)) {
        const auto handler = CComPtr<IURLSourceHandler>::Query(component.m_pComponent.Get(), IID_IURLSourceHandler);
        TellStep("Fetch of a resource that is not there");
        std::vector<char> path(kLocalPathCapacity, '\0');
        CComPtr<IStatus> status;
        handler->Fetch((trial.Around().m_strURL + ".missing").c_str(), path.data(), 0, status.Out());
        if (status) objects.push_back({"a status of " + component.m_strLabel, CComPtr<IUnknown>(status.Get())});
    }
}

}  // namespace

std::vector<SObject> EveryStatus(CTrial& trial) {
    std::vector<SObject> objects;
    AddWhereUsable(trial, "decoder/refusal-status", AddDecoderStatuses, objects);
    AddWhereUsable(trial, "encoder/unknown-extension", AddEncoderStatuses, objects);
    AddWhereUsable(trial, "convertor/impossible-formats", AddConvertorStatuses, objects);
    AddWhereUsable(trial, "handler/refusal-status", AddHandlerStatuses, objects);
    return objects;
}

std::vector<SObject> EveryObject(CTrial& trial) {
    std::vector<SObject> objects;
    AddComponents(trial, objects);
    AddWhereUsable(trial, "decoder/last-release", AddSources, objects);
    AddWhereUsable(trial, "encoder/last-release", AddTargets, objects);
    AddWhereUsable(trial, "convertor/last-release", AddConvertors, objects);
    if (!trial.MayUse("status/last-release")) return objects;
    for (const SObject& status : EveryStatus(trial)) objects.push_back(status);
    return objects;
}

void ForEachObject(const std::vector<SObject>& objects, const std::function<void(IUnknown&)>& examine) {
    for (const SObject& object : objects) {
        try {
            TellStep("QueryInterface of " + object.m_strLabel);
            examine(*object.m_pObject);
        } catch (const CFinding& finding) {
            throw CFinding(object.m_strLabel + ": " + finding.what());
        }
    }
}

IUnknown* FaceFor(IUnknown& object, unsigned long identity) {
    void* answer = nullptr;
    if (object.QueryInterface(identity, &answer) != kInterfaceFound || answer == nullptr) return nullptr;
    IUnknown* const face = UnknownOf(identity, answer);
    face->Release();
    return face;
}

std::vector<SFace> FacesOf(IUnknown& object) {
    std::vector<SFace> faces;
    for (const SIdentity& identity : kIdentities) {
        if (IUnknown* const face = FaceFor(object, identity.m_nIdentity)) faces.push_back({identity.m_nIdentity, face});
    }
    return faces;
}

std::string IdentityText(unsigned long identity) {
    for (const SIdentity& known : kIdentities) {
        if (known.m_nIdentity == identity) return known.m_szName;
    }
    return "identity " + std::to_string(identity);
}

// Fetching a remote source and choosing the decoder that opens a local file.
#include "stream/SourceOpening.h"

#include <utility>

#include "com/AudioComponent.h"
#include "com/InterfaceIds.h"
#include "portable/PortableFile.h"
#include "stream/AsciiCase.h"
#include "stream/FileOpener.h"
#include "stream/GuardedCall.h"

namespace {

constexpr int kBothPasses = -1;

CComPtr<IAudioComponent> ComponentAt(IComponentEnum& components, int index) {
    CComPtr<IAudioComponent> component;
    if (!components.GetComponent(index, component.Out())) return nullptr;
    return component;
}

// `extension` is that of the file with its dot, or empty.
bool Lists(IExtensionList& list, const CBasicString<char>& extension) {
    if (extension.IsEmpty()) return false;
    const int count = list.GetCount();
    for (int i = 0; i < count; ++i) {
        const char* const listed = list.GetAt(i);
        if (listed != nullptr && EqualIgnoringAsciiCase(listed, extension.GetText() + 1)) return true;
    }
    return false;
}

bool Allows(EAuxFlags capabilities, const SOpenRequest& request) {
    return (capabilities & request.m_eRequired) == request.m_eRequired && (capabilities & request.m_eExcluded) == 0;
}

// One decoder's turn. `matches` tells whether the decoder lists the file's extension.
bool TryDecoder(IAudioFileOpener& opener, const SOpenRequest& request, bool matches, CComPtr<IStatus>& refusal) {
    if (!Allows(opener.GetAuxFlags(), request)) return false;
    CComPtr<IStatus> reason;
    const bool opened = CallGuarded([&] {
        return opener.Open(request.m_pPath, request.m_ppStream, request.m_eRequired, request.m_eExcluded, reason.Out());
    });
    if (!opened && matches && reason) refusal = reason;
    return opened;
}

bool RunPass(IComponentEnum& decoders, const SOpenRequest& request, int pass, CComPtr<IStatus>& refusal) {
    const CBasicString<char> extension = CPortableFile::Split_GetExtension(request.m_pPath);
    const bool wantsListed = pass == 0;
    const int count = decoders.GetCount();
    for (int i = 0; i < count; ++i) {
        const auto component = ComponentAt(decoders, i);
        const auto opener = CComPtr<IAudioFileOpener>::Query(component.Get(), IID_IAudioFileOpener);
        if (!opener || (opener->GetOpenerState() & kOpenerEnabled) == 0) continue;
        const auto extensions = CComPtr<IExtensionList>::Query(component.Get(), IID_IExtensionList);
        if (!extensions || Lists(*extensions, extension) != wantsListed) continue;
        if (TryDecoder(*opener, request, wantsListed, refusal)) return true;
    }
    return false;
}

}  // namespace

bool OpenWithDecoders(IComponentEnum& decoders, const SOpenRequest& request, CComPtr<IStatus>& refusal) {
    if (request.m_nPass != kBothPasses) return RunPass(decoders, request, request.m_nPass, refusal);
    return RunPass(decoders, request, 0, refusal) || RunPass(decoders, request, 1, refusal);
}

SFetchedSource FetchRemote(IComponentEnum& registry, const char* url, EURLType type, char* localPath,
                           CPassedStatus& status) {
    const int count = registry.GetCount();
    for (int i = 0; i < count; ++i) {
        auto component = ComponentAt(registry, i);
        if (!component || component->GetType() != ACT_URL_HANDLER) continue;
        auto handler = CComPtr<IURLSourceHandler>::Query(component.Get(), IID_IURLSourceHandler);
        if (!handler || (handler->GetProtocols() & static_cast<unsigned int>(type)) == 0) continue;

        const bool fetched = handler->Fetch(url, localPath, 0, status.Get());
        status.Update();
        if (fetched) return {std::move(component), std::move(handler)};
    }
    return {};
}

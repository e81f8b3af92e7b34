// Fetching a remote source and choosing the decoder that opens a local file.
#pragma once

#include "com/AudioComponent.h"
#include "com/ComPtr.h"
#include "com/ComponentEnum.h"
#include "stream/PassedStatus.h"
#include "stream/URLSourceHandler.h"
#include "stream/WavFormat.h"

// What a host asks of the decoders; pointers are borrowed for the call.
struct SOpenRequest {
    const char* m_pPath;
    IUnknown** m_ppStream;
    int m_nPass;  // 0: decoders that list the extension, -1: those, then the others, any other: the others
    EAuxFlags m_eRequired;
    EAuxFlags m_eExcluded;
};

// Who fetched a remote source and keeps the file; both empty when nobody did.
struct SFetchedSource {
    CComPtr<IAudioComponent> m_pComponent;
    CComPtr<IURLSourceHandler> m_pHandler;
};

// Tries the decoders in the order of `decoders` until one opens the file. On failure `refusal` holds the last status
// of a decoder that lists the file's extension, if any. [any thread]
bool OpenWithDecoders(IComponentEnum& decoders, const SOpenRequest& request, CComPtr<IStatus>& refusal);

// Asks the URL handlers in the order of `registry` until one has made `url` a local file in `localPath`, a buffer of
// kLocalPathCapacity bytes. [any thread]
SFetchedSource FetchRemote(IComponentEnum& registry, const char* url, EURLType type, char* localPath,
                           CPassedStatus& status);

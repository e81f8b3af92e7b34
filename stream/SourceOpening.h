// Fetching a remote source and choosing the decoder that opens a local file.
#pragma once

#include "com/ComPtr.h"
#include "com/ComponentEnum.h"
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

// Tries the decoders in the order of `decoders` until one opens the file. On failure `refusal` holds the last status
// of a decoder that lists the file's extension, if any. [any thread]
bool OpenWithDecoders(IComponentEnum& decoders, const SOpenRequest& request, CComPtr<IStatus>& refusal);

// Asks the URL handlers in the order of `registry` until one has made `url` a local file in `localPath`, a buffer of
// kLocalPathCapacity bytes. Returns that handler, which keeps the file, or an empty pointer. What the handlers reported
// goes into `report`, which is null when nobody asked. [any thread]
CComPtr<IURLSourceHandler> FetchRemote(IComponentEnum& registry, const char* url, EURLType type, char* localPath,
                                       CComPtr<IStatus>* report);

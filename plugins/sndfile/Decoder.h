// The decoder component.
#pragma once

#include <vector>

#include "plugins/sndfile/CodecComponent.h"
#include "stream/FileOpener.h"

// Opens what the installed libsndfile reads. [any thread]
class CDecoder final : public CCodecComponent<IAudioFileOpener, IExtensionList> {
public:
    CDecoder();

    int QueryInterface(unsigned long identity, void** face) override;

    const char* GetName() override { return "libsndfile Decoder"; }
    EAudioComponentType GetType() override { return ACT_DECODER; }

    // The manager has matched the sets against GetAuxFlags: they change nothing here.
    bool Open(const char* path, IUnknown** stream, EAuxFlags required, EAuxFlags excluded, IStatus** status) override;
    EAuxFlags GetAuxFlags() override { return AUX_CONVERT; }
    unsigned int GetOpenerState() override { return kOpenerEnabled; }

    int GetCount() override { return static_cast<int>(m_vExtensions.size()); }

    // Null when there is no extension `n`.
    const char* GetAt(int n) override;

private:
    const char* AboutFormat() const override;

    std::vector<const char*> m_vExtensions;
};

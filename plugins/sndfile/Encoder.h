// The encoder component.
#pragma once

#include "plugins/sndfile/CodecComponent.h"
#include "stream/AudioTargetOpener.h"
#include "stream/FileOpener.h"

// Writes WAV and FLAC files. [any thread]
class CEncoder final : public CCodecComponent<IExtensionList, IAudioTargetOpener> {
public:
    int QueryInterface(unsigned long identity, void** face) override;

    const char* GetName() override { return "libsndfile Encoder"; }
    EAudioComponentType GetType() override { return ACT_ENCODER; }

    int GetCount() override;

    // Null when there is no extension `n`.
    const char* GetAt(int n) override;

    bool OpenTarget(const char* path, const char* extension, IAudioTarget** target, IStatus** status) override;

private:
    const char* AboutFormat() const override;
};

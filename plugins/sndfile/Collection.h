// The plug-in's primary component: the decoder and the encoder.
#pragma once

#include "com/ComponentEnum.h"
#include "plugins/sndfile/Component.h"
#include "plugins/sndfile/Decoder.h"
#include "plugins/sndfile/Encoder.h"

// [any thread]
class CCollection final : public CComponent<IComponentEnum> {
public:
    int QueryInterface(unsigned long identity, void** face) override;

    const char* GetName() override { return "libsndfile"; }
    EAudioComponentType GetType() override { return ACT_COLLECTION; }

    int GetCount() override { return 2; }

    // 0 the decoder, 1 the encoder.
    bool GetComponent(int index, IAudioComponent** component) override;

private:
    CDecoder m_decoder;
    CEncoder m_encoder;
};

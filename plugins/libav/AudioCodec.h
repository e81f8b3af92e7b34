// The decoder of a sound track.
#pragma once

#include "plugins/libav/LibavObjects.h"

// libavcodec's context, on the caller's thread alone. It checks what its format lets it check. [stream-thread]
class CAudioCodec {
public:
    // Throws CDamage.
    explicit CAudioCodec(const AVStream& stream);

    const AVCodecContext& Context() const { return *m_context; }

    // Takes a packet, null for the end, when Receive has given everything before. Throws CDamage.
    void Send(const AVPacket* packet);

    // The next samples; false when there are none until more is sent. Throws CDamage.
    bool Receive(AVFrame& frame);

    // For packets from another place.
    void Flush();

private:
    CCodecContextPointer m_context;
};

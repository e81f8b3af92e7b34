// The decoded frames of a sound track, one after another.
#pragma once

#include <cstdint>
#include <memory>

#include "plugins/libav/AudioCodec.h"
#include "plugins/libav/Container.h"

// Blocks of samples as the codec delivers them; what the file calls encoder delay or padding is left out.
// [stream-thread]
class CTrack {
public:
    explicit CTrack(const std::shared_ptr<const CInputFile>& file);

    const CContainer& Container() const { return m_container; }
    const AVCodecContext& Codec() const { return m_codec.Context(); }

    // Steps to the next block; false at the end. Throws CDamage; the next call goes on behind it.
    bool Next();

    // The current block.
    const AVFrame& Block() const { return *m_block; }

    // The timestamp of the first packet; AV_NOPTS_VALUE before there was one.
    std::int64_t FirstTimestamp() const { return m_nFirstTimestamp; }

    // To a place from which decoding gives what is at `timestamp`. False leaves the place unknown.
    bool Seek(std::int64_t timestamp);

private:
    bool Decode();

    CContainer m_container;
    CAudioCodec m_codec;
    CPacketPointer m_packet;
    CFramePointer m_block;
    std::int64_t m_nFirstTimestamp = AV_NOPTS_VALUE;
    bool m_bEnded = false;
};

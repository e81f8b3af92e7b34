// The decoded frames of a sound track, one after another.
#include "plugins/libav/Track.h"

#include "plugins/libav/Damage.h"

CTrack::CTrack(const std::shared_ptr<const CInputFile>& file)
    : m_container(file),
      m_codec(m_container.Stream()),
      m_packet(Allocated(av_packet_alloc())),
      m_block(Allocated(av_frame_alloc())) {}

// A recording that may begin in the middle of everything may end there too.
bool CTrack::Next() {
    try {
        return Decode();
    } catch (const CDamage&) {
        if (!m_container.Format().IsBroadcast() || Decode()) throw;
        return false;
    }
}

bool CTrack::Decode() {
    while (!m_codec.Receive(*m_block)) {
        if (m_bEnded) return false;
        m_bEnded = !m_container.ReadPacket(*m_packet);
        if (!m_bEnded && m_nFirstTimestamp == AV_NOPTS_VALUE) m_nFirstTimestamp = m_packet->pts;
        m_codec.Send(m_bEnded ? nullptr : m_packet.get());
    }
    if (m_block->decode_error_flags != 0) throw CDamage("lost samples are hidden");
    return true;
}

bool CTrack::Seek(std::int64_t timestamp) {
    m_codec.Flush();
    m_bEnded = false;
    return m_container.Seek(timestamp);
}

// How many sample frames packets hold, without decoding them.
#include "plugins/libav/PacketFrames.h"

#include "plugins/libav/Damage.h"
#include "plugins/libav/Silence.h"

CPacketFrames::CPacketFrames(const AVStream& stream)
    : m_context(Allocated(avcodec_alloc_context3(nullptr))), m_parser(av_parser_init(stream.codecpar->codec_id)) {
    m_context->log_level_offset = kSilentLevels;
    const int result = avcodec_parameters_to_context(m_context.get(), stream.codecpar);
    if (result < 0) ThrowDamage(result);
    if (m_parser != nullptr) m_parser->flags |= PARSER_FLAG_COMPLETE_FRAMES;
}

// A header of Vorbis, of which the parser would complain to the standard error, is there where streams are chained.
std::int64_t CPacketFrames::ByHead(const AVPacket& packet) {
    if (m_parser == nullptr || packet.size < 1) return 0;
    if (m_context->codec_id == AV_CODEC_ID_VORBIS && (packet.data[0] & 1) != 0) return 0;
    std::uint8_t* data = nullptr;
    int size = 0;
    m_parser->duration = 0;
    av_parser_parse2(m_parser.get(), m_context.get(), &data, &size, packet.data, packet.size, packet.pts, packet.dts,
                     packet.pos);
    return m_parser->duration;
}

std::int64_t CPacketFrames::BySize(const AVPacket& packet) const {
    return av_get_audio_frame_duration(m_context.get(), packet.size);
}

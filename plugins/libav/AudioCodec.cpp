// The decoder of a sound track.
#include "plugins/libav/AudioCodec.h"

#include "plugins/libav/Damage.h"
#include "plugins/libav/Silence.h"

CAudioCodec::CAudioCodec(const AVStream& stream) {
    const AVCodec* const decoder = avcodec_find_decoder(stream.codecpar->codec_id);
    m_context.reset(Allocated(avcodec_alloc_context3(decoder)));
    m_context->log_level_offset = kSilentLevels;
    int result = avcodec_parameters_to_context(m_context.get(), stream.codecpar);
    if (result < 0) ThrowDamage(result);
    m_context->pkt_timebase = stream.time_base;
    m_context->thread_count = 1;
    m_context->err_recognition = AV_EF_CRCCHECK | AV_EF_EXPLODE;
    result = avcodec_open2(m_context.get(), decoder, nullptr);
    if (result < 0) ThrowDamage(result);
}

void CAudioCodec::Send(const AVPacket* packet) {
    const int result = avcodec_send_packet(m_context.get(), packet);
    if (result < 0) ThrowDamage(result);
}

bool CAudioCodec::Receive(AVFrame& frame) {
    const int result = avcodec_receive_frame(m_context.get(), &frame);
    if (result >= 0) return true;
    if (result == AVERROR(EAGAIN) || result == AVERROR_EOF) return false;
    ThrowDamage(result);
}

void CAudioCodec::Flush() { avcodec_flush_buffers(m_context.get()); }

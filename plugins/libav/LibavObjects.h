// The headers of libavformat, libavcodec and libavutil, and owners of their objects. [stream-thread]
#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

#include <memory>
#include <new>

struct SPacketFree {
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
};
using CPacketPointer = std::unique_ptr<AVPacket, SPacketFree>;

struct SFrameFree {
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
};
using CFramePointer = std::unique_ptr<AVFrame, SFrameFree>;

struct SCodecContextFree {
    void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
};
using CCodecContextPointer = std::unique_ptr<AVCodecContext, SCodecContextFree>;

struct SFormatContextFree {
    void operator()(AVFormatContext* context) const { avformat_close_input(&context); }
};
using CFormatContextPointer = std::unique_ptr<AVFormatContext, SFormatContextFree>;

// What the libraries return for an object without memory is null.
template <typename T>
T* Allocated(T* object) {
    if (object == nullptr) throw std::bad_alloc();
    return object;
}

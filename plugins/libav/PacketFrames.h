// How many sample frames packets hold, without decoding them.
#pragma once

#include <cstdint>

#include "plugins/libav/LibavObjects.h"

struct SParserFree {
    void operator()(AVCodecParserContext* parser) const { av_parser_close(parser); }
};

// Looks at each packet of one stream in turn. [stream-thread]
class CPacketFrames {
public:
    explicit CPacketFrames(const AVStream& stream);

    // By the head of the packet; 0 where it does not tell.
    std::int64_t ByHead(const AVPacket& packet);

    // By the packet's size, which tells it for samples of a constant width; 0 for others.
    std::int64_t BySize(const AVPacket& packet) const;

private:
    CCodecContextPointer m_context;
    std::unique_ptr<AVCodecParserContext, SParserFree> m_parser;  // null for a codec without one
};

// The part of a source that is asked for.
#pragma once

#include <cstdint>

#include "host/SourceStream.h"
#include "host/convert/ConvertOptions.h"

// Drives one source from its start. Throws CFailure, naming the source. One thread. [stream-thread]
class CExcerpt {
public:
    // `source` delivers samples of `delivered` and lives longer; `given` is its name for messages.
    CExcerpt(CSourceStream& source, const SWavFormat& delivered, const SExcerptOptions& options, std::string given);

    // Sample frames of the source between both ends; 0 when unknown.
    std::uint64_t GetAnnouncedFrames() const;

    void Start();

    // Fills the buffer with the next bytes and returns their count; 0 is the end.
    int Read(unsigned char* buffer, int size);

private:
    static constexpr std::uint64_t kAll = ~static_cast<std::uint64_t>(0);

    std::uint64_t Delivered(std::uint64_t sourceFrames) const;
    void RequireOrder() const;
    int Limit(int bytes);

    CSourceStream& m_source;
    SWavFormat m_delivered;
    std::string m_strGiven;
    std::int32_t m_nSourceRate;
    std::uint64_t m_nFirst = 0;   // in frames of the source
    std::uint64_t m_nEnd = kAll;  // likewise
    std::uint64_t m_nFramesLeft;  // of what is delivered
    std::uint64_t m_nBytesToDrop = 0;
    bool m_bBeforeStart = false;  // of a source that does not seek
};

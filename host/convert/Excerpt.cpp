// The part of a source that is asked for.
#include "host/convert/Excerpt.h"

#include <algorithm>
#include <utility>

#include "host/Failure.h"
#include "host/FormatText.h"
#include "host/RescaledFrames.h"
#include "host/StopSignal.h"

CExcerpt::CExcerpt(CSourceStream& source, const SWavFormat& delivered, const SExcerptOptions& options,
                   std::string given)
    : m_source(source),
      m_delivered(delivered),
      m_strGiven(std::move(given)),
      m_nSourceRate(source.GetRealFormat().m_format.nSampleRate),
      m_nFramesLeft(kAll) {
    if (options.m_start) m_nFirst = FramesAt(*options.m_start, m_nSourceRate);
    if (options.m_end) m_nEnd = FramesAt(*options.m_end, m_nSourceRate);
    RequireOrder();
    if (m_nEnd != kAll) m_nFramesLeft = Delivered(m_nEnd) - Delivered(m_nFirst);
}

void CExcerpt::RequireOrder() const {
    if (m_nEnd <= m_nFirst) {
        throw CFailure(m_strGiven, "--end, frame " + std::to_string(m_nEnd) + ", is not after --start, frame " +
                                       std::to_string(m_nFirst));
    }
    const std::uint64_t length = m_source.GetAnnouncedFrames();
    if (m_nFirst > 0 && length != 0 && m_nFirst >= length) {
        throw CFailure(m_strGiven, "--start, " + LengthText(m_nFirst, m_nSourceRate) + ", is behind its end (" +
                                       LengthText(length, m_nSourceRate) + ")");
    }
}

std::uint64_t CExcerpt::Delivered(std::uint64_t sourceFrames) const {
    return RescaledFrames(sourceFrames, m_nSourceRate, m_delivered.nSampleRate);
}

std::uint64_t CExcerpt::GetAnnouncedFrames() const {
    // A decoder may correct its length while it reads.
    const std::uint64_t end = std::min(m_source.GetAnnouncedFrames(), m_nEnd);
    return end > m_nFirst ? end - m_nFirst : 0;
}

void CExcerpt::Start() {
    m_source.Start();
    if (m_nFirst == 0 || m_source.SeekTo(m_nFirst)) return;
    m_bBeforeStart = true;
    m_nBytesToDrop = Delivered(m_nFirst) * static_cast<std::uint64_t>(BlockSizeOf(m_delivered));
}

int CExcerpt::Read(unsigned char* buffer, int size) {
    for (;;) {
        if (m_nFramesLeft == 0) return 0;
        const int read = m_source.Read(buffer, size);
        if (read == 0 && m_bBeforeStart) throw CFailure(m_strGiven, "--start is behind its end");
        const auto dropped =
            static_cast<int>(std::min<std::uint64_t>(m_nBytesToDrop, static_cast<std::uint64_t>(read)));
        m_nBytesToDrop -= static_cast<std::uint64_t>(dropped);
        if (read > 0 && dropped == read) {
            RequireNoStopSignal(m_strGiven);
            continue;
        }
        m_bBeforeStart = false;
        std::copy(buffer + dropped, buffer + read, buffer);
        return Limit(read - dropped);
    }
}

int CExcerpt::Limit(int bytes) {
    if (m_nFramesLeft == kAll) return bytes;
    const auto frameBytes = static_cast<std::uint64_t>(BlockSizeOf(m_delivered));
    const std::uint64_t frames = std::min(static_cast<std::uint64_t>(bytes) / frameBytes, m_nFramesLeft);
    m_nFramesLeft -= frames;
    return static_cast<int>(frames * frameBytes);
}

// Follows the timestamps of packets or blocks in turn.
#include "plugins/libav/StampLine.h"

#include <algorithm>

namespace {

// Timestamps of one recording that are wrong, by packets that overlap or by a clock that was set, go back by less.
constexpr double kLeastBack = 1;

// Timestamps that show how far they are apart.
constexpr int kFirstStamps = 16;

// Longer than any packet is between two timestamps, in times of the longest at the beginning.
constexpr std::int64_t kLongestStep = 2;

}  // namespace

bool CStampLine::Accepts(std::int64_t time, std::int64_t frames) {
    const SStamp stamp{time, m_nFrames};
    m_nFrames += frames;
    m_nMostFrames = std::max(m_nMostFrames, frames);
    if (!m_timeline.IsPossible(time)) return true;
    if (!m_nFirst) m_nFirst = time;
    ++m_nStamps;
    if (IsInLine(stamp)) {
        m_nOutOfLine = 0;
        m_bGoesBack = false;
        m_nLatest = std::max(m_nLatest, time);
        m_last = stamp;
    } else {
        ++m_nOutOfLine;
        m_bGoesBack = m_bGoesBack || time <= *m_nFirst || m_timeline.SecondsBetween(time, m_nLatest) > kLeastBack;
    }
    return m_nOutOfLine < 2;
}

void CStampLine::BeginAnew() {
    m_nStamps = m_nOutOfLine = 0;
    m_nLatest = INT64_MIN;
    m_nLongest = 0;
    m_bGoesBack = false;
}

// The first block may lack the encoder's delay.
bool CStampLine::IsInLine(const SStamp& stamp) {
    if (m_nStamps <= 2) {
        m_base = stamp;
        return true;
    }
    if (!m_bCounted) return IsNear(stamp);
    if (m_nStamps == 3) m_step = {stamp.m_nTime - m_base.m_nTime, stamp.m_nFrame - m_base.m_nFrame};
    const double doubt = m_bVague ? static_cast<double>(m_nMostFrames) : 0;
    return m_timeline.Continues(m_base, stamp, doubt) || IsWholeSteps(stamp);
}

// Roundings may add up where every packet takes the same time.
bool CStampLine::IsWholeSteps(const SStamp& stamp) const {
    if (m_step.m_nTime <= 0 || !m_timeline.Continues({0, 0}, m_step)) return false;
    const std::int64_t time = stamp.m_nTime - m_base.m_nTime;
    const std::int64_t frames = stamp.m_nFrame - m_base.m_nFrame;
    return time % m_step.m_nTime == 0 && time / m_step.m_nTime * m_step.m_nFrame == frames;
}

// From the last one in line: behind a break, those that follow each other must not hide it.
bool CStampLine::IsNear(const SStamp& stamp) {
    const std::int64_t step = stamp.m_nTime - m_last.m_nTime;
    if (m_nStamps <= kFirstStamps && m_nOutOfLine == 0) m_nLongest = std::max(m_nLongest, step);
    return step >= 0 && step <= kLongestStep * m_nLongest;
}

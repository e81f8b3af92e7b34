// Follows the timestamps of packets or blocks in turn.
#pragma once

#include <cstdint>
#include <optional>
#include <utility>

#include "plugins/libav/Timeline.h"

// A timestamp is in line when it is as far from those before as the frames between tell. One that is not is forgiven:
// libavformat may ascribe a timestamp to the packet before. [stream-thread]
class CStampLine {
public:
    // `counted`: the frames of the packets are known; where they are not, the first timestamps show how far they are
    // apart. `vague`: the timestamps of the packets between may be wrong by a packet.
    CStampLine(CTimeline timeline, bool counted, bool vague)
        : m_timeline(std::move(timeline)), m_bCounted(counted), m_bVague(vague) {}

    // The next packet; false where the timestamps break off, two of them in turn. A time that no sound has, such as
    // AV_NOPTS_VALUE, tells nothing.
    bool Accepts(std::int64_t time, std::int64_t frames);

    // Whether what is not accepted lies before what was, by more than a second or at the beginning.
    bool GoesBack() const { return m_bGoesBack; }

    // Behind a break, as if there was nothing before but the beginning.
    void BeginAnew();

    // Whether a break would show.
    bool HasBegun() const { return m_nStamps > 1; }

private:
    bool IsInLine(const SStamp& stamp);
    bool IsWholeSteps(const SStamp& stamp) const;
    bool IsNear(const SStamp& stamp);

    CTimeline m_timeline;
    bool m_bCounted;
    bool m_bVague;
    std::int64_t m_nFrames = 0;
    std::int64_t m_nMostFrames = 0;  // of a packet
    int m_nStamps = 0;
    int m_nOutOfLine = 0;  // stamps in turn
    bool m_bGoesBack = false;
    std::optional<std::int64_t> m_nFirst;  // of all stamps
    std::int64_t m_nLatest = INT64_MIN;    // of the stamps in line
    SStamp m_base{};
    SStamp m_step{};
    SStamp m_last{};  // in line
    std::int64_t m_nLongest = 0;
};

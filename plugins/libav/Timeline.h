// From timestamps to positions in the sound.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "plugins/libav/LibavObjects.h"

// A block's timestamp and its first frame, counted from the beginning of the sound or from somewhere else.
struct SStamp {
    std::int64_t m_nTime;
    std::int64_t m_nFrame;
};

// Learns from the blocks at the beginning, whose positions are known by counting, how a file's timestamps stand to
// positions. Many containers round them to units that are coarser than a sample, a few let the roundings add up.
// [stream-thread]
class CTimeline {
public:
    CTimeline(AVRational timeBase, int sampleRate);

    // Whether a time is one that a sound can have: not AV_NOPTS_VALUE, and no difference of two such times overflows.
    bool IsPossible(std::int64_t time) const;

    // Between two possible times.
    double SecondsBetween(std::int64_t earlier, std::int64_t later) const {
        return static_cast<double>(later - earlier) * m_fSecondsPerUnit;
    }

    // Each block in turn; all times are possible ones.
    void Learn(const SStamp& stamp);

    // Every block of the sound begins at a multiple of `grid` frames behind another; 0 when that is not known.
    void LimitGrid(std::int64_t grid) { m_nGrid = grid; }

    // Whether the timestamps of two blocks differ by what lies between the blocks; `doubt` is by how many frames they
    // may be wrong beside their roundings.
    bool Continues(const SStamp& earlier, const SStamp& later, double doubt = 0) const;

    // Whether more blocks would tell no more.
    bool KnowsEnough() const { return m_vKnown.size() >= (m_bExact ? 1 : kMostKnown); }

    // Whether it has learnt anything.
    bool IsEmpty() const { return m_vKnown.empty(); }

    // The timestamp of a position, or one shortly before.
    std::int64_t TimeAt(std::int64_t position) const;

    // About the position of a timestamp.
    std::int64_t PositionNear(std::int64_t time) const;

    // The position from which `run`, blocks in turn from anywhere in the file, counts its frames. None when the
    // timestamps do not tell it to the frame.
    std::optional<std::int64_t> Locate(const std::vector<SStamp>& run) const;

private:
    static constexpr std::size_t kMostKnown = 32;

    std::optional<std::int64_t> LocateBySteps(const std::vector<SStamp>& run) const;
    std::optional<std::int64_t> LocateByTime(const std::vector<SStamp>& run) const;
    double FramesOf(std::int64_t time) const { return static_cast<double>(time) * m_fFramesPerUnit; }

    double m_fSecondsPerUnit;
    double m_fFramesPerUnit;
    bool m_bExact;  // every position has a timestamp of its own
    std::int64_t m_nGrid = 0;
    std::vector<SStamp> m_vKnown;
};

// From timestamps to positions in the sound.
#include "plugins/libav/Timeline.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

// Behind a jump a demuxer may begin with a wrong timestamp.
constexpr std::size_t kShortestRun = 3;

bool IsExact(AVRational timeBase, int sampleRate) {
    return timeBase.den % (static_cast<std::int64_t>(sampleRate) * timeBase.num) == 0;
}

// Frames that lie between the time of a block and the block, for a number of blocks: an interval, since the timestamps
// are rounded.
struct SLag {
    double m_fLeast = INFINITY;
    double m_fMost = -INFINITY;

    void Include(double lag) {
        m_fLeast = std::min(m_fLeast, lag);
        m_fMost = std::max(m_fMost, lag);
    }
    double Middle() const { return (m_fLeast + m_fMost) / 2; }

    // How far the true lag may be from the middle when timestamps are rounded to units of `unit` frames: the more of
    // the unit the roundings fill, the less. Roundings of roundings fill more than a unit.
    double Doubt(double unit) const {
        const double spread = m_fMost - m_fLeast;
        return (spread <= unit + 1 ? std::max(unit - spread, 0.0) : spread) / 2;
    }
};

}  // namespace

CTimeline::CTimeline(AVRational timeBase, int sampleRate)
    : m_fSecondsPerUnit(av_q2d(timeBase)),
      m_fFramesPerUnit(m_fSecondsPerUnit * sampleRate),
      m_bExact(IsExact(timeBase, sampleRate)) {}

bool CTimeline::IsPossible(std::int64_t time) const {
    constexpr std::int64_t kMostUnits = std::int64_t{1} << 60;
    constexpr double kMostFrames = 1e14;
    return time > -kMostUnits && time < kMostUnits && std::abs(FramesOf(time)) < kMostFrames;
}

void CTimeline::Learn(const SStamp& stamp) {
    if (KnowsEnough()) return;
    if (!m_vKnown.empty() && !Continues(m_vKnown.back(), stamp)) m_vKnown.clear();
    m_vKnown.push_back(stamp);
}

bool CTimeline::Continues(const SStamp& earlier, const SStamp& later, double doubt) const {
    const double lag =
        FramesOf(later.m_nTime - earlier.m_nTime) - static_cast<double>(later.m_nFrame - earlier.m_nFrame);
    return std::abs(lag) <= 2 * m_fFramesPerUnit + 2 + doubt;
}

std::int64_t CTimeline::TimeAt(std::int64_t position) const {
    const SStamp& known = m_vKnown.back();
    const double offset = static_cast<double>(position - known.m_nFrame) / m_fFramesPerUnit;
    return known.m_nTime + static_cast<std::int64_t>(std::floor(offset));
}

std::int64_t CTimeline::PositionNear(std::int64_t time) const {
    return m_vKnown.back().m_nFrame + std::llround(FramesOf(time - m_vKnown.back().m_nTime));
}

std::optional<std::int64_t> CTimeline::Locate(const std::vector<SStamp>& run) const {
    if (m_vKnown.empty() || run.size() < (m_bExact ? 1 : kShortestRun)) return {};
    const auto bySteps = LocateBySteps(run);
    return bySteps ? bySteps : LocateByTime(run);
}

// Where every block takes the same time and the same frames, timestamps count the blocks, whatever they are worth.
std::optional<std::int64_t> CTimeline::LocateBySteps(const std::vector<SStamp>& run) const {
    // The first block may lack the encoder's delay.
    if (m_vKnown.size() < 4) return {};
    const SStamp& base = m_vKnown[1];
    const SStamp step{m_vKnown[2].m_nTime - base.m_nTime, m_vKnown[2].m_nFrame - base.m_nFrame};
    if (step.m_nTime <= 0) return {};
    const auto frameAt = [&](std::int64_t time) {
        return base.m_nFrame + (time - base.m_nTime) / step.m_nTime * step.m_nFrame;
    };
    const auto fits = [&](const SStamp& stamp, std::int64_t start) {
        return (stamp.m_nTime - base.m_nTime) % step.m_nTime == 0 && frameAt(stamp.m_nTime) == start + stamp.m_nFrame;
    };
    const std::int64_t start = frameAt(run.front().m_nTime) - run.front().m_nFrame;
    const bool steady =
        std::all_of(m_vKnown.begin() + 1, m_vKnown.end(), [&](const SStamp& stamp) { return fits(stamp, 0); }) &&
        std::all_of(run.begin(), run.end(), [&](const SStamp& stamp) { return fits(stamp, start); });
    return steady ? std::optional<std::int64_t>(start) : std::nullopt;
}

// The middle of what the roundings allow, moved to the nearest position where blocks begin.
std::optional<std::int64_t> CTimeline::LocateByTime(const std::vector<SStamp>& run) const {
    const std::size_t first = m_bExact || m_vKnown.size() < 2 ? 0 : 1;
    SLag known;
    std::int64_t grid = m_nGrid;
    for (std::size_t i = first; i < m_vKnown.size(); ++i) {
        known.Include(FramesOf(m_vKnown[i].m_nTime) - static_cast<double>(m_vKnown[i].m_nFrame));
        grid = std::gcd(grid, m_vKnown[i].m_nFrame - m_vKnown[first].m_nFrame);
    }
    if (m_bExact || grid == 0) grid = 1;
    SLag here;
    for (const SStamp& stamp : run) here.Include(FramesOf(stamp.m_nTime) - static_cast<double>(stamp.m_nFrame));

    const double unit = m_bExact ? 0.0 : m_fFramesPerUnit;
    const double doubt = known.Doubt(unit) + here.Doubt(unit);
    if (doubt >= static_cast<double>(grid) / 2) return {};
    const double estimate = here.Middle() - known.Middle();
    const double steps =
        std::round((estimate - static_cast<double>(m_vKnown[first].m_nFrame)) / static_cast<double>(grid));
    const std::int64_t position = m_vKnown[first].m_nFrame + static_cast<std::int64_t>(steps) * grid;
    // Blocks of other lengths than the first ones may have led away from where blocks begin by those.
    if (std::abs(static_cast<double>(position) - estimate) > doubt + 2) return {};
    return position;
}

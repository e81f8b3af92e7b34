// Which channels become which, and the down-mix.
#include "plugins/soxr/ChannelMap.h"

#include <algorithm>
#include <numeric>

namespace {

constexpr double kThreeDecibelsDown = 0.70710678118654752;
constexpr double kSixDecibelsDown = 0.5;

// What one speaker's channel gives to the two of a stereo down-mix.
struct SSpeaker {
    double m_nLeft;
    double m_nRight;
};

constexpr SSpeaker kLeft{1, 0};
constexpr SSpeaker kRight{0, 1};
constexpr SSpeaker kCentre{kThreeDecibelsDown, kThreeDecibelsDown};
constexpr SSpeaker kLowFrequency{0, 0};
constexpr SSpeaker kLeftSurround{kThreeDecibelsDown, 0};
constexpr SSpeaker kRightSurround{0, kThreeDecibelsDown};
constexpr SSpeaker kSurround{kSixDecibelsDown, kSixDecibelsDown};

std::vector<SSpeaker> SpeakersOf(int channels) {
    switch (channels) {
        case 2:
            return {kLeft, kRight};
        case 3:
            return {kLeft, kRight, kCentre};
        case 4:
            return {kLeft, kRight, kLeftSurround, kRightSurround};
        case 5:
            return {kLeft, kRight, kCentre, kLeftSurround, kRightSurround};
        case 6:
            return {kLeft, kRight, kCentre, kLowFrequency, kLeftSurround, kRightSurround};
        case 7:
            return {kLeft, kRight, kCentre, kLowFrequency, kSurround, kLeftSurround, kRightSurround};
        default:
            return {kLeft,         kRight,         kCentre,       kLowFrequency,
                    kLeftSurround, kRightSurround, kLeftSurround, kRightSurround};
    }
}

}  // namespace

bool AreMappedChannels(int from, int to) {
    if (from < 1 || from > kMostChannels) return false;
    return to == from || to == 1 || to == 2;
}

std::vector<CMixGains> DownMixGains(int from, int to) {
    CMixGains left{};
    CMixGains right{};
    CMixGains mean{};
    std::size_t channel = 0;
    for (const SSpeaker& speaker : SpeakersOf(from)) {
        left[channel] = speaker.m_nLeft;
        right[channel] = speaker.m_nRight;
        mean[channel] = (speaker.m_nLeft + speaker.m_nRight) / 2;
        ++channel;
    }
    // The speakers are as many on the left as on the right, so that all three have one sum.
    const double sum = std::accumulate(left.begin(), left.end(), 0.0);
    std::vector<CMixGains> gains = to == 1 ? std::vector<CMixGains>{mean} : std::vector<CMixGains>{left, right};
    for (CMixGains& output : gains) {
        std::transform(output.begin(), output.end(), output.begin(), [sum](double gain) { return gain / sum; });
    }
    return gains;
}

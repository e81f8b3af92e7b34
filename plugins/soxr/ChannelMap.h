// Which channels become which, and the down-mix. [any thread]
#pragma once

#include <array>
#include <cstddef>
#include <vector>

constexpr int kMostChannels = 8;

// Up to 8 channels are kept as they are, more than two can be mixed down to two, more than one to one, and one doubles.
bool AreMappedChannels(int from, int to);

// The gain of each source channel in one channel of the target.
using CMixGains = std::array<double, kMostChannels>;

// One set of gains for each of the `to` channels, 1 or 2, out of `from` channels, which are more.
//
// Channels stand in the order of WAVEFORMATEXTENSIBLE (Microsoft, "Multiple channel audio data and WAVE files") and are
// the speakers that RFC 9639, 9.1.3 gives to each number of channels: 3 are L R C, 4 are L R BL BR, 5 are L R C BL BR,
// 6 are L R C LFE BL BR, 7 are L R C LFE BC SL SR, 8 are L R C LFE BL BR SL SR.
//
// The gains are those of ITU-R BS.775-3, annex 4: centre and surrounds at -3 dB, a single surround at -6 dB, no LFE;
// mono is the mean of left and right. All of them are then scaled alike so that the gains of one output sum to at most
// 1: a down-mix never clips, and stereo to mono is the plain mean.
std::vector<CMixGains> DownMixGains(int from, int to);

// Adds up `frames` samples of the channels in `inputs`, each times its gain.
template <typename TSample>
void MixChannels(const CMixGains& gains, const TSample* const* inputs, std::size_t channels, std::size_t frames,
                 TSample* mixed) {
    for (std::size_t i = 0; i < frames; ++i) mixed[i] = 0;
    for (std::size_t channel = 0; channel < channels; ++channel) {
        const auto gain = static_cast<TSample>(gains[channel]);
        const TSample* const input = inputs[channel];
        if (gain == 0) continue;
        for (std::size_t i = 0; i < frames; ++i) mixed[i] += gain * input[i];
    }
}

// The order of channels in a frame: that of the codec and that of RIFF WAVE.
#pragma once

#include <sndfile.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

// An order that is RIFF WAVE's (that of the bits of dwChannelMask), or not known, moves nothing. [stream-thread]
class CChannelOrder {
public:
    CChannelOrder() = default;

    // By what the open file tells of its channels.
    static CChannelOrder OfFile(SNDFILE* file, int channels);

    // Vorbis I, 4.3.9; Opus takes it over (RFC 7845, 5.1.1.2).
    static CChannelOrder OfVorbis(int channels);

    template <typename T>
    void ToWave(T* samples, std::size_t frames) const {
        ForEachFrame(samples, frames, [this](const T* from, T* to) {
            for (std::size_t n = 0; n < m_vPlaces.size(); ++n) to[n] = from[m_vPlaces[n]];
        });
    }

    template <typename T>
    void FromWave(T* samples, std::size_t frames) const {
        ForEachFrame(samples, frames, [this](const T* from, T* to) {
            for (std::size_t n = 0; n < m_vPlaces.size(); ++n) to[m_vPlaces[n]] = from[n];
        });
    }

    bool MovesNothing() const { return m_vPlaces.empty(); }

private:
    static constexpr std::size_t kMostChannels = 32;

    // `speakers` are values of SF_CHANNEL_MAP_*, in the codec's order.
    explicit CChannelOrder(const std::vector<int>& speakers);

    template <typename T, typename TMove>
    void ForEachFrame(T* samples, std::size_t frames, TMove move) const {
        if (MovesNothing()) return;
        std::array<T, kMostChannels> frame;
        for (std::size_t i = 0; i < frames; ++i, samples += m_vPlaces.size()) {
            std::copy_n(samples, m_vPlaces.size(), frame.begin());
            move(frame.data(), samples);
        }
    }

    std::vector<std::size_t> m_vPlaces;  // in the codec's frame, by the place in RIFF WAVE's
};

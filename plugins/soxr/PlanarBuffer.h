// Samples channel by channel.
#pragma once

#include <cstddef>
#include <vector>

// As many samples for each channel, in one block per channel. One object belongs to one thread.
template <typename TSample>
class CPlanarBuffer {
public:
    CPlanarBuffer(std::size_t channels, std::size_t frames)
        : m_vSamples(channels * frames), m_nFrames(frames), m_vAddresses(channels) {}

    std::size_t Channels() const { return m_vAddresses.size(); }

    TSample* Channel(std::size_t channel) { return m_vSamples.data() + channel * m_nFrames; }

    // The address of sample `frame` of each channel, until the next call.
    TSample* const* From(std::size_t frame) {
        for (std::size_t channel = 0; channel < m_vAddresses.size(); ++channel) {
            m_vAddresses[channel] = Channel(channel) + frame;
        }
        return m_vAddresses.data();
    }

private:
    std::vector<TSample> m_vSamples;
    std::size_t m_nFrames;
    std::vector<TSample*> m_vAddresses;
};

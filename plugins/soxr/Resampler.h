// One libsoxr resampler.
#pragma once

#include <soxr.h>

#include <cstddef>
#include <memory>

#include "plugins/soxr/ConversionSettings.h"

// Samples by channel at one rate in, at another out, without delay. TSample is float or double. One object belongs to
// one thread. Operations throw std::runtime_error with soxr's own words when soxr fails.
template <typename TSample>
class CResampler {
public:
    CResampler(int fromRate, int toRate, int channels, EResamplingQuality quality);

    struct SProgress {
        std::size_t m_nTaken;
        std::size_t m_nMade;
    };

    // Takes at most `frames` frames from `input` and makes at most `room` frames of `output`, each with one address for
    // every channel. Everything has been taken and nothing more is ready once all input is taken and less than `room`
    // was made.
    SProgress Process(const TSample* const* input, std::size_t frames, TSample* const* output, std::size_t room);

    // The input is at its end: makes at most `room` frames of what is still inside; less only when nothing is left.
    std::size_t Drain(TSample* const* output, std::size_t room);

    // Forgets everything; the next input starts a new stream.
    void Restart();

private:
    struct SDelete {
        void operator()(soxr* resampler) const { soxr_delete(resampler); }
    };
    std::unique_ptr<soxr, SDelete> m_pResampler;
};

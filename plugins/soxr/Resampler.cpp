// One libsoxr resampler.
#include "plugins/soxr/Resampler.h"

#include <stdexcept>

namespace {

void Check(soxr_error_t error) {
    if (error != nullptr) throw std::runtime_error(error);
}

// Measured: libsoxr 0.1.3 does not return from every larger factor with SOXR_LQ and SOXR_VHQ.
constexpr int kLargestRateFactorOfAllRecipes = 1 << 18;

// Measured over all pairs of the usual rates: noise and images stay below the tone by 109 dB with SOXR_LQ, 127 dB with
// SOXR_HQ and 176 dB with SOXR_VHQ. SOXR_LQ rolls off from two thirds of the band on; SOXR_MQ takes as long as SOXR_HQ.
unsigned long RecipeOf(EResamplingQuality quality) {
    switch (quality) {
        case EResamplingQuality::Quick:
            return SOXR_LQ;
        case EResamplingQuality::High:
            return SOXR_HQ;
        case EResamplingQuality::VeryHigh:
            break;
    }
    return SOXR_VHQ;
}

soxr_t Create(int fromRate, int toRate, int channels, EResamplingQuality resampling) {
    if (toRate / fromRate > kLargestRateFactorOfAllRecipes) resampling = EResamplingQuality::High;
    const soxr_io_spec_t samples = soxr_io_spec(SOXR_INT32_I, SOXR_INT32_I);
    const soxr_quality_spec_t quality = soxr_quality_spec(RecipeOf(resampling), SOXR_ROLLOFF_NONE);
    const soxr_runtime_spec_t oneThread = soxr_runtime_spec(1);
    soxr_error_t error = nullptr;
    const soxr_t created =
        soxr_create(fromRate, toRate, static_cast<unsigned>(channels), &error, &samples, &quality, &oneThread);
    Check(error);
    return created;
}

}  // namespace

CResampler::CResampler(int fromRate, int toRate, int channels, EResamplingQuality quality)
    : m_pResampler(Create(fromRate, toRate, channels, quality)) {}

CResampler::SProgress CResampler::Process(const std::int32_t* input, std::size_t frames, std::int32_t* output,
                                          std::size_t room) {
    SProgress progress{0, 0};
    Check(soxr_process(m_pResampler.get(), input, frames, &progress.m_nTaken, output, room, &progress.m_nMade));
    return progress;
}

std::size_t CResampler::Drain(std::int32_t* output, std::size_t room) {
    std::size_t made = 0;
    Check(soxr_process(m_pResampler.get(), nullptr, 0, nullptr, output, room, &made));
    return made;
}

void CResampler::Restart() { Check(soxr_clear(m_pResampler.get())); }

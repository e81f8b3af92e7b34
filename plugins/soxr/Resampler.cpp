// One libsoxr resampler.
#include "plugins/soxr/Resampler.h"

#include <stdexcept>
#include <type_traits>

namespace {

void Check(soxr_error_t error) {
    if (error != nullptr) throw std::runtime_error(error);
}

// Measured: libsoxr 0.1.3 does not return from every larger factor with all recipes.
constexpr int kLargestRateFactorOfAllRecipes = 1 << 18;

// What each is worth stands in doc/resampling-quality.md. Below SOXR_16_BITQ, SOXR_LQ rolls off from two thirds of the
// band on, without being faster where rates rise.
unsigned long RecipeOf(EResamplingQuality quality) {
    switch (quality) {
        case EResamplingQuality::Quick:
            return SOXR_16_BITQ;
        case EResamplingQuality::High:
            return SOXR_HQ;
        case EResamplingQuality::VeryHigh:
            break;
    }
    return SOXR_VHQ;
}

template <typename TSample>
soxr_t Create(int fromRate, int toRate, int channels, EResamplingQuality resampling) {
    if (toRate / fromRate > kLargestRateFactorOfAllRecipes) resampling = EResamplingQuality::High;
    constexpr soxr_datatype_t kType = std::is_same_v<TSample, float> ? SOXR_FLOAT32_S : SOXR_FLOAT64_S;
    const soxr_io_spec_t samples = soxr_io_spec(kType, kType);
    const soxr_quality_spec_t quality = soxr_quality_spec(RecipeOf(resampling), SOXR_ROLLOFF_NONE);
    const soxr_runtime_spec_t oneThread = soxr_runtime_spec(1);
    soxr_error_t error = nullptr;
    soxr* const created =
        soxr_create(fromRate, toRate, static_cast<unsigned>(channels), &error, &samples, &quality, &oneThread);
    Check(error);
    return created;
}

}  // namespace

template <typename TSample>
CResampler<TSample>::CResampler(int fromRate, int toRate, int channels, EResamplingQuality quality)
    : m_pResampler(Create<TSample>(fromRate, toRate, channels, quality)) {}

template <typename TSample>
typename CResampler<TSample>::SProgress CResampler<TSample>::Process(const TSample* const* input, std::size_t frames,
                                                                     TSample* const* output, std::size_t room) {
    SProgress progress{0, 0};
    // soxr writes to the channels, not to their addresses.
    auto* const channels = const_cast<TSample**>(output);
    Check(soxr_process(m_pResampler.get(), input, frames, &progress.m_nTaken, channels, room, &progress.m_nMade));
    return progress;
}

template <typename TSample>
std::size_t CResampler<TSample>::Drain(TSample* const* output, std::size_t room) {
    std::size_t made = 0;
    Check(soxr_process(m_pResampler.get(), nullptr, 0, nullptr, const_cast<TSample**>(output), room, &made));
    return made;
}

template <typename TSample>
void CResampler<TSample>::Restart() {
    Check(soxr_clear(m_pResampler.get()));
}

template class CResampler<float>;
template class CResampler<double>;

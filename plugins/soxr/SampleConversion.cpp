// The samples' way through one conversion.
#include "plugins/soxr/SampleConversion.h"

#include <algorithm>
#include <array>
#include <stdexcept>

#include "plugins/soxr/SampleFormat.h"

namespace {

// Few enough that a block stays in the cache, enough that the cost of a call to soxr does not count.
constexpr std::size_t kBlockFrames = 2048;

std::size_t Count(int channels) { return static_cast<std::size_t>(channels); }

template <typename TSample>
std::vector<CRequantiser<TSample>> MakeRequantisers(const SConversionPlan& plan) {
    std::vector<CRequantiser<TSample>> requantisers;
    if (HasFloatSamples(plan.m_to)) return requantisers;
    const int bits = plan.m_to.m_format.nBitsPerSample;
    const EDither dither = EffectiveDither(plan.m_eDither, plan.LosesBits(), bits, plan.ToRate());
    for (std::size_t channel = 0; channel < Count(plan.WorkingChannels()); ++channel) {
        requantisers.emplace_back(bits, dither, channel);
    }
    return requantisers;
}

bool HasWideIntegers(const SHeldWavFormat& format) {
    return !HasFloatSamples(format) && format.m_format.nBitsPerSample == 32;
}

// Whether a float holds what the arithmetic gives: not a 32-bit integer, but all that soxr computes below the very high
// quality, and any single sample.
bool FitsFloats(const SConversionPlan& plan) {
    if (HasWideIntegers(plan.m_to)) return false;
    if (plan.Resamples()) return plan.m_eQuality != EResamplingQuality::VeryHigh;
    return !plan.MixesDown() && !HasWideIntegers(plan.m_from);
}

// The address of each target channel; a single channel serves all.
template <typename TSample>
std::array<const TSample*, kMostChannels> Spread(CPlanarBuffer<TSample>& samples) {
    std::array<const TSample*, kMostChannels> addresses{};
    for (std::size_t i = 0; i < addresses.size(); ++i) {
        addresses[i] = samples.Channel(std::min(i, samples.Channels() - 1));
    }
    return addresses;
}

}  // namespace

template <typename TSample>
CSampleConversion<TSample>::CSampleConversion(const SConversionPlan& plan)
    : m_plan(plan),
      m_nInputBytes(static_cast<std::size_t>(BlockSizeOf(plan.m_from.m_format))),
      m_nOutputBytes(static_cast<std::size_t>(BlockSizeOf(plan.m_to.m_format))),
      m_input(Count(plan.FromChannels()), kBlockFrames),
      m_mixed(plan.MixesDown() ? Count(plan.ToChannels()) : 0, kBlockFrames),
      m_resampled(plan.Resamples() ? Count(plan.WorkingChannels()) : 0, kBlockFrames),
      m_vRequantisers(MakeRequantisers<TSample>(plan)),
      m_integers(m_vRequantisers.size(), kBlockFrames) {
    if (plan.MixesDown()) m_vGains = DownMixGains(plan.FromChannels(), plan.ToChannels());
    if (plan.Resamples()) {
        m_resampler.emplace(plan.FromRate(), plan.ToRate(), plan.WorkingChannels(), plan.m_eQuality);
    }
}

template <typename TSample>
void CSampleConversion<TSample>::Write(const unsigned char* data, std::int64_t frames, CByteQueue& output) {
    auto left = static_cast<std::size_t>(frames);
    while (left > 0) {
        const std::size_t block = std::min(left, kBlockFrames);
        Unpack(data, block);
        CPlanarBuffer<TSample>& samples = m_plan.MixesDown() ? MixedDown(block) : m_input;
        m_nFramesIn += block;
        if (m_resampler) {
            ResampleBlock(samples, block, output);
        } else {
            Emit(samples, block, output);
        }
        data += block * m_nInputBytes;
        left -= block;
    }
}

template <typename TSample>
void CSampleConversion<TSample>::Unpack(const unsigned char* data, std::size_t frames) {
    if (HasFloatSamples(m_plan.m_from)) return UnpackFloats(data, frames, m_input.Channels(), m_input.From(0));
    UnpackIntegers(data, frames, m_input.Channels(), m_plan.m_from.m_format.nBitsPerSample, m_input.From(0));
}

template <typename TSample>
CPlanarBuffer<TSample>& CSampleConversion<TSample>::MixedDown(std::size_t frames) {
    for (std::size_t channel = 0; channel < m_mixed.Channels(); ++channel) {
        MixChannels(m_vGains[channel], m_input.From(0), m_input.Channels(), frames, m_mixed.Channel(channel));
    }
    return m_mixed;
}

template <typename TSample>
void CSampleConversion<TSample>::ResampleBlock(CPlanarBuffer<TSample>& samples, std::size_t frames,
                                               CByteQueue& output) {
    for (std::size_t taken = 0;;) {
        const auto progress =
            m_resampler->Process(samples.From(taken), frames - taken, m_resampled.From(0), kBlockFrames);
        Emit(m_resampled, progress.m_nMade, output);
        taken += progress.m_nTaken;
        if (taken == frames && progress.m_nMade < kBlockFrames) return;
        if (progress.m_nTaken == 0 && progress.m_nMade == 0) throw std::runtime_error("the resampler takes no input");
    }
}

template <typename TSample>
void CSampleConversion<TSample>::Finish(std::int64_t frames, CByteQueue& output) {
    const std::uint64_t whole = m_plan.OutputFrames(m_nFramesIn);
    const std::size_t wanted = static_cast<std::size_t>(frames) * m_nOutputBytes;
    while (output.Size() < wanted && m_nFramesOut < whole) {
        const auto block = static_cast<std::size_t>(std::min<std::uint64_t>(kBlockFrames, whole - m_nFramesOut));
        const std::size_t made = m_resampler->Drain(m_resampled.From(0), block);
        // Where soxr counts the end a frame short, silence makes the length exact.
        for (std::size_t channel = 0; channel < m_resampled.Channels(); ++channel) {
            std::fill(m_resampled.Channel(channel) + made, m_resampled.Channel(channel) + block, TSample{0});
        }
        Emit(m_resampled, block, output);
    }
}

template <typename TSample>
void CSampleConversion<TSample>::Restart() {
    m_nFramesIn = 0;
    m_nFramesOut = 0;
    for (auto& requantiser : m_vRequantisers) requantiser.Restart();
    if (m_resampler) m_resampler->Restart();
}

template <typename TSample>
void CSampleConversion<TSample>::Emit(CPlanarBuffer<TSample>& samples, std::size_t frames, CByteQueue& output) {
    if (frames == 0) return;
    const std::size_t bytes = frames * m_nOutputBytes;
    unsigned char* const packed = output.Reserve(bytes);
    if (m_vRequantisers.empty()) {
        PackFloats(Spread(samples).data(), frames, Count(m_plan.ToChannels()), packed);
    } else {
        PackRounded(samples, frames, packed);
    }
    output.Commit(bytes);
    m_nFramesOut += frames;
}

template <typename TSample>
void CSampleConversion<TSample>::PackRounded(CPlanarBuffer<TSample>& samples, std::size_t frames,
                                             unsigned char* packed) {
    for (std::size_t channel = 0; channel < m_vRequantisers.size(); ++channel) {
        m_vRequantisers[channel].Apply(samples.Channel(channel), frames, m_integers.Channel(channel));
    }
    PackIntegers(Spread(m_integers).data(), frames, Count(m_plan.ToChannels()), m_plan.m_to.m_format.nBitsPerSample,
                 packed);
}

template <typename TSample>
std::uint64_t CSampleConversion<TSample>::GetClippedSamples() const {
    std::uint64_t clipped = 0;
    for (const auto& requantiser : m_vRequantisers) clipped += requantiser.GetClippedSamples();
    const auto copies = static_cast<std::uint64_t>(m_plan.ToChannels() / m_plan.WorkingChannels());
    return clipped * copies;
}

std::unique_ptr<CConversion> MakeConversion(const SConversionPlan& plan) {
    if (FitsFloats(plan)) return std::make_unique<CSampleConversion<float>>(plan);
    return std::make_unique<CSampleConversion<double>>(plan);
}

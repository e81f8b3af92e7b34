// The samples' way through one conversion.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "plugins/soxr/ChannelMap.h"
#include "plugins/soxr/ConversionPlan.h"
#include "plugins/soxr/PlanarBuffer.h"
#include "plugins/soxr/Requantiser.h"
#include "plugins/soxr/Resampler.h"
#include "sdk/Conversion.h"

// Unpacks, mixes down, resamples, requantises, duplicates and packs. TSample, float or double, is what the arithmetic
// is done in. One object belongs to one thread.
template <typename TSample>
class CSampleConversion final : public CConversion {
public:
    explicit CSampleConversion(const SConversionPlan& plan);

    void Write(const unsigned char* data, std::int64_t frames, CByteQueue& output) override;
    void Finish(std::int64_t frames, CByteQueue& output) override;
    void Restart() override;
    std::uint64_t GetClippedSamples() const override;

private:
    void Unpack(const unsigned char* data, std::size_t frames);
    CPlanarBuffer<TSample>& MixedDown(std::size_t frames);
    void ResampleBlock(CPlanarBuffer<TSample>& samples, std::size_t frames, CByteQueue& output);
    void Emit(CPlanarBuffer<TSample>& samples, std::size_t frames, CByteQueue& output);
    void PackRounded(CPlanarBuffer<TSample>& samples, std::size_t frames, unsigned char* packed);

    SConversionPlan m_plan;
    std::size_t m_nInputBytes;   // per frame
    std::size_t m_nOutputBytes;  // per frame
    CPlanarBuffer<TSample> m_input;
    std::vector<CMixGains> m_vGains;  // of each channel of m_mixed; empty without a mix-down
    CPlanarBuffer<TSample> m_mixed;
    std::optional<CResampler<TSample>> m_resampler;
    CPlanarBuffer<TSample> m_resampled;
    std::vector<CRequantiser<TSample>> m_vRequantisers;  // one for each working channel; empty for float targets
    CPlanarBuffer<std::int32_t> m_integers;
    std::uint64_t m_nFramesIn = 0;
    std::uint64_t m_nFramesOut = 0;
};

// In the arithmetic that the plan's quality is worth.
std::unique_ptr<CConversion> MakeConversion(const SConversionPlan& plan);

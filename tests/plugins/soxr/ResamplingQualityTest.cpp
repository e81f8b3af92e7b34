// What the resampler does to a sine: level, purity, delay.
#include <cmath>

#include "tests/plugins/soxr/PluginUnderTest.h"
#include "tests/plugins/soxr/SineFit.h"

namespace {

struct SSineCase {
    int m_nFromRate;
    int m_nToRate;
    double m_nFrequency;
};

// The first and the last 0.1 s are left out of every measurement: they hear the filter's edges.
std::size_t Margin(const SSineCase& entry) { return static_cast<std::size_t>(entry.m_nToRate / 10); }

// Two seconds of it.
std::vector<int> ResampledSine(const SSineCase& entry, double amplitude) {
    std::vector<int> samples;
    for (int at = 0; at < 2 * entry.m_nFromRate; ++at) {
        const double phase = kTurn * entry.m_nFrequency * at / entry.m_nFromRate;
        samples.push_back(static_cast<int>(std::lround(amplitude * std::sin(phase))));
    }
    const CPluginUnderTest plugin;
    const CBytes output =
        ConvertAll(plugin, Held(entry.m_nFromRate, 24, 1), Held(entry.m_nToRate, 24, 1), Packed(samples, 24));
    return Unpacked(output, 24);
}

SFit FitResampledSine(const SSineCase& entry, double amplitude) {
    const std::vector<int> output = ResampledSine(entry, amplitude);
    return FitSine(output, Margin(entry), output.size() - Margin(entry), kTurn * entry.m_nFrequency / entry.m_nToRate);
}

TEST(SoxrResamplingQuality, SineKeepsItsLevelItsPurityAndItsPlace) {
    const SSineCase cases[] = {{44100, 48000, 1000}, {48000, 44100, 1000},  {44100, 96000, 997},  {192000, 44100, 1000},
                               {8000, 48000, 1000},  {96000, 48000, 15000}, {44100, 48000, 19000}};
    const double amplitude = 0.5 * 8388608;
    for (const SSineCase& entry : cases) {
        const SFit fit = FitResampledSine(entry, amplitude);
        const double level = 20 * std::log10(fit.m_nAmplitude / amplitude);
        const double purity = 20 * std::log10(fit.m_nAmplitude / std::sqrt(2.0) / fit.m_nResidue);
        const double delay = fit.m_nPhase / (kTurn * entry.m_nFrequency / entry.m_nToRate);
        EXPECT_NEAR(level, 0, 0.01) << entry.m_nFromRate << " to " << entry.m_nToRate;
        EXPECT_GT(purity, 110) << entry.m_nFromRate << " to " << entry.m_nToRate;
        EXPECT_NEAR(delay, 0, 0.01) << entry.m_nFromRate << " to " << entry.m_nToRate;
        RecordProperty("purity_dB_" + std::to_string(entry.m_nFromRate) + "_" + std::to_string(entry.m_nToRate),
                       std::to_string(purity));
    }
}

TEST(SoxrResamplingQuality, TonesAboveTheTargetsBandAreAtLeast110DecibelsDown) {
    const SSineCase cases[] = {{48000, 44100, 23500}, {96000, 44100, 30000}, {96000, 48000, 25500}};
    const double amplitude = 0.5 * 8388608;
    for (const SSineCase& entry : cases) {
        const std::vector<int> output = ResampledSine(entry, amplitude);
        double squares = 0;
        for (std::size_t at = Margin(entry); at < output.size() - Margin(entry); ++at) {
            squares += static_cast<double>(output[at]) * output[at];
        }
        const double rms = std::sqrt(squares / static_cast<double>(output.size() - 2 * Margin(entry)));
        EXPECT_LT(20 * std::log10((rms + 1e-9) / (amplitude / std::sqrt(2.0))), -110)
            << entry.m_nFrequency << " Hz, " << entry.m_nFromRate << " to " << entry.m_nToRate;
    }
}

TEST(SoxrResamplingQuality, OverloadSaturatesInsteadOfWrapping) {
    // A full-scale square wave rings above full scale between its samples.
    std::vector<int> samples;
    for (int at = 0; at < 20000; ++at) samples.push_back(at / 40 % 2 == 0 ? 32767 : -32768);
    const CPluginUnderTest plugin;
    const auto output = Unpacked(ConvertAll(plugin, Held(44100, 16, 1), Held(96000, 16, 1), Packed(samples, 16)), 16);
    EXPECT_GE(*std::max_element(output.begin(), output.end()), 32766);
    EXPECT_LE(*std::min_element(output.begin(), output.end()), -32767);
    // A wrapped sample would stand full scale away from its neighbours, in the middle of a half-wave.
    for (std::size_t half = 10; half < 200; ++half) {
        const auto middle = static_cast<std::size_t>((static_cast<double>(half) * 40 + 20) * 96000 / 44100);
        const int sign = half % 2 == 0 ? 1 : -1;
        for (std::size_t at = middle - 38; at < middle + 38; ++at) ASSERT_GT(output[at] * sign, 20000) << at;
    }
}

}  // namespace

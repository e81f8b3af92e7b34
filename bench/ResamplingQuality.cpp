// Prints what each resampling quality is worth, beside bare libsoxr, as the table of doc/resampling-quality.md.
#include <soxr.h>

#include <cstdio>
#include <exception>

#include "bench/LoadedConvertors.h"
#include "tests/plugins/soxr/ResamplingMeasures.h"

namespace {

constexpr SRates kRatePairs[] = {{44100, 48000}, {48000, 44100}, {96000, 44100}, {44100, 96000}};
constexpr double kTones[] = {100, 440, 997, 3000, 5000, 8000, 10007, 12000, 15000, 17000, 19000};
constexpr int kImageTones[] = {1000, 5000, 10000, 15000, 17000, 19000, 19800};
constexpr int kAliasTones = 40;
constexpr int kRippleTones = 100;

std::vector<unsigned char> Packed(const std::vector<int>& samples) {
    std::vector<unsigned char> bytes;
    for (const int sample : samples) {
        for (int shift = 0; shift < 24; shift += 8) bytes.push_back(static_cast<unsigned char>(sample >> shift));
    }
    return bytes;
}

void Unpack(const unsigned char* bytes, int size, std::vector<int>& samples) {
    for (int at = 0; at + 2 < size; at += 3) {
        const unsigned bits = static_cast<unsigned>(bytes[at]) | static_cast<unsigned>(bytes[at + 1]) << 8 |
                              static_cast<unsigned>(bytes[at + 2]) << 16;
        samples.push_back(static_cast<int>(bits << 8) >> 8);
    }
}

std::vector<int> Converted(IAudioConvertor& convertor, const std::vector<int>& samples) {
    std::vector<unsigned char> bytes = Packed(samples);
    std::vector<int> output;
    int size = static_cast<int>(bytes.size());
    do {
        if (!convertor.Convert(bytes.data(), size, 0, nullptr)) throw std::runtime_error("the conversion failed");
        Unpack(convertor.GetOutputData(), convertor.GetOutputLength(), output);
    } while (size > 0 ? (size = 0, true) : convertor.GetOutputLength() > 0);
    return output;
}

// libsoxr as it comes, with floats in and out.
std::vector<int> BareSoxr(const SRates& rates, unsigned long recipe, const std::vector<int>& samples) {
    std::vector<float> input;
    for (const int sample : samples) input.push_back(static_cast<float>(sample) / 8388608.0F);
    std::vector<float> resampled(input.size() * static_cast<std::size_t>(rates.m_nTo) /
                                 static_cast<std::size_t>(rates.m_nFrom));
    const soxr_quality_spec_t quality = soxr_quality_spec(recipe, 0);
    std::size_t made = 0;
    soxr_oneshot(rates.m_nFrom, rates.m_nTo, 1, input.data(), input.size(), nullptr, resampled.data(), resampled.size(),
                 &made, nullptr, &quality, nullptr);
    std::vector<int> output;
    for (const float sample : resampled) output.push_back(static_cast<int>(std::lround(sample * 8388608.0)));
    return output;
}

double SmallestToneToNoise(const CResample& resample, const SRates& rates) {
    double smallest = 1000;
    for (const double frequency : kTones) smallest = std::min(smallest, ToneToNoise(resample, rates, frequency));
    return smallest;
}

double SmallestToneToImage(const CResample& resample, const SRates& rates) {
    double smallest = 1000;
    for (const int frequency : kImageTones) smallest = std::min(smallest, ToneToImages(resample, rates, frequency));
    const double lowest = rates.m_nTo / 2.0;
    const double step = (rates.m_nFrom / 2.0 - lowest) / kAliasTones;
    for (int tone = 0; step > 0 && tone < kAliasTones; ++tone) {
        smallest = std::min(smallest, ToneToAlias(resample, rates, lowest * 1.0005 + step * tone));
    }
    return smallest;
}

void PrintRow(const char* name, const SRates& rates, const CResample& resample) {
    const std::vector<int> second(static_cast<std::size_t>(rates.m_nFrom));
    std::printf("| %d → %d | %s | %.1f | %.1f | %.1f | %.1f | %.5f | %.6f | %zu |\n", rates.m_nFrom, rates.m_nTo, name,
                ToneToNoise(resample, rates, 997), SmallestToneToNoise(resample, rates),
                SmallestToneToImage(resample, rates), SweepToError(resample, rates),
                Ripple(resample, rates, kRippleTones), std::abs(Delay(resample, rates)), resample(second).size());
    std::fflush(stdout);
}

void PrintTable(const CLoadedConvertors& convertors) {
    std::puts(
        "| rates | resampler | THD+N at 997 Hz, dB | least THD+N, dB | images, dB | sweep, dB | ripple, dB | delay, "
        "frames "
        "| frames of 1 s |");
    std::puts("|---|---|---|---|---|---|---|---|---|");
    for (const SRates& rates : kRatePairs) {
        for (const char* const quality : {"quick", "high", "very-high"}) {
            PrintRow(quality, rates, [&](const std::vector<int>& samples) {
                const SHeldWavFormat from{{rates.m_nFrom, 24, 1}, kIntegerSamples};
                const SHeldWavFormat to{{rates.m_nTo, 24, 1}, kIntegerSamples};
                return Converted(*convertors.Create(quality, from, to), samples);
            });
        }
        PrintRow("libsoxr HQ", rates,
                 [&](const std::vector<int>& samples) { return BareSoxr(rates, SOXR_HQ, samples); });
        PrintRow("libsoxr VHQ", rates,
                 [&](const std::vector<int>& samples) { return BareSoxr(rates, SOXR_VHQ, samples); });
    }
}

}  // namespace

int main() {
    try {
        PrintTable(CLoadedConvertors());
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "kelo_resampling_quality: %s\n", failure.what());
        return 1;
    }
}

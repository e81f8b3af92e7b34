// One second of stereo through the soxr convertor, block by block, beside bare libsoxr with floats in and out.
#include <benchmark/benchmark.h>
#include <soxr.h>

#include <cstdint>
#include <vector>

#include "bench/LoadedConvertors.h"

namespace {

constexpr int kBlockFrames = 4096;

// Half of full scale, the same in each run.
std::vector<unsigned char> Noise(const SWavFormat& format) {
    std::vector<unsigned char> bytes(static_cast<std::size_t>(BlockSizeOf(format)) * kBlockFrames);
    const std::size_t width = static_cast<std::size_t>(format.nBitsPerSample / 8);
    unsigned state = 1;
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        state = state * 1664525 + 1013904223;
        bytes[at] = static_cast<unsigned char>(at % width == width - 1 ? (state >> 25) - 64 : state >> 24);
    }
    return bytes;
}

// What a filter holds back is far less than half of a second.
void RequireOutput(benchmark::State& state, std::int64_t frames, int rate) {
    if (frames < state.iterations() * rate / 2) state.SkipWithError("too little comes out");
}

void Convertor(benchmark::State& state, const char* quality) {
    const CLoadedConvertors convertors;
    const int bits = static_cast<int>(state.range(2));
    const SHeldWavFormat from{{static_cast<int>(state.range(0)), bits, 2}, kIntegerSamples};
    const SHeldWavFormat to{{static_cast<int>(state.range(1)), bits, 2}, kIntegerSamples};
    const auto convertor = convertors.Create(quality, from, to);
    std::vector<unsigned char> block = Noise(from.m_format);
    std::int64_t made = 0;
    for (auto _ : state) {
        for (int frames = 0; frames < from.m_format.nSampleRate; frames += kBlockFrames) {
            if (!convertor->Convert(block.data(), static_cast<int>(block.size()), 0, nullptr)) {
                return state.SkipWithError("the convertor fails");
            }
            made += convertor->GetOutputLength();
            benchmark::DoNotOptimize(convertor->GetOutputData());
        }
    }
    RequireOutput(state, made / BlockSizeOf(to.m_format), to.m_format.nSampleRate);
}

void BareSoxr(benchmark::State& state, unsigned long recipe) {
    const auto from = static_cast<int>(state.range(0));
    const auto to = static_cast<int>(state.range(1));
    const soxr_quality_spec_t quality = soxr_quality_spec(recipe, 0);
    soxr_t const resampler = soxr_create(from, to, 2, nullptr, nullptr, &quality, nullptr);
    std::vector<float> input;
    for (const unsigned char byte : Noise({from, 16, 1})) input.push_back(static_cast<float>(byte) / 256.0F - 0.5F);
    std::vector<float> output(8 * kBlockFrames * 2);
    std::int64_t total = 0;
    for (auto _ : state) {
        for (int frames = 0; frames < from; frames += kBlockFrames) {
            std::size_t taken = 0;
            std::size_t made = 0;
            soxr_process(resampler, input.data(), kBlockFrames, &taken, output.data(), output.size() / 2, &made);
            total += static_cast<std::int64_t>(made);
        }
    }
    soxr_delete(resampler);
    RequireOutput(state, total, to);
}

void RatePairs(benchmark::internal::Benchmark* row) {
    row->ArgNames({"from", "to", "bits"})->Unit(benchmark::kMicrosecond);
    for (const int bits : {16, 24}) row->Args({44100, 48000, bits})->Args({96000, 44100, bits});
}

void BareRatePairs(benchmark::internal::Benchmark* row) {
    row->ArgNames({"from", "to"})->Unit(benchmark::kMicrosecond);
    row->Args({44100, 48000})->Args({96000, 44100});
}

}  // namespace

BENCHMARK_CAPTURE(BareSoxr, HQ, SOXR_HQ)->Apply(BareRatePairs);
BENCHMARK_CAPTURE(Convertor, quick, "quick")->Apply(RatePairs);
BENCHMARK_CAPTURE(Convertor, high, "high")->Apply(RatePairs);
BENCHMARK_CAPTURE(BareSoxr, VHQ, SOXR_VHQ)->Apply(BareRatePairs);
BENCHMARK_CAPTURE(Convertor, veryHigh, "very-high")->Apply(RatePairs);

// What each resampling quality is worth, and that its lengths are exact.
#include "plugins/soxr/SampleConversion.h"
#include "tests/plugins/soxr/PluginUnderTest.h"
#include "tests/plugins/soxr/SineFit.h"

namespace {

struct SRecipe {
    EResamplingQuality m_eQuality;
    double m_nDecibels;  // noise and images are at least so far below the tone
};

constexpr SRecipe kRecipes[] = {
    {EResamplingQuality::Quick, 100}, {EResamplingQuality::High, 120}, {EResamplingQuality::VeryHigh, 160}};

constexpr double kAmplitude = 0.5 * 2147483648.0;

std::vector<int> Sine(int rate, double frequency) {
    std::vector<int> samples;
    for (int at = 0; at < rate; ++at) {
        samples.push_back(static_cast<int>(std::lround(kAmplitude * std::sin(kTurn * frequency * at / rate))));
    }
    return samples;
}

std::vector<int> Converted(const SConversionPlan& plan, const std::vector<int>& samples) {
    const auto conversion = MakeConversion(plan);
    const CBytes input = Packed(samples, 32);
    CByteQueue output;
    conversion->Write(input.data(), static_cast<std::int64_t>(samples.size()), output);
    conversion->Finish(static_cast<std::int64_t>(plan.OutputFrames(samples.size())), output);
    const std::size_t size = output.Size();
    const unsigned char* const bytes = output.Take(size);
    return Unpacked(CBytes(bytes, bytes + size), 32);
}

SConversionPlan Plan(const SRecipe& recipe, int from, int to) {
    return {Held(from, 32, 1), Held(to, 32, 1), recipe.m_eQuality};
}

std::vector<int> ResampledSine(const SRecipe& recipe, int from, int to, double frequency) {
    return Converted(Plan(recipe, from, to), Sine(from, frequency));
}

// The part that does not hear the filter's edges.
std::size_t BeginOf(int rate) { return static_cast<std::size_t>(rate / 10); }

}  // namespace

TEST(SoxrRecipes, KeepNoiseAndImagesDown) {
    constexpr int kPairs[][2] = {{44100, 48000}, {48000, 44100}, {44100, 96000}, {192000, 22050}, {8000, 96000}};
    for (const SRecipe& recipe : kRecipes) {
        for (const auto& pair : kPairs) {
            for (const double place : {0.03, 0.2, 0.41, 0.6}) {
                const double frequency = place * std::min(pair[0], pair[1]) / 2;
                const std::vector<int> output = ResampledSine(recipe, pair[0], pair[1], frequency);
                const std::size_t begin = BeginOf(pair[1]);
                const SFit fit = FitSine(output, begin, output.size() - begin, kTurn * frequency / pair[1]);
                const double purity = 20 * std::log10(fit.m_nAmplitude / std::sqrt(2.0) / fit.m_nResidue);
                EXPECT_GT(purity, recipe.m_nDecibels) << pair[0] << " to " << pair[1] << " at " << frequency;
                EXPECT_NEAR(20 * std::log10(fit.m_nAmplitude / kAmplitude), 0, 0.05) << frequency;
            }
        }
    }
}

TEST(SoxrRecipes, KeepTonesAboveTheTargetsBandDown) {
    constexpr int kPairs[][2] = {{44100, 22050}, {88200, 44100}, {96000, 44100}, {48000, 8000}};
    for (const SRecipe& recipe : kRecipes) {
        for (const auto& pair : kPairs) {
            for (const double place : {1.001, 1.1, 1.5}) {
                const std::vector<int> output = ResampledSine(recipe, pair[0], pair[1], place * pair[1] / 2);
                double squares = 0;
                for (std::size_t at = BeginOf(pair[1]); at < output.size() - BeginOf(pair[1]); ++at) {
                    squares += static_cast<double>(output[at]) * output[at];
                }
                const double rms = std::sqrt(squares / static_cast<double>(output.size() - 2 * BeginOf(pair[1])));
                EXPECT_LT(20 * std::log10((rms + 1e-9) / (kAmplitude / std::sqrt(2.0))), -recipe.m_nDecibels)
                    << pair[0] << " to " << pair[1] << " at " << place;
            }
        }
    }
}

TEST(SoxrRecipes, MakeTheExactLength) {
    constexpr int kPairs[][2] = {{44100, 48000}, {48000, 44100}, {44101, 44100}, {1, 768}, {768, 1}, {767999, 768000}};
    for (const SRecipe& recipe : kRecipes) {
        for (const auto& pair : kPairs) {
            const SConversionPlan plan = Plan(recipe, pair[0], pair[1]);
            for (const std::size_t frames : {1U, 7U, 5000U}) {
                EXPECT_EQ(Converted(plan, std::vector<int>(frames, 1000)).size(), plan.OutputFrames(frames))
                    << pair[0] << " to " << pair[1];
            }
        }
    }
}

TEST(SoxrRecipes, ReturnFromTheLargestFactors) {
    for (const SRecipe& recipe : kRecipes) {
        for (const int rate : {1 << 18, 1 << 19}) {
            const SConversionPlan plan = Plan(recipe, 1, rate);
            EXPECT_EQ(Converted(plan, {1, 2}).size(), plan.OutputFrames(2));
        }
    }
}

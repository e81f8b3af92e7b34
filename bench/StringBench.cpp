// Character-set conversion beside bare iconv, and wildcard masks.
#include <benchmark/benchmark.h>
#include <iconv.h>

#include <string>

#include "bench/CountedIterations.h"
#include "portable/CodePage.h"
#include "portable/MatchMask.h"

namespace {

constexpr char kText[] = "twenty characters ab";
constexpr unsigned int kUtf8 = 65001;

}  // namespace

static void BareIconv(benchmark::State& state) {
    for (auto _ : state) {
        wchar_t wide[64];
        char* in = const_cast<char*>(kText);
        char* out = reinterpret_cast<char*>(wide);
        std::size_t inLeft = sizeof kText - 1;
        std::size_t outLeft = sizeof wide;
        iconv_t const descriptor = iconv_open("WCHAR_T", "UTF-8");
        iconv(descriptor, &in, &inLeft, &out, &outLeft);
        iconv_close(descriptor);
        if (inLeft != 0) return state.SkipWithError("iconv leaves characters over");
    }
}
BENCHMARK(BareIconv)->Apply(CountedIterations);

static void MultiByteToWideCharOfTwentyCharacters(benchmark::State& state) {
    unsigned short wide[64];
    for (auto _ : state) {
        const int units = MultiByteToWideChar(kUtf8, 0, kText, -1, wide, 63);
        if (units != sizeof kText) return state.SkipWithError("wrong number of units");
    }
}
BENCHMARK(MultiByteToWideCharOfTwentyCharacters)->Apply(CountedIterations);

static void MatchMaskOfManyStars(benchmark::State& state) {
    const std::string mask(30, '*');
    const std::string name(static_cast<std::size_t>(state.range(0)), 'a');
    for (auto _ : state) {
        if (MatchMask((mask + 'b').c_str(), name.c_str(), 1) != 0) return state.SkipWithError("a match of other names");
    }
    state.SetComplexityN(state.range(0));
}
BENCHMARK(MatchMaskOfManyStars)->RangeMultiplier(4)->Range(64, 4096)->Complexity();

// What sound data and its format are held to.
#include "host/validate/FormatRules.h"

#include <algorithm>

#include "host/FormatText.h"
#include "host/validate/Outcome.h"

namespace {

constexpr int kMostChannels = 1024;
constexpr int kMostBits = 64;

}  // namespace

void ExpectSaneFormat(const SWavFormat& format) {
    const bool sane = format.nSampleRate > 0 && format.nBitsPerSample >= 8 && format.nBitsPerSample <= kMostBits &&
                      format.nBitsPerSample % 8 == 0 && format.nChannels > 0 && format.nChannels <= kMostChannels;
    Expect(sane, "a format of " + FormatText(format));
}

std::string DifferenceText(const CBytes& expected, const CBytes& seen) {
    if (expected.size() != seen.size()) {
        return std::to_string(seen.size()) + " bytes instead of " + std::to_string(expected.size());
    }
    const auto places = std::mismatch(expected.begin(), expected.end(), seen.begin());
    return "byte " + std::to_string(places.first - expected.begin()) + " is the first that differs";
}

// Places in a sound as a person writes them.
#include "host/convert/TimePoint.h"

#include <algorithm>
#include <cctype>

namespace {

constexpr std::uint64_t kBillion = 1000000000;

// More would overflow when they are counted in frames.
constexpr std::size_t kMostClockDigits = 9;
constexpr std::size_t kMostFrameDigits = 12;
constexpr std::size_t kMostFractionDigits = 9;

std::optional<std::uint64_t> ParseNumber(const std::string& digits, std::size_t mostDigits) {
    const bool good = !digits.empty() && digits.size() <= mostDigits &&
                      std::all_of(digits.begin(), digits.end(), [](unsigned char c) { return std::isdigit(c) != 0; });
    if (!good) return std::nullopt;
    return std::stoull(digits);
}

// "hh:mm:ss", "mm:ss" or "ss" in seconds; what follows a colon is below 60.
std::optional<std::uint64_t> ParseClock(const std::string& text) {
    std::uint64_t total = 0;
    std::size_t begin = 0;
    for (int colons = 0; colons <= 2; ++colons) {
        const std::size_t end = text.find(':', begin);
        const auto number = ParseNumber(text.substr(begin, end - begin), kMostClockDigits);
        if (!number || (colons > 0 && *number >= 60)) return std::nullopt;
        total = total * 60 + *number;
        if (end == std::string::npos) return total;
        begin = end + 1;
    }
    return std::nullopt;
}

}  // namespace

std::optional<STimePoint> ParseTimePoint(const std::string& text) {
    if (!text.empty() && text.back() == 'f') {
        const auto frames = ParseNumber(text.substr(0, text.size() - 1), kMostFrameDigits);
        if (!frames) return std::nullopt;
        return STimePoint{true, *frames, 0};
    }
    const std::size_t dot = text.find('.');
    const auto seconds = ParseClock(text.substr(0, dot));
    if (!seconds) return std::nullopt;
    STimePoint point{false, *seconds, 0};
    if (dot == std::string::npos) return point;
    std::string fraction = text.substr(dot + 1);
    if (!ParseNumber(fraction, kMostFractionDigits)) return std::nullopt;
    fraction.resize(kMostFractionDigits, '0');
    point.m_nBillionths = std::stoull(fraction);
    return point;
}

std::uint64_t FramesAt(const STimePoint& point, std::int32_t sampleRate) {
    if (point.m_bFrames) return point.m_nWhole;
    const auto rate = static_cast<std::uint64_t>(sampleRate);
    return point.m_nWhole * rate + (point.m_nBillionths * rate + kBillion / 2) / kBillion;
}

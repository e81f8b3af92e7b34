// The same time in frames of another sample rate.
#pragma once

#include <cstdint>

// `frames` at `from` frames per second, in frames at `to`, to the nearest. Without overflow below 2^40 frames.
constexpr std::uint64_t RescaledFrames(std::uint64_t frames, std::int32_t from, std::int32_t to) {
    const auto fromRate = static_cast<std::uint64_t>(from);
    const auto toRate = static_cast<std::uint64_t>(to);
    return frames / fromRate * toRate + (frames % fromRate * toRate + fromRate / 2) / fromRate;
}

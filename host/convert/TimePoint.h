// Places in a sound as a person writes them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

// Either seconds or sample frames of the source.
struct STimePoint {
    bool m_bFrames = false;
    std::uint64_t m_nWhole = 0;       // frames, or whole seconds
    std::uint64_t m_nBillionths = 0;  // of a second, beside whole seconds
};

// Reads "90", "1:30", "0:01:30.5" or, as sample frames, "3969000f". None for anything else.
std::optional<STimePoint> ParseTimePoint(const std::string& text);

// In sample frames, rounded to the nearest.
std::uint64_t FramesAt(const STimePoint& point, std::int32_t sampleRate);

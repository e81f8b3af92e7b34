// Counts from floating-point quotients.
#pragma once

#include <cstdint>
#include <limits>

// Truncates toward zero; what lies outside the range comes out as its nearer end, and what is no number as 0.
// [any thread]
template <typename TReal>
constexpr std::uint64_t TruncateToUnsigned(TReal value) {
    constexpr TReal kLimit = static_cast<TReal>(18446744073709551616.0);  // 2 to the 64th
    if (!(value > 0)) return 0;
    return value < kLimit ? static_cast<std::uint64_t>(value) : std::numeric_limits<std::uint64_t>::max();
}

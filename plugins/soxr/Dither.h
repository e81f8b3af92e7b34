// Noise that makes the rounding error independent of the signal.
#pragma once

#include <cstdint>

// Triangular noise, one value per sample, the same series after each Restart. One object belongs to one thread.
class CTriangularDither {
public:
    void Restart() { m_nState = kSeed; }

    // The difference of two values, each spread evenly over [0, 2^bits): the mean is 0, the peak just below 2^bits.
    // `bits` is 1 to 32.
    std::int64_t Next(unsigned bits) {
        const std::uint64_t random = NextRandom();
        const std::uint64_t first = random >> (64 - bits);
        const std::uint64_t second = (random & 0xFFFFFFFFU) >> (32 - bits);
        return static_cast<std::int64_t>(first) - static_cast<std::int64_t>(second);
    }

private:
    // SplitMix64: Steele, Lea, Flood, "Fast splittable pseudorandom number generators", OOPSLA 2014.
    std::uint64_t NextRandom() {
        std::uint64_t z = m_nState += 0x9E3779B97F4A7C15U;
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9U;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBU;
        return z ^ (z >> 31);
    }

    static constexpr std::uint64_t kSeed = 0x4B656C6F;
    std::uint64_t m_nState = kSeed;
};

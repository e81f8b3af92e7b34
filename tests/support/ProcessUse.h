// What the process uses of memory and descriptors, for tests that nothing piles up.
#pragma once

#include <gtest/gtest.h>
#include <malloc.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace support {

// The address space line by line, as proc(5) tells it.
inline std::string Mappings() {
    std::ifstream maps("/proc/self/maps");
    return {std::istreambuf_iterator<char>(maps), {}};
}

struct SProcessUse {
    std::size_t m_nAllocated;  // bytes that malloc has handed out; 0 under a sanitizer's own allocator
    std::size_t m_nMapped;     // bytes of address space
    std::size_t m_nMappings;
    std::size_t m_nDescriptors;
};

inline SProcessUse MeasureUse() {
    const struct mallinfo2 heap = mallinfo2();
    std::size_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    std::size_t mappings = 0;
    for (const char character : Mappings()) mappings += character == '\n' ? 1 : 0;
    const std::filesystem::directory_iterator descriptors("/proc/self/fd");
    return {heap.uordblks + heap.hblkhd, pages * 4096, mappings,
            static_cast<std::size_t>(std::distance(begin(descriptors), end(descriptors)))};
}

// Of what the process sets up once and what piles up, only the second grows with the rounds.
inline void ExpectNoMoreMemory(const SProcessUse& before, const SProcessUse& after, int rounds) {
    // Less than the smallest block of malloc in every fourth round.
    EXPECT_LT(after.m_nAllocated, before.m_nAllocated + static_cast<std::size_t>(rounds) * 6);
    EXPECT_LE(after.m_nMappings, before.m_nMappings);
    // Less than a page in every round; the heap may still grow by a step.
    constexpr std::size_t kHeapStep = std::size_t{1} << 18U;
    EXPECT_LT(after.m_nMapped, before.m_nMapped + std::max(kHeapStep, static_cast<std::size_t>(rounds) * 4096));
}

}  // namespace support

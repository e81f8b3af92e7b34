// What a fetch may take at most.
#pragma once

#include <cstdint>

struct SFetchLimits {
    long m_nConnectSeconds;
    long m_nStallSeconds;
    std::int64_t m_nBytes;
    long m_nRedirects;
};

// The defaults, each replaced by its environment variable where that is set. Throws a reason that names the variable.
// [any thread]
SFetchLimits ReadFetchLimits();

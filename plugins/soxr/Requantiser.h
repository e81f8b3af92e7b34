// Reduction of 32-bit samples to a narrower width.
#pragma once

#include <cstddef>
#include <cstdint>

#include "plugins/soxr/Dither.h"

// Samples stay left-justified; only their lower bits become zero. One object belongs to one thread.
class CRequantiser {
public:
    // `workingBits`: the bits that the incoming samples may use; `targetBits`: 8, 16, 24 or 32.
    CRequantiser(int workingBits, int targetBits);

    // Leaves samples that fit alone; else rounds, with dither for targets of 16 bits or fewer, and saturates.
    void Apply(std::int32_t* samples, std::size_t count);

    // Starts the dither anew.
    void Restart() { m_dither.Restart(); }

private:
    unsigned m_nDropped;  // lower bits that have to become zero; 0 when everything fits
    bool m_bDithers;
    CTriangularDither m_dither;
};

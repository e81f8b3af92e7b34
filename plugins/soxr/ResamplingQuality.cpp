// How well sample rates are converted.
#include "plugins/soxr/ResamplingQuality.h"

#include <atomic>

namespace {

std::atomic<EResamplingQuality> g_eQuality{EResamplingQuality::High};

}  // namespace

EResamplingQuality GetResamplingQuality() { return g_eQuality; }

void SetResamplingQuality(EResamplingQuality quality) { g_eQuality = quality; }

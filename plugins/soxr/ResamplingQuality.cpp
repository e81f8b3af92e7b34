// How well sample rates are converted: a choice of the process.
#include "plugins/soxr/ResamplingQuality.h"

#include <dlfcn.h>

#include <atomic>

namespace {

std::atomic<EResamplingQuality> g_eQuality{EResamplingQuality::High};

// Unloading would forget the choice, so the plug-in stays in memory once there is one.
void StayLoaded() {
    Dl_info module{};
    if (dladdr(&g_eQuality, &module) == 0) return;
    void* const handle = dlopen(module.dli_fname, RTLD_NOW | RTLD_NOLOAD | RTLD_NODELETE);
    if (handle != nullptr) dlclose(handle);
}

}  // namespace

EResamplingQuality GetResamplingQuality() { return g_eQuality; }

void SetResamplingQuality(EResamplingQuality quality) {
    g_eQuality = quality;
    StayLoaded();
}

// How well sample rates are converted: a choice of the process.
#pragma once

enum class EResamplingQuality { Quick, High, VeryHigh };

// What convertors made from here on use; High until somebody chooses. [any thread]
EResamplingQuality GetResamplingQuality();

// Lasts as long as the process, unloaded plug-ins or not. [any thread]
void SetResamplingQuality(EResamplingQuality quality);

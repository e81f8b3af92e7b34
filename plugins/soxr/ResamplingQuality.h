// How well sample rates are converted: a choice for as long as the plug-in is loaded.
#pragma once

enum class EResamplingQuality { Quick, High, VeryHigh };

// What convertors made from here on use; High until somebody chooses. [any thread]
EResamplingQuality GetResamplingQuality();

// Forgotten when the plug-in is unloaded. [any thread]
void SetResamplingQuality(EResamplingQuality quality);

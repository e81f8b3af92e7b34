// Between mono and stereo, on 32-bit samples, in place. [any thread]
#pragma once

#include <cstddef>
#include <cstdint>

// Each pair of `frames` stereo frames becomes its mean, rounded toward minus infinity.
void AverageToMono(std::int32_t* samples, std::size_t frames);

// `samples` holds `frames` mono samples and has room for twice as many.
void DuplicateToStereo(std::int32_t* samples, std::size_t frames);

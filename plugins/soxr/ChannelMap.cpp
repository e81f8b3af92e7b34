// Between mono and stereo, on 32-bit samples, in place.
#include "plugins/soxr/ChannelMap.h"

void AverageToMono(std::int32_t* samples, std::size_t frames) {
    for (std::size_t i = 0; i < frames; ++i) {
        const std::int64_t sum = static_cast<std::int64_t>(samples[2 * i]) + samples[2 * i + 1];
        samples[i] = static_cast<std::int32_t>(sum >> 1);
    }
}

void DuplicateToStereo(std::int32_t* samples, std::size_t frames) {
    for (std::size_t i = frames; i-- > 0;) {
        const std::int32_t sample = samples[i];
        samples[2 * i] = sample;
        samples[2 * i + 1] = sample;
    }
}

// Which PCM a codec's blocks come out as.
#include "plugins/libav/OutputFormat.h"

#include <algorithm>

#include "sdk/Guard.h"

namespace {

// Bits per sample that the codec's samples lie in; 0 for floats.
int IntegerBitsOf(int sampleFormat) {
    switch (sampleFormat) {
        case AV_SAMPLE_FMT_U8:
        case AV_SAMPLE_FMT_U8P:
            return 8;
        case AV_SAMPLE_FMT_S16:
        case AV_SAMPLE_FMT_S16P:
            return 16;
        case AV_SAMPLE_FMT_S32:
        case AV_SAMPLE_FMT_S32P:
        case AV_SAMPLE_FMT_S64:
        case AV_SAMPLE_FMT_S64P:
            return 32;
        default:
            return 0;
    }
}

bool IsLossless(AVCodecID codec) {
    const AVCodecDescriptor* const descriptor = avcodec_descriptor_get(codec);
    return descriptor != nullptr && (descriptor->props & AV_CODEC_PROP_LOSSLESS) != 0;
}

// The width that the samples had before they were compressed, where that says anything.
int TrueBitsOf(const AVCodecContext& codec, int bits) {
    const int raw = codec.bits_per_raw_sample;
    return raw > 0 && IsLossless(codec.codec_id) ? std::min((std::min(raw, bits) + 7) / 8 * 8, bits) : bits;
}

}  // namespace

SHeldWavFormat OutputFormatOf(const AVCodecContext& codec, const AVFrame& block, EAudioFeature level) {
    const int channels = block.ch_layout.nb_channels;
    if (block.sample_rate < 1 || channels < 1) Refuse("sound without a sample rate or channels");
    const int bits = IntegerBitsOf(block.format);
    if (bits != 0) return {{block.sample_rate, TrueBitsOf(codec, bits), channels}, kIntegerSamples};
    if (level == AF_ADVANCED_FORMATS) return {{block.sample_rate, 32, channels}, kFloatSamples};
    return {{block.sample_rate, 16, channels}, kIntegerSamples};
}

// What the decoder promises is in the installed libraries.
#include <gtest/gtest.h>

#include "plugins/libav/KnownFormats.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

namespace {

// A demuxer by one of its names, and the codecs that its files hold.
struct SPromise {
    const char* m_strFormat;
    std::vector<const char*> m_vDecoders;
};

const SPromise kPromises[] = {
    {"aac", {"aac"}},
    {"ac3", {"ac3"}},
    {"amr", {"amrnb", "amrwb"}},
    {"ape", {"ape"}},
    {"asf", {"wmav1", "wmav2", "wmapro", "wmalossless", "wmavoice"}},
    {"avi", {"pcm_s16le", "mp3float"}},
    {"dsf", {"dsd_lsbf_planar", "dsd_msbf_planar"}},
    {"dts", {"dca"}},
    {"eac3", {"eac3"}},
    {"flac", {"flac"}},
    {"iff", {"dsd_msbf"}},
    {"matroska", {"aac", "flac", "libopus", "vorbis"}},
    {"mov", {"aac", "alac"}},
    {"mpc", {"mpc7"}},
    {"mpc8", {"mpc8"}},
    {"mpegts", {"aac", "ac3", "mp2float"}},
    {"oma", {"atrac3", "atrac3plus"}},
    {"rm", {"cook", "real_144", "real_288", "sipr"}},
    {"shn", {"shorten"}},
    {"tak", {"tak"}},
    {"truehd", {"truehd"}},
    {"tta", {"tta"}},
    {"wsd", {"dsd_msbf"}},
    {"wv", {"wavpack"}},
};

TEST(LibavKnownFormats, HaveTheirDemuxersAndDecoders) {
    for (const SPromise& promise : kPromises) {
        const AVInputFormat* const format = av_find_input_format(promise.m_strFormat);
        ASSERT_NE(format, nullptr) << promise.m_strFormat;
        EXPECT_NE(FindKnownFormat(*format), nullptr) << promise.m_strFormat;
        for (const char* const decoder : promise.m_vDecoders) {
            EXPECT_NE(avcodec_find_decoder_by_name(decoder), nullptr) << decoder;
        }
    }
}

TEST(LibavKnownFormats, PlaylistsAndImagesAreNone) {
    for (const char* const name : {"hls", "concat", "image2", "sdp", "lavfi"}) {
        const AVInputFormat* const format = av_find_input_format(name);
        if (format != nullptr) {
            EXPECT_EQ(FindKnownFormat(*format), nullptr) << name;
        }
    }
    ASSERT_NE(av_find_input_format("hls"), nullptr);
}

}  // namespace

// Timestamps lead to every position, so that no seek has to decode from the beginning.
#include <gtest/gtest.h>

#include <string>

#include "plugins/libav/PositionedTrack.h"

namespace {

const std::string kFiles[] = {"alac.m4a",      "alac24.m4a", "alac.caf",    "source.tta", "small.wv",  "source.wv",
                              "deep.thd",      "deep.m2ts",  "flac.mka",    "pcm.mkv",    "deep.mov",  "deep.mxf",
                              "source.voc",    "aac.m4a",    "adts.aac",    "aac.mka",    "aac.3gp",   "aac.flv",
                              "aac.loas",      "one.wma",    "two.wma",     "one.ac3",    "one.eac3",  "one.dts",
                              "opus.webm",     "opus.mp4",   "vorbis.webm", "lossy.wv",   "video.mp4", "video.mkv",
                              "fragments.mp4", "video.avi",  "video.ts",    "video.flv",  "video.vob"};

CPositionedTrack TrackOf(const std::string& name) {
    return CPositionedTrack(std::make_shared<const CInputFile>(KELO_MEDIA "/" + name));
}

std::int64_t LengthOf(const std::string& name) {
    CPositionedTrack track = TrackOf(name);
    while (track.Next()) {
    }
    return track.BlockStart();
}

TEST(LibavApproach, LeadsToTheBlockOfEveryPosition) {
    for (const std::string& name : kFiles) {
        SCOPED_TRACE(name);
        CPositionedTrack track = TrackOf(name);
        const std::int64_t length = LengthOf(name);
        // WavPack's first jump goes through the file from where it stands.
        for (std::int64_t position = length / 2; position < length; position += length / 20) {
            ASSERT_TRUE(track.Approach(position)) << position;
            EXPECT_LE(track.BlockStart(), position);
            EXPECT_GT(track.BlockEnd(), position);
        }
    }
}

TEST(LibavApproach, LeadsToTheEndOfTheSound) {
    for (const std::string& name : kFiles) {
        const auto end = TrackOf(name).FindEnd();
        ASSERT_TRUE(end) << name;
        EXPECT_EQ(end->m_nPosition, LengthOf(name)) << name;
    }
}

// Behind a jump these tell times that are not those of a linear read.
TEST(LibavApproach, DoesNotTrustTimestampsThatAreGuessed) {
    for (const char* const name : {"speech.spx", "video.ogv"}) {
        CPositionedTrack track = TrackOf(name);
        EXPECT_FALSE(track.Approach(40000)) << name;
        EXPECT_FALSE(track.FindEnd()) << name;
    }
}

}  // namespace

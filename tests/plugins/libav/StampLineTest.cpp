// Timestamps that run on with the sound, and such as break off.
#include <gtest/gtest.h>

#include "plugins/libav/StampLine.h"

namespace {

constexpr int kRate = 44100;
constexpr AVRational kMilliseconds{1, 1000};
constexpr int kFrames = 1024;

std::int64_t InMilliseconds(std::int64_t packet) { return packet * kFrames * 1000 / kRate; }

// A line along packets of one length, which knows of it or not.
class CLineUnderTest {
public:
    explicit CLineUnderTest(bool counted, bool vague = false)
        : m_bCounted(counted), m_line(CTimeline(kMilliseconds, kRate), counted, vague) {}

    bool Accepts(std::int64_t time) { return m_line.Accepts(time, m_bCounted ? kFrames : 0); }

    // Packets from number `first` on, which stand where they belong or `offset` behind it.
    bool AcceptsRun(std::int64_t first, int count, std::int64_t offset = 0) {
        bool accepts = true;
        for (int i = 0; i < count; ++i) accepts &= Accepts(InMilliseconds(first + i) + offset);
        return accepts;
    }

    void BeginAnew() { m_line.BeginAnew(); }

    const CStampLine& Line() const { return m_line; }

private:
    bool m_bCounted;
    CStampLine m_line;
};

class LibavStampLine : public testing::TestWithParam<bool> {};

TEST_P(LibavStampLine, RunsOnWithTheSound) {
    CLineUnderTest line(GetParam());
    EXPECT_FALSE(line.Line().HasBegun());
    EXPECT_TRUE(line.AcceptsRun(0, 1000));
    EXPECT_TRUE(line.Line().HasBegun());
    EXPECT_FALSE(line.Line().GoesBack());
}

TEST_P(LibavStampLine, BreaksOffBehindAGap) {
    CLineUnderTest line(GetParam());
    ASSERT_TRUE(line.AcceptsRun(0, 100));
    EXPECT_TRUE(line.AcceptsRun(100, 1, 5000));
    EXPECT_FALSE(line.AcceptsRun(101, 1, 5000));
    EXPECT_FALSE(line.Line().GoesBack());
}

TEST_P(LibavStampLine, BreaksOffWhereAnotherRecordingWasJoinedOn) {
    CLineUnderTest line(GetParam());
    ASSERT_TRUE(line.AcceptsRun(0, 100));
    EXPECT_TRUE(line.AcceptsRun(0, 1));
    EXPECT_FALSE(line.AcceptsRun(1, 1));
    EXPECT_TRUE(line.Line().GoesBack());
}

// A packet is 23 ms long.
TEST_P(LibavStampLine, GoesBackByMoreThanASecondOrToTheBeginning) {
    for (const std::int64_t packet : {0, 20, 50, 60, 90}) {
        CLineUnderTest line(GetParam());
        ASSERT_TRUE(line.AcceptsRun(0, 100));
        EXPECT_FALSE(line.AcceptsRun(packet, 2));
        EXPECT_EQ(line.Line().GoesBack(), packet <= 50) << packet;
    }
    CLineUnderTest line(GetParam());
    ASSERT_TRUE(line.AcceptsRun(0, 20));
    EXPECT_FALSE(line.AcceptsRun(0, 2));
    EXPECT_TRUE(line.Line().GoesBack());
}

TEST_P(LibavStampLine, KnowsItsBeginningBehindABreak) {
    for (const std::int64_t packet : {0, 20, 40, 44}) {
        CLineUnderTest line(GetParam());
        ASSERT_TRUE(line.AcceptsRun(0, 20));
        ASSERT_FALSE(line.AcceptsRun(40, 2));
        line.BeginAnew();
        EXPECT_FALSE(line.Line().HasBegun());
        ASSERT_TRUE(line.AcceptsRun(42, 10));
        EXPECT_FALSE(line.AcceptsRun(packet, 2));
        EXPECT_EQ(line.Line().GoesBack(), packet == 0) << packet;
    }
}

TEST_P(LibavStampLine, ForgivesOneThatBelongsElsewhere) {
    for (const std::int64_t offset : {5000, -1500}) {
        CLineUnderTest line(GetParam());
        ASSERT_TRUE(line.AcceptsRun(0, 100));
        EXPECT_TRUE(line.AcceptsRun(100, 1, offset));
        EXPECT_TRUE(line.AcceptsRun(101, 100));
        EXPECT_FALSE(line.Line().GoesBack());
    }
}

TEST_P(LibavStampLine, PassesThosePacketsThatHaveNone) {
    CLineUnderTest line(GetParam());
    ASSERT_TRUE(line.AcceptsRun(0, 100));
    EXPECT_TRUE(line.Accepts(AV_NOPTS_VALUE));
    EXPECT_TRUE(line.AcceptsRun(101, 100));
}

INSTANTIATE_TEST_SUITE_P(Frames, LibavStampLine, testing::Bool(),
                         [](const auto& test) { return test.param ? "Counted" : "Uncounted"; });

// A millisecond in ten packets, which no two of them show.
TEST(LibavCountedStampLine, BreaksOffWhereAGapGrowsSlowly) {
    CLineUnderTest line(true);
    bool accepts = true;
    for (int i = 0; i < 100; ++i) accepts &= line.Accepts(InMilliseconds(i) + i / 10);
    EXPECT_FALSE(accepts);
}

TEST(LibavCountedStampLine, AllowsAPacketWhereTimesAreVague) {
    for (const bool vague : {false, true}) {
        CLineUnderTest line(true, vague);
        ASSERT_TRUE(line.AcceptsRun(0, 100));
        EXPECT_EQ(line.AcceptsRun(100, 100, InMilliseconds(1)), vague);
    }
}

// 1536 frames are 3134.7 units, and 3134 are counted.
TEST(LibavCountedStampLine, AllowsRoundingsThatAddUp) {
    CStampLine line(CTimeline({1, 90000}, kRate), true, false);
    bool accepts = true;
    for (std::int64_t i = 0; i < 1000; ++i) accepts &= line.Accepts(i * 3134, 1536);
    EXPECT_TRUE(accepts);
}

// Twice what was longest at the beginning.
TEST(LibavUncountedStampLine, AllowsLongerPacketsThanTheFirst) {
    CLineUnderTest line(false);
    bool accepts = true;
    std::int64_t time = 0;
    for (int i = 0; i < 100; ++i) accepts &= line.Accepts(time += i < 20 ? 100 : 200);
    EXPECT_TRUE(accepts);
    EXPECT_TRUE(line.Accepts(time + 201));
    EXPECT_FALSE(line.Accepts(time + 402));
}

}  // namespace

// Positions out of timestamps that are exact, rounded or adrift.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "plugins/libav/Timeline.h"

namespace {

constexpr int kRate = 44100;
constexpr AVRational kMilliseconds{1, 1000};

// Teaches the first blocks of the given lengths, over and over, with the timestamps that `time` gives to positions.
CTimeline Taught(AVRational base, const std::vector<int>& blocks,
                 const std::function<std::int64_t(std::int64_t)>& time) {
    CTimeline timeline(base, kRate);
    std::int64_t position = 0;
    for (std::size_t i = 0; !timeline.KnowsEnough(); ++i) {
        timeline.Learn({time(position), position});
        position += blocks[i % blocks.size()];
    }
    return timeline;
}

// `count` blocks from `position` on, counted from 0.
std::vector<SStamp> RunFrom(std::int64_t position, int count, int block,
                            const std::function<std::int64_t(std::int64_t)>& time) {
    std::vector<SStamp> run;
    for (int i = 0; i < count; ++i) run.push_back({time(position + i * block), std::int64_t{i} * block});
    return run;
}

std::int64_t InMilliseconds(std::int64_t position) {
    return std::llround(static_cast<double>(position) * 1000 / kRate) + 92;
}

TEST(LibavTimeline, TimestampsOfEverySampleTellThePositionAtOnce) {
    const auto time = [](std::int64_t position) { return position - 1024; };
    const CTimeline timeline = Taught({1, kRate}, {1024}, time);
    EXPECT_TRUE(timeline.KnowsEnough());
    EXPECT_EQ(timeline.Locate(RunFrom(7654321, 1, 1024, time)), 7654321);
    EXPECT_EQ(timeline.TimeAt(7654321), 7653297);
    EXPECT_EQ(timeline.PositionNear(7653297), 7654321);
}

TEST(LibavTimeline, NothingIsKnownBeforeABlockWas) {
    CTimeline timeline({1, kRate}, kRate);
    EXPECT_TRUE(timeline.IsEmpty());
    EXPECT_FALSE(timeline.Locate({{5, 0}}));
}

TEST(LibavTimeline, MillisecondsTellTheBlockOfAConstantLength) {
    const CTimeline timeline = Taught(kMilliseconds, {1024}, InMilliseconds);
    for (const std::int64_t block : {1000, 1001, 54321}) {
        EXPECT_EQ(timeline.Locate(RunFrom(block * 1024, 5, 1024, InMilliseconds)), block * 1024);
    }
}

TEST(LibavTimeline, MillisecondsTellTheBlockAmongShortAndLongOnes) {
    const CTimeline timeline = Taught(kMilliseconds, {128, 576, 1024, 1024, 576, 128, 128}, InMilliseconds);
    for (const std::int64_t position : {64 * 10007, 64 * 54322}) {
        EXPECT_EQ(timeline.Locate(RunFrom(position, 12, 576, InMilliseconds)), position);
    }
}

// Short blocks have led away from where blocks began.
TEST(LibavTimeline, PlaceWhereNoBlockBeganSoFarTellsNothing) {
    CTimeline timeline = Taught(kMilliseconds, {1024}, InMilliseconds);
    const std::vector<SStamp> run = RunFrom(500 * 1024 + 512, 60, 1024, InMilliseconds);
    EXPECT_FALSE(timeline.Locate(run));
    timeline.LimitGrid(64);
    EXPECT_EQ(timeline.Locate(run), 500 * 1024 + 512);
}

TEST(LibavTimeline, TimesThatNoSoundHasAreNotPossible) {
    const CTimeline timeline(kMilliseconds, kRate);
    for (const std::int64_t time : {INT64_MIN, INT64_MAX, INT64_MAX / 2, std::int64_t{1} << 59}) {
        EXPECT_FALSE(timeline.IsPossible(time)) << time;
    }
    EXPECT_TRUE(timeline.IsPossible(-5));
    EXPECT_TRUE(timeline.IsPossible(std::int64_t{1000} * 3600 * 24 * 365));
}

TEST(LibavTimeline, TooFewBlocksOfAnyLengthTellNothing) {
    const CTimeline timeline = Taught(kMilliseconds, {64, 65, 66, 67, 68}, InMilliseconds);
    EXPECT_FALSE(timeline.Locate(RunFrom(123456, 5, 64, InMilliseconds)));
    EXPECT_FALSE(timeline.Locate(RunFrom(123456, 2, 64, InMilliseconds)));
}

// 1536 frames are 3134.7 units, and 3134 are counted.
TEST(LibavTimeline, RoundingsThatAddUpStillCountTheBlocks) {
    const auto time = [](std::int64_t position) { return position / 1536 * 3134; };
    const CTimeline timeline = Taught({1, 90000}, {1536}, time);
    EXPECT_EQ(timeline.Locate(RunFrom(1536 * 100000, 4, 1536, time)), 1536 * 100000);
}

TEST(LibavTimeline, TimestampsThatStandStillTellNothing) {
    const auto time = [](std::int64_t /*position*/) { return 0; };
    CTimeline timeline(kMilliseconds, kRate);
    for (int i = 0; i < 40; ++i) timeline.Learn({0, i * 160});
    EXPECT_FALSE(timeline.Locate(RunFrom(16000, 5, 160, time)));
}

TEST(LibavTimeline, WhatComesBeforeAGapIsForgotten) {
    CTimeline timeline(kMilliseconds, kRate);
    timeline.Learn({0, 0});
    timeline.Learn({23, 1024});
    for (std::int64_t i = 2; i < 60; ++i) timeline.Learn({InMilliseconds(i * 1024) + 5000, i * 1024});
    const auto late = [](std::int64_t position) { return InMilliseconds(position) + 5000; };
    EXPECT_EQ(timeline.Locate(RunFrom(1024 * 500, 5, 1024, late)), 1024 * 500);
}

TEST(LibavTimeline, ARunGoesOnWhereTimeAndFramesGrowAlike) {
    const CTimeline timeline = Taught(kMilliseconds, {1024}, InMilliseconds);
    EXPECT_TRUE(timeline.Continues({100, 0}, {123, 1024}));
    EXPECT_TRUE(timeline.Continues({100, 0}, {124, 1024}));
    EXPECT_FALSE(timeline.Continues({100, 0}, {100, 1024}));
    EXPECT_FALSE(timeline.Continues({100, 0}, {146, 1024}));
}

}  // namespace

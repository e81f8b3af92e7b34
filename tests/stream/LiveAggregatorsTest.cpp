// The count of live aggregators.
#include <gtest/gtest.h>

#include <memory>
#include <thread>
#include <vector>

#include "stream/LiveAggregators.h"
#include "tests/stream/SourceFixture.h"
#include "tests/support/FakeEncoder.h"

namespace {

class LiveAggregators : public support::CSourceFixture {};

std::int64_t LockedCount() {
    pthread_mutex_lock(&g_AggregatorsMutex);
    const std::int64_t count = g_lAggregators;
    pthread_mutex_unlock(&g_AggregatorsMutex);
    return count;
}

TEST_F(LiveAggregators, StartsAtZero) { EXPECT_EQ(LockedCount(), 0); }

TEST_F(LiveAggregators, ASourceCountsFromConstructionToDestruction) {
    ASSERT_TRUE(Wrap(nullptr));
    EXPECT_EQ(LockedCount(), 1);
    m_pAggregator->AddRef();
    m_pAggregator->Release();
    EXPECT_EQ(LockedCount(), 1);
    Close();
    EXPECT_EQ(LockedCount(), 0);
}

TEST_F(LiveAggregators, AnInvalidSourceCountsWhileItExists) {
    m_script.m_denied.insert(IID_IProcess);
    m_pStream = support::NewDecoder(m_script);
    {
        const CSrcConvAggregator source(m_manager.Get(), &m_pStream, nullptr);
        EXPECT_FALSE(source.IsValid());
        EXPECT_EQ(LockedCount(), 1);
    }
    EXPECT_EQ(LockedCount(), 0);
}

TEST_F(LiveAggregators, ATargetCountsFromConstructionToDestruction) {
    support::SEncoderScript encoder;
    support::CFakeTargetFactory targets;
    targets.m_pEncoder = &encoder;
    IUnknown* stream = nullptr;
    ASSERT_TRUE(m_manager->CreateURLAudioTarget(&targets, &stream, support::kCompactDisc, nullptr));
    EXPECT_EQ(LockedCount(), 1);
    stream->Release();
    EXPECT_EQ(LockedCount(), 0);
}

TEST_F(LiveAggregators, SourcesAndTargetsShareTheCount) {
    support::SEncoderScript encoder;
    support::CFakeTargetFactory targets;
    targets.m_pEncoder = &encoder;
    IUnknown* stream = nullptr;
    ASSERT_TRUE(Wrap(nullptr));
    ASSERT_TRUE(m_manager->CreateURLAudioTarget(&targets, &stream, support::kCompactDisc, nullptr));
    EXPECT_EQ(LockedCount(), 2);
    Close();
    EXPECT_EQ(LockedCount(), 1);
    stream->Release();
}

TEST_F(LiveAggregators, TheCountIsLoweredBeforeTheDecoderIsLetGoOf) {
    ASSERT_TRUE(Wrap(nullptr));
    std::int64_t atFirstRelease = -1;
    m_script.m_onRelease = [&] {
        if (atFirstRelease < 0) atFirstRelease = LockedCount();
    };
    Close();
    EXPECT_EQ(atFirstRelease, 0);
}

TEST_F(LiveAggregators, TheMutexIsAPlainOneThatStaysUnlocked) {
    ASSERT_TRUE(Wrap(nullptr));
    EXPECT_EQ(pthread_mutex_trylock(&g_AggregatorsMutex), 0);
    EXPECT_EQ(pthread_mutex_trylock(&g_AggregatorsMutex), EBUSY);  // not recursive
    pthread_mutex_unlock(&g_AggregatorsMutex);
}

TEST_F(LiveAggregators, ThreadsCountTogether) {
    constexpr int kThreads = 4;
    constexpr int kRounds = 200;
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([this] {
            support::SDecoderScript script;
            for (int round = 0; round < kRounds; ++round) {
                IUnknown* stream = support::NewDecoder(script);
                auto source = std::make_unique<CSrcConvAggregator>(m_manager.Get(), &stream, nullptr);
                if (source->IsValid()) source.release();
                EXPECT_GT(LockedCount(), 0);
                stream->Release();
                script.m_log.Clear();
            }
            EXPECT_EQ(script.m_nAlive, 0);
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(LockedCount(), 0);
}

}  // namespace

// The manager in the hands of many threads: its life, the creation lock and events.
#include <gtest/gtest.h>

#include "pluginmgr/AudioPluginMgr.h"
#include "pluginmgr/GetAudioPluginMgr.h"
#include "tests/support/ManagerHold.h"
#include "tests/threads/CountingReceiver.h"
#include "tests/threads/Together.h"

namespace {

constexpr int kThreads = 8;
constexpr int kRounds = 300;

TEST(ManagerThreads, GettingAndReleasingLeaveNoManagerBehind) {
    RunTogether(kThreads, [](int) {
        for (int round = 0; round < kRounds; ++round) {
            IAudioPluginMgr* manager = nullptr;
            ASSERT_EQ(GetAudioPluginMgr(&manager), 1);
            EXPECT_NE(manager->GetImagesDirectory(), nullptr);
            manager->Release();
        }
    });
    EXPECT_EQ(g_pAudioPluginMgr, nullptr);
}

TEST(ManagerThreads, AreHandedTheSameManagerWhileOneOfThemHoldsIt) {
    const support::CManagerHold held;
    RunTogether(kThreads, [&held](int) {
        for (int round = 0; round < kRounds; ++round) {
            const support::CManagerHold manager;
            EXPECT_EQ(manager.Get(), held.Get());
        }
    });
    EXPECT_EQ(held->AddRef(), 2U);
    EXPECT_EQ(held->Release(), 1U);
}

TEST(ManagerThreads, CountReferencesOfEveryFaceTogether) {
    const support::CManagerHold held;
    RunTogether(kThreads, [&held](int) {
        for (int round = 0; round < kRounds; ++round) {
            void* face = nullptr;
            EXPECT_EQ(held->QueryInterface(IID_IComponentEnum, &face), 0);
            held->AddRef();
            static_cast<IComponentEnum*>(face)->Release();
            held->Release();
        }
    });
    EXPECT_EQ(held->AddRef(), 2U);
    EXPECT_EQ(held->Release(), 1U);
}

TEST(ManagerThreads, TakeTheCreationLockOneAtATime) {
    int entered = 0;  // guarded by the lock alone
    RunTogether(kThreads, [&entered](int thread) {
        for (int round = 0; round < kRounds; ++round) {
            if (thread % 2 == 0) {
                const support::CManagerHold manager;
                continue;
            }
            EXPECT_EQ(m_sectPMCreation.Lock(kInfiniteTimeout), 1);
            EXPECT_EQ(m_sectPMCreation.Lock(0), 1);
            ++entered;
            EXPECT_EQ(m_sectPMCreation.Unlock(), 1);
            EXPECT_EQ(m_sectPMCreation.Unlock(), 1);
        }
    });
    EXPECT_EQ(entered, kThreads / 2 * kRounds);
}

TEST(ManagerThreads, ReceiveWhatTheySendWhileOthersComeAndGo) {
    const support::CManagerHold manager;
    CCountingReceiver permanent(0);
    manager->SubscribeToEvents(&permanent);
    RunTogether(kThreads, [&manager](int thread) {
        const auto event = static_cast<unsigned int>(thread);
        for (int round = 0; round < kRounds; ++round) {
            CCountingReceiver receiver(event);
            EXPECT_TRUE(manager->SubscribeToEvents(&receiver));
            EXPECT_TRUE(manager->SendEvent(event, nullptr));
            EXPECT_TRUE(manager->SendEvent(event, nullptr));
            EXPECT_TRUE(manager->UnsubscribeToEvents(&receiver));
            EXPECT_EQ(receiver.GetOwn(), 2);
        }
    });
    EXPECT_TRUE(manager->UnsubscribeToEvents(&permanent));
    EXPECT_EQ(permanent.GetOwn(), 2 * kRounds);
    EXPECT_EQ(permanent.GetAll(), 2 * kRounds * kThreads);
}

}  // namespace

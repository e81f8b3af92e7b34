// The order in which the decoders are listed.
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "tests/pluginmgr/Manager.h"
#include "tests/pluginmgr/RegisteredComponents.h"

namespace {

using Names = std::vector<std::string>;

Names NamesOf(IComponentEnum& components) {
    Names names;
    for (int i = 0; i < components.GetCount(); ++i) {
        CComPtr<IAudioComponent> component;
        EXPECT_TRUE(components.GetComponent(i, component.Out()));
        names.emplace_back(component->GetName());
    }
    return names;
}

Names Decoders(CAudioPluginMgr& manager) {
    CComPtr<IComponentEnum> decoders;
    EXPECT_TRUE(manager.Get(ACT_DECODER, decoders.Out()));
    return NamesOf(*decoders);
}

class CThreeDecoders {
public:
    CThreeDecoders() : m_manager(ObtainManager()) {
        m_manager->AddComponent(m_first.HandOver(), "first.so", 0);
        m_manager->AddComponent(m_encoder.HandOver(), "encoder.so", 0);
        m_manager->AddComponent(m_second.HandOver(), "second.so", 0);
        m_manager->AddComponent(m_third.HandOver(), "third.so", 0);
    }
    CAudioPluginMgr& operator*() const { return *m_manager; }
    CAudioPluginMgr* operator->() const { return m_manager.Get(); }

    CCountedComponent m_first{ACT_DECODER, "first"};
    CCountedComponent m_encoder{ACT_ENCODER, "encoder"};
    CCountedComponent m_second{ACT_DECODER, "second"};
    CCountedComponent m_third{ACT_DECODER, "third"};

private:
    CComPtr<CAudioPluginMgr> m_manager;
};

TEST(Get, ListsDecodersInTheOrderOfRegistration) {
    const CThreeDecoders manager;
    EXPECT_EQ(Decoders(*manager), (Names{"first", "second", "third"}));
}

TEST(Get, GivesEveryReferenceBackWithTheList) {
    const CThreeDecoders manager;
    CComPtr<IComponentEnum> decoders;
    manager->Get(ACT_DECODER, decoders.Out());
    EXPECT_EQ(manager.m_first.m_nReferences, 2U);
    EXPECT_EQ(manager.m_encoder.m_nReferences, 1U);
    EXPECT_EQ(decoders->AddRef(), 2U);
    EXPECT_EQ(decoders->Release(), 1U);
    decoders.Reset();
    EXPECT_EQ(manager.m_first.m_nReferences, 1U);
    EXPECT_EQ(manager->AddRef(), 2U);
    manager->Release();
}

TEST(Get, ListsNothingButDecoders) {
    const CThreeDecoders manager;
    CMembers members({});
    for (const int type : {0, 2, 4, 5, 6}) {
        IComponentEnum* const untouched = &members;
        IComponentEnum* components = untouched;
        EXPECT_FALSE(manager->Get(static_cast<EAudioComponentType>(type), &components)) << type;
        EXPECT_EQ(components, untouched);
    }
    EXPECT_FALSE(manager->Get(ACT_DECODER, nullptr));
}

TEST(Get, GivesAnEmptyListWithoutDecoders) {
    const auto manager = ObtainManager();
    EXPECT_EQ(Decoders(*manager), Names{});
}

TEST(Get, FollowsTheComponentOrderAndPrunesStaleEntries) {
    const CThreeDecoders manager;
    const char* const order[] = {"second.so*0", "gone.so*0", "encoder.so*0"};
    manager->SetComponentOrder(order, 3);
    EXPECT_EQ(Decoders(*manager), (Names{"second", "first", "third"}));

    // The stale identity is gone: a decoder that appears under it later is not preferred.
    CCountedComponent late(ACT_DECODER, "late");
    manager->AddComponent(late.HandOver(), "gone.so", 0);
    EXPECT_EQ(Decoders(*manager), (Names{"second", "first", "third", "late"}));
}

TEST(Get, TakesEachDecoderOnceHoweverOftenTheOrderNamesIt) {
    const CThreeDecoders manager;
    const char* const order[] = {"third.so*0", "third.so*0", "first.so*0"};
    manager->SetComponentOrder(order, 3);
    EXPECT_EQ(Decoders(*manager), (Names{"third", "first", "second"}));
}

TEST(Get, TakesTheFirstUnusedOneOfSeveralDecodersWithTheSameIdentity) {
    const CThreeDecoders manager;
    CCountedComponent twin(ACT_DECODER, "twin of first");
    manager->AddComponent(twin.HandOver(), "first.so", 0);
    const char* const order[] = {"first.so*0", "third.so*0", "first.so*0"};
    manager->SetComponentOrder(order, 3);
    // A second listing finds both entries again.
    for (int listing = 0; listing < 2; ++listing) {
        EXPECT_EQ(Decoders(*manager), (Names{"first", "third", "twin of first", "second"}));
    }
}

TEST(Get, ComparesIdentitiesWithRegardToCase) {
    const CThreeDecoders manager;
    const char* const order[] = {"THIRD.so*0"};
    manager->SetComponentOrder(order, 1);
    EXPECT_EQ(Decoders(*manager), (Names{"first", "second", "third"}));
}

// A decoder whose references wait for another thread, which lists the decoders and sets their order.
class CWaitingDecoder : public CCountedComponent {
public:
    explicit CWaitingDecoder(CAudioPluginMgr& manager)
        : CCountedComponent(ACT_DECODER, "waiting"), m_manager(manager) {}

    unsigned int AddRef() override {
        WaitForOtherThread();
        return CCountedComponent::AddRef();
    }
    unsigned int Release() override {
        WaitForOtherThread();
        return CCountedComponent::Release();
    }

    std::thread::id m_waits;  // the thread that waits

private:
    void WaitForOtherThread() {
        if (std::this_thread::get_id() != m_waits) return;
        std::thread([this] {
            EXPECT_EQ(Decoders(m_manager).size(), 4U);
            const char* const order[] = {"third.so*0"};
            if (++m_nWaits == 2) m_manager.SetComponentOrder(order, 1);  // the second reference is the new list's
        }).join();
    }

    CAudioPluginMgr& m_manager;
    int m_nWaits = 0;
};

TEST(Get, CallsComponentsWithoutALockAndKeepsAnOrderThatWasSetMeanwhile) {
    const CThreeDecoders manager;
    CWaitingDecoder waiting(*manager);
    manager->AddComponent(waiting.HandOver(), "waiting.so", 0);
    const char* const order[] = {"waiting.so*0", "gone.so*0"};
    manager->SetComponentOrder(order, 2);
    waiting.m_waits = std::this_thread::get_id();
    CComPtr<IComponentEnum> decoders;
    EXPECT_TRUE(manager->Get(ACT_DECODER, decoders.Out()));
    waiting.m_waits = {};
    EXPECT_EQ(Decoders(*manager), (Names{"third", "first", "second", "waiting"}));
}

TEST(Get, KeepsTheOrderWhileThereIsNoDecoder) {
    const auto manager = ObtainManager();
    const char* const order[] = {"late.so*0"};
    manager->SetComponentOrder(order, 1);
    EXPECT_EQ(Decoders(*manager), Names{});
    CCountedComponent early(ACT_DECODER, "early");
    CCountedComponent late(ACT_DECODER, "late");
    manager->AddComponent(early.HandOver(), "early.so", 0);
    manager->AddComponent(late.HandOver(), "late.so", 0);
    EXPECT_EQ(Decoders(*manager), (Names{"late", "early"}));
}

TEST(Set, IsAlwaysRefused) {
    const CThreeDecoders manager;
    IAudioComponent* components[] = {nullptr};
    EXPECT_FALSE(manager->Set(components, 1));
    EXPECT_FALSE(manager->Set(nullptr, 0));
}

}  // namespace

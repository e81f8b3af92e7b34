// Subscription and broadcast of events.
#include <gtest/gtest.h>

#include <functional>
#include <thread>

#include "tests/pluginmgr/Manager.h"

namespace {

class CReceiver : public IEventReceiver {
public:
    CReceiver(std::string name, std::string& log) : m_strName(std::move(name)), m_log(log) {}

    unsigned int AddRef() override { return ++m_nReferenceCalls; }
    unsigned int Release() override { return ++m_nReferenceCalls; }
    int QueryInterface(unsigned long, void** face) override {
        *face = nullptr;
        return kInterfaceMissing;
    }
    bool OnEvent(unsigned int event, IUnknown* parameter) override {
        m_log += m_strName + std::to_string(event) + " ";
        m_pParameter = parameter;
        if (m_inside) m_inside();
        return false;
    }

    std::function<void()> m_inside;
    IUnknown* m_pParameter = nullptr;
    unsigned int m_nReferenceCalls = 0;

private:
    std::string m_strName;
    std::string& m_log;
};

class Events : public testing::Test {
protected:
    CComPtr<CAudioPluginMgr> m_manager = ObtainManager();
    std::string m_log;
    CReceiver m_a{"A", m_log};
    CReceiver m_b{"B", m_log};
};

TEST_F(Events, GoToEveryReceiverOnceInTheOrderOfSubscription) {
    EXPECT_TRUE(m_manager->SubscribeToEvents(&m_a));
    EXPECT_TRUE(m_manager->SubscribeToEvents(&m_b));
    EXPECT_TRUE(m_manager->SubscribeToEvents(&m_a));
    EXPECT_TRUE(m_manager->SendEvent(1, nullptr));
    EXPECT_EQ(m_log, "A1 B1 ");
    EXPECT_TRUE(m_manager->UnsubscribeToEvents(&m_a));
    EXPECT_TRUE(m_manager->SendEvent(2, nullptr));
    EXPECT_EQ(m_log, "A1 B1 B2 ");
    EXPECT_FALSE(m_manager->UnsubscribeToEvents(&m_a));
}

TEST_F(Events, AreSentWithoutReceiversToo) { EXPECT_TRUE(m_manager->SendEvent(7, nullptr)); }

TEST_F(Events, CarryTheirParameterUntouched) {
    m_manager->SubscribeToEvents(&m_a);
    m_manager->SendEvent(1, &m_b);
    EXPECT_EQ(m_a.m_pParameter, &m_b);
    EXPECT_EQ(m_b.m_nReferenceCalls, 0U);
}

TEST_F(Events, BorrowTheirReceivers) {
    m_manager->SubscribeToEvents(&m_a);
    m_manager->SendEvent(1, nullptr);
    m_manager->UnsubscribeToEvents(&m_a);
    EXPECT_EQ(m_a.m_nReferenceCalls, 0U);
}

TEST_F(Events, UnsubscribingAnUnknownReceiverIsFalse) { EXPECT_FALSE(m_manager->UnsubscribeToEvents(&m_a)); }

TEST_F(Events, NumberTheirReceivers) {
    EXPECT_EQ(m_manager->GetReceiverNumber(&m_a), -1);
    m_manager->SubscribeToEvents(&m_a);
    m_manager->SubscribeToEvents(&m_b);
    EXPECT_EQ(m_manager->GetReceiverNumber(&m_a), 0);
    EXPECT_EQ(m_manager->GetReceiverNumber(&m_b), 1);
    m_manager->UnsubscribeToEvents(&m_a);
    EXPECT_EQ(m_manager->GetReceiverNumber(&m_b), 0);
    EXPECT_EQ(m_manager->GetReceiverNumber(nullptr), -1);
}

TEST_F(Events, NumberTheirReceiversWithoutTheLock) {
    m_manager->SubscribeToEvents(&m_a);
    int number = -1;
    m_a.m_inside = [&] { std::thread([&] { number = m_manager->GetReceiverNumber(&m_a); }).join(); };
    m_manager->SendEvent(1, nullptr);
    EXPECT_EQ(number, 0);
}

// A manager that counts how often it is asked for a receiver's number.
class CNumberingManager : public CAudioPluginMgr {
public:
    int GetReceiverNumber(IEventReceiver* receiver) override {
        ++m_nAsked;
        return CAudioPluginMgr::GetReceiverNumber(receiver);
    }

    int m_nAsked = 0;
};

TEST(Subscriptions, AskForTheReceiversNumberThroughTheTable) {
    const CComPtr<CNumberingManager> manager(new CNumberingManager);
    manager->SubscribeToEvents(nullptr);
    EXPECT_EQ(manager->m_nAsked, 1);
    manager->UnsubscribeToEvents(nullptr);
    EXPECT_EQ(manager->m_nAsked, 2);
}

TEST_F(Events, AcceptANullReceiverLikeAnyOther) {
    EXPECT_TRUE(m_manager->SubscribeToEvents(nullptr));
    EXPECT_EQ(m_manager->GetReceiverNumber(nullptr), 0);
    EXPECT_TRUE(m_manager->UnsubscribeToEvents(nullptr));
}

TEST_F(Events, MaySubscribeFromInsideAndReachTheNewcomerAtTheNextSending) {
    m_manager->SubscribeToEvents(&m_a);
    m_a.m_inside = [this] { m_manager->SubscribeToEvents(&m_b); };
    m_manager->SendEvent(1, nullptr);
    EXPECT_EQ(m_log, "A1 ");
    m_manager->SendEvent(2, nullptr);
    EXPECT_EQ(m_log, "A1 A2 B2 ");
}

TEST_F(Events, MayEndSubscriptionsFromInside) {
    m_manager->SubscribeToEvents(&m_a);
    m_manager->SubscribeToEvents(&m_b);
    m_b.m_inside = [this] {
        EXPECT_FALSE(m_manager->UnsubscribeToEvents(nullptr));
        EXPECT_TRUE(m_manager->UnsubscribeToEvents(&m_b));
    };
    EXPECT_TRUE(m_manager->SendEvent(1, nullptr));
    EXPECT_EQ(m_log, "A1 B1 ");

    m_manager->SubscribeToEvents(&m_b);
    m_a.m_inside = [this] { EXPECT_TRUE(m_manager->UnsubscribeToEvents(&m_b)); };
    EXPECT_TRUE(m_manager->SendEvent(2, nullptr));
    EXPECT_EQ(m_log, "A1 B1 A2 ");
}

TEST_F(Events, MaySendFromInside) {
    m_manager->SubscribeToEvents(&m_a);
    m_manager->SubscribeToEvents(&m_b);
    m_a.m_inside = [this] {
        m_a.m_inside = nullptr;
        m_manager->SendEvent(2, nullptr);
    };
    m_manager->SendEvent(1, nullptr);
    EXPECT_EQ(m_log, "A1 A2 B2 B1 ");
}

TEST_F(Events, HoldTheLockWhileTheyAreDelivered) {
    bool subscribed = false;
    std::thread other;
    m_a.m_inside = [&] {
        other = std::thread([&] {
            m_manager->SubscribeToEvents(&m_b);
            subscribed = true;
        });
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        EXPECT_EQ(m_manager->GetReceiverNumber(&m_b), -1);
    };
    m_manager->SubscribeToEvents(&m_a);
    m_manager->SendEvent(1, nullptr);
    other.join();
    EXPECT_TRUE(subscribed);
    EXPECT_EQ(m_manager->GetReceiverNumber(&m_b), 1);
}

TEST_F(Events, NeitherReleaseNorNotifyReceiversAtTheManagersEnd) {
    m_manager->SubscribeToEvents(&m_a);
    m_manager.Reset();
    EXPECT_EQ(m_log, "");
    EXPECT_EQ(m_a.m_nReferenceCalls, 0U);
}

TEST_F(Events, ArriveThroughTheFourthSlot) {
    static unsigned int received = 0;
    using Operation = bool (*)(void*, unsigned int, IUnknown*);
    const Operation onEvent = [](void*, unsigned int event, IUnknown*) {
        received = event;
        return true;
    };
    void* table[] = {nullptr, nullptr, nullptr, reinterpret_cast<void*>(onEvent)};
    void* object = static_cast<void*>(table);
    auto* const receiver = reinterpret_cast<IEventReceiver*>(&object);
    m_manager->SubscribeToEvents(receiver);
    m_manager->SendEvent(17, nullptr);
    m_manager->UnsubscribeToEvents(receiver);
    EXPECT_EQ(received, 17U);
}

TEST_F(Events, AreDeliveredOnTheSendersThread) {
    std::thread::id delivered;
    m_a.m_inside = [&] { delivered = std::this_thread::get_id(); };
    m_manager->SubscribeToEvents(&m_a);
    std::thread::id sender;
    std::thread([&] {
        sender = std::this_thread::get_id();
        m_manager->SendEvent(1, nullptr);
    }).join();
    EXPECT_EQ(delivered, sender);
}

}  // namespace

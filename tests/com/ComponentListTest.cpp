// The library's own list of components.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

#include "com/ComponentList.h"
#include "tests/com/CountedComponent.h"
#include "tests/com/VirtualTable.h"

namespace {

static_assert(sizeof(CComponentEnum) == 64, "table 8, items 24, count 32");
static_assert(alignof(CComponentEnum) == 8, "");
static_assert(std::is_base_of<IComponentEnum, CComponentEnum>::value, "");
static_assert(!std::has_virtual_destructor<CComponentEnum>::value, "Release destroys the object directly");

// Writes its letter when it is released.
class CNamedComponent final : public IAudioComponent {
public:
    CNamedComponent(char name, std::string& released) : m_chName(name), m_strReleased(released) {}

    unsigned int AddRef() override { return 1; }
    unsigned int Release() override {
        m_strReleased += m_chName;
        return 0;
    }
    int QueryInterface(unsigned long, void**) override { return kInterfaceMissing; }
    const char* GetName() override { return ""; }
    EAudioComponentType GetType() override { return ACT_DECODER; }
    bool Initialize(IAudioPluginMgr*, IStatus**) override { return true; }
    void Terminate() override {}

private:
    char m_chName;
    std::string& m_strReleased;
};

using FCount = unsigned int (*)(void* face);
using FQuery = int (*)(void* face, unsigned long identity, void** answer);
using FGetCount = int (*)(void* face);
using FGetComponent = bool (*)(void* face, int index, IAudioComponent** component);

// A list that ends with the test.
class ComponentList : public testing::Test {
protected:
    ~ComponentList() override { m_pList->Release(); }

    CCountedComponent m_component;
    CComponentEnum* m_pList = new CComponentEnum;
};

TEST(ComponentListLife, ANewListIsEmptyAndHasOneReference) {
    CComponentEnum* const list = new CComponentEnum;
    EXPECT_EQ(list->GetCount(), 0);
    EXPECT_EQ(list->AddRef(), 2U);
    EXPECT_EQ(list->Release(), 1U);
    EXPECT_EQ(list->Release(), 0U);
}

TEST(ComponentListLife, OneReleaseDestroysANewList) {
    CCountedComponent component;
    CComponentEnum* const list = new CComponentEnum;
    list->Add(&component);
    EXPECT_EQ(list->Release(), 0U);
    EXPECT_EQ(component.m_nReferences, 0U);
}

TEST(ComponentListLife, AFurtherReferenceKeepsTheList) {
    CCountedComponent component;
    CComponentEnum* const list = new CComponentEnum;
    list->Add(&component);
    list->AddRef();
    EXPECT_EQ(list->Release(), 1U);
    EXPECT_EQ(component.m_nReferences, 1U);
    list->Release();
}

TEST(ComponentListLife, TheEndReleasesTheComponentsInOrder) {
    std::string released;
    CNamedComponent a('a', released);
    CNamedComponent b('b', released);
    CNamedComponent c('c', released);
    CComponentEnum* const list = new CComponentEnum;
    for (CNamedComponent* const component : {&b, &a, &c}) list->Add(component);
    list->Release();
    EXPECT_EQ(released, "bac");
}

TEST(ComponentListLife, AComponentAddedTwiceIsReleasedTwice) {
    CCountedComponent component;
    CComponentEnum* const list = new CComponentEnum;
    list->Add(&component);
    list->Add(&component);
    EXPECT_EQ(list->GetCount(), 2);
    EXPECT_EQ(component.m_nReferences, 2U);
    list->Release();
    EXPECT_EQ(component.m_nReferences, 0U);
}

TEST(ComponentListLife, BalancedReferencesFromManyThreadsKeepTheList) {
    CCountedComponent component;
    CComponentEnum* const list = new CComponentEnum;
    list->Add(&component);
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back([list] {
            for (int turn = 0; turn < 2000; ++turn) {
                list->AddRef();
                list->Release();
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(component.m_nReferences, 1U);
    EXPECT_EQ(list->Release(), 0U);
    EXPECT_EQ(component.m_nReferences, 0U);
}

TEST_F(ComponentList, AddTakesOneReference) {
    m_pList->Add(&m_component);
    EXPECT_EQ(m_pList->GetCount(), 1);
    EXPECT_EQ(m_component.m_nReferences, 1U);
}

TEST_F(ComponentList, AddIgnoresNull) {
    m_pList->Add(nullptr);
    EXPECT_EQ(m_pList->GetCount(), 0);
}

TEST_F(ComponentList, GetComponentHandsOutAReference) {
    m_pList->Add(&m_component);
    IAudioComponent* found = nullptr;
    EXPECT_TRUE(m_pList->GetComponent(0, &found));
    EXPECT_EQ(found, &m_component);
    EXPECT_EQ(m_component.m_nReferences, 2U);
    found->Release();
}

TEST_F(ComponentList, GetComponentCountsFromZeroInTheOrderOfAdding) {
    CCountedComponent second;
    m_pList->Add(&m_component);
    m_pList->Add(&second);
    IAudioComponent* found = nullptr;
    EXPECT_TRUE(m_pList->GetComponent(1, &found));
    EXPECT_EQ(found, &second);
    found->Release();
    m_pList->Release();
    m_pList = new CComponentEnum;
}

TEST_F(ComponentList, GetComponentOutsideTheListIsFalseAndTouchesNothing) {
    CCountedComponent untouched;
    m_pList->Add(&m_component);
    for (const int index : {-1, 1, 2, 2147483647, -2147483647 - 1}) {
        IAudioComponent* found = &untouched;
        EXPECT_FALSE(m_pList->GetComponent(index, &found)) << index;
        EXPECT_EQ(found, &untouched) << index;
    }
    EXPECT_EQ(m_component.m_nReferences, 1U);
    EXPECT_EQ(untouched.m_nReferences, 0U);
}

TEST_F(ComponentList, GetComponentWithoutAnOutPointerIsFalseAndTouchesNothing) {
    m_pList->Add(&m_component);
    EXPECT_FALSE(m_pList->GetComponent(0, nullptr));
    EXPECT_EQ(m_component.m_nReferences, 1U);
}

TEST_F(ComponentList, ZeroAndSixteenAreTheListItself) {
    for (const unsigned long identity : {0UL, 16UL}) {
        void* face = nullptr;
        EXPECT_EQ(m_pList->QueryInterface(identity, &face), 0) << identity;
        EXPECT_EQ(face, m_pList) << identity;
        EXPECT_EQ(m_pList->Release(), 1U) << identity;
    }
}

TEST_F(ComponentList, AnyOtherIdentityIsDenied) {
    for (const unsigned long identity : {1UL, 4UL, 17UL, 65UL}) {
        void* face = &m_component;
        EXPECT_EQ(m_pList->QueryInterface(identity, &face), 2) << identity;
        EXPECT_EQ(face, nullptr) << identity;
    }
    EXPECT_EQ(m_pList->AddRef(), 2U);
    m_pList->Release();
}

TEST_F(ComponentList, AQueryWithoutAnOutPointerReturnsThree) {
    EXPECT_EQ(m_pList->QueryInterface(16, nullptr), 3);
    EXPECT_EQ(m_pList->QueryInterface(99, nullptr), 3);
    EXPECT_EQ(m_pList->AddRef(), 2U);
    m_pList->Release();
}

TEST_F(ComponentList, LayoutIsTheItemsAndThenTheCount) {
    m_pList->Add(&m_component);
    IAudioComponent** items = nullptr;
    std::memcpy(&items, reinterpret_cast<char*>(m_pList) + 8, sizeof(items));
    EXPECT_EQ(items[0], &m_component);
    int count = 0;
    ASSERT_EQ(sem_getvalue(reinterpret_cast<sem_t*>(reinterpret_cast<char*>(m_pList) + 32), &count), 0);
    EXPECT_EQ(count, 1);
}

TEST_F(ComponentList, SlotsZeroToTwoAreThoseOfTheRootInterface) {
    EXPECT_EQ(CallSlot<FCount>(m_pList, 0), 2U);
    EXPECT_EQ(CallSlot<FCount>(m_pList, 1), 1U);
    void* face = nullptr;
    EXPECT_EQ(CallSlot<FQuery>(m_pList, 2, 16UL, &face), 0);
    EXPECT_EQ(face, m_pList);
    m_pList->Release();
}

TEST_F(ComponentList, SlotsThreeAndFourCountAndGet) {
    m_pList->Add(&m_component);
    EXPECT_EQ(CallSlot<FGetCount>(m_pList, 3), 1);
    IAudioComponent* found = nullptr;
    EXPECT_TRUE(CallSlot<FGetComponent>(m_pList, 4, 0, &found));
    EXPECT_EQ(found, &m_component);
    found->Release();
}

TEST_F(ComponentList, SlotsHoldTheExportedFunctions) {
    constexpr const char* kSymbols[] = {
        "_ZN14CComponentEnum6AddRefEv",
        "_ZN14CComponentEnum7ReleaseEv",
        "_ZN14CComponentEnum14QueryInterfaceEmPPv",
        "_ZN14CComponentEnum8GetCountEv",
        "_ZN14CComponentEnum12GetComponentEiPP15IAudioComponent",
    };
    std::size_t slot = 0;
    for (const char* const symbol : kSymbols) {
        EXPECT_TRUE(SlotHolds(m_pList, slot, symbol)) << slot << " holds " << SlotSymbol(m_pList, slot);
        ++slot;
    }
}

}  // namespace

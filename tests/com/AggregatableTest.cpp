// The base class of aggregatable objects and the slots of its interface.
#include <gtest/gtest.h>

#include <cstring>
#include <new>
#include <thread>
#include <type_traits>
#include <vector>

#include "com/Aggregatable.h"
#include "com/InterfaceIds.h"
#include "com/QueryTable.h"
#include "tests/com/VirtualTable.h"

namespace {

static_assert(sizeof(IAggregatable) == 8, "one table and nothing else");
static_assert(sizeof(CAggregatable) == 56, "table 8, count 32, outer object 8, flags 4, padding 4");
static_assert(alignof(CAggregatable) == 8, "");
static_assert(std::is_abstract<CAggregatable>::value, "four operations are left to the deriving class");
static_assert(std::has_virtual_destructor<CAggregatable>::value, "");
static_assert(std::is_base_of<IAggregatable, CAggregatable>::value, "");

class COuter : public IUnknown {
public:
    unsigned int AddRef() override { return ++m_nReferences; }
    unsigned int Release() override { return --m_nReferences; }
    int QueryInterface(unsigned long, void**) override { return kInterfaceMissing; }

    unsigned int m_nReferences = 0;
};

// Delegates as an aggregatable stream of a plug-in does, and tells when it ends and when its memory is given back.
class CInner : public CAggregatable {
public:
    explicit CInner(unsigned int flags) : CAggregatable(flags) {}
    ~CInner() override { ++s_nDestroyed; }

    static void* operator new(std::size_t size) { return ::operator new(size); }
    static void operator delete(void* memory) {
        ++s_nFreed;
        ::operator delete(memory);
    }

    unsigned int AddRef() override { return InnerAddRef(); }
    unsigned int Release() override { return InnerRelease(); }
    int QueryInterface(unsigned long identity, void** face) override { return InnerQueryInterface(identity, face); }
    int InnerQueryInterface(unsigned long identity, void** face) override {
        return AnswerQuery(*this, identity, face, {{IID_IUnknown, this}, {IID_IAggregatable, this}});
    }

    static int s_nDestroyed;
    static int s_nFreed;
};

int CInner::s_nDestroyed = 0;
int CInner::s_nFreed = 0;

template <typename T>
T FieldAt(const void* object, std::size_t offset) {
    T field;
    std::memcpy(&field, static_cast<const char*>(object) + offset, sizeof(field));
    return field;
}

using FCount = unsigned int (*)(void* face);
using FQuery = int (*)(void* face, unsigned long identity, void** answer);
using FSetAggregator = bool (*)(void* face, IUnknown* outer);
using FGetAggregator = bool (*)(void* face, IUnknown** outer);
using FDestroy = void (*)(void* face);

TEST(Aggregatable, StartsWithAnInnerCountOfZero) {
    CInner* const inner = new CInner(0);
    EXPECT_EQ(inner->InnerAddRef(), 1U);
    EXPECT_EQ(inner->InnerAddRef(), 2U);
    EXPECT_EQ(inner->InnerRelease(), 1U);
    EXPECT_EQ(CInner::s_nDestroyed, 0);
    EXPECT_EQ(inner->InnerRelease(), 0U);
}

TEST(Aggregatable, TheLastInnerReleaseDeletesTheObject) {
    CInner* const inner = new CInner(0);
    inner->InnerAddRef();
    EXPECT_EQ(inner->InnerRelease(), 0U);
    EXPECT_EQ(CInner::s_nDestroyed, 1);
    EXPECT_EQ(CInner::s_nFreed, 1);
}

TEST(Aggregatable, FlagBitZeroKeepsTheObjectAfterItsLastInnerRelease) {
    CInner inner(1);
    inner.InnerAddRef();
    EXPECT_EQ(inner.InnerRelease(), 0U);
    EXPECT_EQ(CInner::s_nDestroyed, 0);
    EXPECT_EQ(inner.InnerAddRef(), 1U);
    EXPECT_EQ(inner.InnerRelease(), 0U);
}

TEST(Aggregatable, OtherFlagBitsAloneDoNotKeepTheObject) {
    CInner* const inner = new CInner(~1U);
    inner->InnerAddRef();
    EXPECT_EQ(inner->InnerRelease(), 0U);
    EXPECT_EQ(CInner::s_nDestroyed, 1);
}

TEST(Aggregatable, OtherFlagBitsDoNotDisturbBitZero) {
    CInner inner(~0U);
    inner.InnerAddRef();
    EXPECT_EQ(inner.InnerRelease(), 0U);
    EXPECT_EQ(CInner::s_nDestroyed, 0);
}

TEST(Aggregatable, SetAggregatorStoresTheOuterObjectWithoutAReference) {
    COuter outer;
    CInner inner(1);
    EXPECT_TRUE(inner.SetAggregator(&outer));
    EXPECT_EQ(outer.m_nReferences, 0U);
}

TEST(Aggregatable, TheEndOfTheObjectReleasesNoOuterObject) {
    COuter outer;
    outer.m_nReferences = 7;
    { CInner(1).SetAggregator(&outer); }
    EXPECT_EQ(outer.m_nReferences, 7U);
}

TEST(Aggregatable, GetAggregatorHandsOutTheOuterObjectWithOneReference) {
    COuter outer;
    CInner inner(1);
    inner.SetAggregator(&outer);
    IUnknown* found = nullptr;
    EXPECT_TRUE(inner.GetAggregator(&found));
    EXPECT_EQ(found, &outer);
    EXPECT_EQ(outer.m_nReferences, 1U);
}

TEST(Aggregatable, GetAggregatorWithoutAnOuterObjectSucceedsAndStoresNull) {
    COuter unrelated;
    CInner inner(1);
    IUnknown* found = &unrelated;
    EXPECT_TRUE(inner.GetAggregator(&found));
    EXPECT_EQ(found, nullptr);
}

TEST(Aggregatable, GetAggregatorWithoutAnOutPointerIsFalseAndTakesNoReference) {
    COuter outer;
    CInner inner(1);
    inner.SetAggregator(&outer);
    EXPECT_FALSE(inner.GetAggregator(nullptr));
    EXPECT_EQ(outer.m_nReferences, 0U);
}

TEST(Aggregatable, SetAggregatorWithNullForgetsTheOuterObject) {
    COuter outer;
    CInner inner(1);
    inner.SetAggregator(&outer);
    EXPECT_TRUE(inner.SetAggregator(nullptr));
    IUnknown* found = &outer;
    EXPECT_TRUE(inner.GetAggregator(&found));
    EXPECT_EQ(found, nullptr);
    EXPECT_EQ(outer.m_nReferences, 0U);
}

TEST(Aggregatable, BalancedInnerReferencesFromManyThreadsKeepTheObject) {
    CInner* const inner = new CInner(0);
    inner->InnerAddRef();
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back([inner] {
            for (int turn = 0; turn < 2000; ++turn) {
                inner->InnerAddRef();
                inner->InnerRelease();
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(CInner::s_nDestroyed, 0);
    EXPECT_EQ(inner->InnerRelease(), 0U);
    EXPECT_EQ(CInner::s_nDestroyed, 1);
}

TEST(AggregatableLayout, HoldsCountOuterObjectAndFlagsInThisOrder) {
    COuter outer;
    CInner inner(0xA0000001);
    inner.SetAggregator(&outer);
    inner.InnerAddRef();
    inner.InnerAddRef();
    int count = 0;
    ASSERT_EQ(sem_getvalue(reinterpret_cast<sem_t*>(reinterpret_cast<char*>(&inner) + 8), &count), 0);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(FieldAt<IUnknown*>(&inner, 40), &outer);
    EXPECT_EQ(FieldAt<unsigned int>(&inner, 48), 0xA0000001U);
}

TEST(AggregatableSlots, ZeroToTwoAreThoseOfTheRootInterface) {
    CInner inner(1);
    EXPECT_EQ(CallSlot<FCount>(&inner, 0), 1U);
    EXPECT_EQ(CallSlot<FCount>(&inner, 0), 2U);
    EXPECT_EQ(CallSlot<FCount>(&inner, 1), 1U);
    void* face = nullptr;
    EXPECT_EQ(CallSlot<FQuery>(&inner, 2, 4UL, &face), 0);
    EXPECT_EQ(face, &inner);
}

TEST(AggregatableSlots, ThreeAndFourSetAndGetTheOuterObject) {
    COuter outer;
    CInner inner(1);
    EXPECT_TRUE(CallSlot<FSetAggregator>(&inner, 3, static_cast<IUnknown*>(&outer)));
    EXPECT_EQ(outer.m_nReferences, 0U);
    IUnknown* found = nullptr;
    EXPECT_TRUE(CallSlot<FGetAggregator>(&inner, 4, &found));
    EXPECT_EQ(found, &outer);
    EXPECT_EQ(outer.m_nReferences, 1U);
}

TEST(AggregatableSlots, FiveIsTheInnerQuery) {
    CInner inner(1);
    void* face = &inner;
    EXPECT_EQ(CallSlot<FQuery>(&inner, 5, 99UL, &face), 2);
    EXPECT_EQ(face, nullptr);
    EXPECT_EQ(CallSlot<FQuery>(&inner, 5, 4UL, &face), 0);
    EXPECT_EQ(face, &inner);
}

TEST(AggregatableSlots, SixAndSevenAreTheInnerCount) {
    CInner inner(1);
    EXPECT_EQ(CallSlot<FCount>(&inner, 6), 1U);
    EXPECT_EQ(CallSlot<FCount>(&inner, 6), 2U);
    EXPECT_EQ(CallSlot<FCount>(&inner, 7), 1U);
}

TEST(AggregatableSlots, EightDestroysWithoutFreeing) {
    alignas(CInner) unsigned char storage[sizeof(CInner)];
    CallSlot<FDestroy>(::new (storage) CInner(0), 8);
    EXPECT_EQ(CInner::s_nDestroyed, 1);
    EXPECT_EQ(CInner::s_nFreed, 0);
}

TEST(AggregatableSlots, NineDestroysAndFrees) {
    CallSlot<FDestroy>(new CInner(0), 9);
    EXPECT_EQ(CInner::s_nDestroyed, 1);
    EXPECT_EQ(CInner::s_nFreed, 1);
}

TEST(AggregatableSlots, HoldTheExportedFunctions) {
    CInner inner(1);
    EXPECT_TRUE(SlotHolds(&inner, 3, "_ZN13CAggregatable13SetAggregatorEP8IUnknown")) << SlotSymbol(&inner, 3);
    EXPECT_TRUE(SlotHolds(&inner, 4, "_ZN13CAggregatable13GetAggregatorEPP8IUnknown")) << SlotSymbol(&inner, 4);
    EXPECT_TRUE(SlotHolds(&inner, 6, "_ZN13CAggregatable11InnerAddRefEv")) << SlotSymbol(&inner, 6);
    EXPECT_TRUE(SlotHolds(&inner, 7, "_ZN13CAggregatable12InnerReleaseEv")) << SlotSymbol(&inner, 7);
}

}  // namespace

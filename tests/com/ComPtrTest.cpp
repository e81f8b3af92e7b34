// Ownership by the smart pointer.
#include <gtest/gtest.h>

#include <type_traits>
#include <utility>

#include "com/ComPtr.h"
#include "com/InterfaceIds.h"
#include "com/QueryTable.h"

namespace {

// Offers identity 1 and runs a step of the test's own inside Release.
class CCounted : public IUnknown {
public:
    unsigned int AddRef() override { return ++m_nReferences; }
    unsigned int Release() override {
        --m_nReferences;
        if (m_pHolder != nullptr) m_pSeenInRelease = m_pHolder->Get();
        return m_nReferences;
    }
    int QueryInterface(unsigned long identity, void** face) override {
        return AnswerQuery(*this, identity, face, {{IID_IStatus, this}});
    }

    unsigned int m_nReferences = 1;
    const CComPtr<CCounted>* m_pHolder = nullptr;
    CCounted* m_pSeenInRelease = nullptr;
};

using CPtr = CComPtr<CCounted>;

static_assert(sizeof(CPtr) == sizeof(void*), "stands in the place of a plain pointer");
static_assert(!std::is_convertible<CPtr, CCounted*>::value, "never slips out as a plain pointer");
static_assert(!std::is_convertible<CCounted*, CPtr>::value, "taking a reference is said aloud");
static_assert(std::is_nothrow_move_constructible<CPtr>::value && std::is_nothrow_move_assignable<CPtr>::value, "");

TEST(ComPtr, IsEmptyAtFirst) {
    EXPECT_FALSE(CPtr());
    EXPECT_EQ(CPtr(nullptr).Get(), nullptr);
}

TEST(ComPtr, TakesAReferenceOfItsOwnAndGivesItBack) {
    CCounted object;
    {
        const CPtr pointer(&object);
        EXPECT_EQ(object.m_nReferences, 2U);
        EXPECT_EQ(pointer.Get(), &object);
        EXPECT_EQ(&*pointer, &object);
        EXPECT_EQ(pointer->m_nReferences, 2U);
        EXPECT_TRUE(pointer);
    }
    EXPECT_EQ(object.m_nReferences, 1U);
}

TEST(ComPtr, MadeFromANullObjectIsEmpty) { EXPECT_FALSE(CPtr(static_cast<CCounted*>(nullptr))); }

TEST(ComPtr, AdoptTakesOverTheCallersReference) {
    CCounted object;
    {
        const CPtr pointer = CPtr::Adopt(&object);
        EXPECT_EQ(object.m_nReferences, 1U);
    }
    EXPECT_EQ(object.m_nReferences, 0U);
}

TEST(ComPtr, ACopyHasAReferenceOfItsOwn) {
    CCounted object;
    const CPtr first(&object);
    {
        const CPtr second(first);
        EXPECT_EQ(object.m_nReferences, 3U);
        EXPECT_EQ(second.Get(), &object);
    }
    EXPECT_EQ(object.m_nReferences, 2U);
}

TEST(ComPtr, AMoveTakesTheReferenceAlong) {
    CCounted object;
    CPtr first(&object);
    const CPtr second(std::move(first));
    EXPECT_EQ(object.m_nReferences, 2U);
    EXPECT_EQ(second.Get(), &object);
    EXPECT_EQ(first.Get(), nullptr);
}

TEST(ComPtr, AssignmentReleasesWhatWasHeld) {
    CCounted old;
    CCounted next;
    CPtr pointer(&old);
    const CPtr other(&next);
    pointer = other;
    EXPECT_EQ(old.m_nReferences, 1U);
    EXPECT_EQ(next.m_nReferences, 3U);
    pointer = nullptr;
    EXPECT_EQ(next.m_nReferences, 2U);
}

TEST(ComPtr, MoveAssignmentReleasesWhatWasHeldAndTakesTheReferenceAlong) {
    CCounted old;
    CCounted next;
    CPtr pointer(&old);
    pointer = CPtr(&next);
    EXPECT_EQ(old.m_nReferences, 1U);
    EXPECT_EQ(next.m_nReferences, 2U);
}

TEST(ComPtr, AssignmentToItselfChangesNothing) {
    CCounted object;
    CPtr pointer(&object);
    CPtr& same = pointer;
    pointer = same;
    EXPECT_EQ(object.m_nReferences, 2U);
    pointer = std::move(same);
    EXPECT_EQ(object.m_nReferences, 2U);
    EXPECT_EQ(pointer.Get(), &object);
}

TEST(ComPtr, QueryOwnsTheReferenceOfTheAnswer) {
    CCounted object;
    {
        const CPtr answer = CPtr::Query(&object, 1);
        EXPECT_EQ(answer.Get(), &object);
        EXPECT_EQ(object.m_nReferences, 2U);
    }
    EXPECT_EQ(object.m_nReferences, 1U);
}

TEST(ComPtr, QueryIsEmptyForADeniedInterfaceAndForNoObject) {
    CCounted object;
    EXPECT_FALSE(CPtr::Query(&object, 2));
    EXPECT_EQ(object.m_nReferences, 1U);
    EXPECT_FALSE(CPtr::Query(static_cast<CCounted*>(nullptr), 1));
}

TEST(ComPtr, DetachGivesTheReferenceUp) {
    CCounted object;
    {
        CPtr pointer(&object);
        EXPECT_EQ(pointer.Detach(), &object);
        EXPECT_FALSE(pointer);
    }
    EXPECT_EQ(object.m_nReferences, 2U);
}

TEST(ComPtr, OutReleasesWhatWasHeldAndOwnsWhatIsStored) {
    CCounted old;
    CCounted next;
    {
        CPtr pointer(&old);
        CCounted** const out = pointer.Out();
        EXPECT_EQ(old.m_nReferences, 1U);
        EXPECT_EQ(*out, nullptr);
        *out = &next;
        EXPECT_EQ(pointer.Get(), &next);
    }
    EXPECT_EQ(next.m_nReferences, 0U);
}

TEST(ComPtr, SwapExchangesWithoutTouchingTheCounts) {
    CCounted one;
    CCounted two;
    CPtr first(&one);
    CPtr second(&two);
    first.Swap(second);
    EXPECT_EQ(first.Get(), &two);
    EXPECT_EQ(second.Get(), &one);
    EXPECT_EQ(one.m_nReferences, 2U);
    EXPECT_EQ(two.m_nReferences, 2U);
}

TEST(ComPtr, ResetStillHoldsTheObjectWhileItReleases) {
    CCounted object;
    CPtr pointer(&object);
    object.m_pHolder = &pointer;
    pointer.Reset();
    EXPECT_EQ(object.m_pSeenInRelease, &object);
    EXPECT_EQ(pointer.Get(), nullptr);
    EXPECT_EQ(object.m_nReferences, 1U);
    object.m_pHolder = nullptr;
}

TEST(ComPtr, TheDestructorStillHoldsTheObjectWhileItReleases) {
    CCounted object;
    {
        const CPtr pointer(&object);
        object.m_pHolder = &pointer;
    }
    EXPECT_EQ(object.m_pSeenInRelease, &object);
    EXPECT_EQ(object.m_nReferences, 1U);
}

}  // namespace

// The table of auxiliary objects.
#include <gtest/gtest.h>

#include <cstring>

#include "tests/pluginmgr/Manager.h"

namespace {

class CObject : public IUnknown {
public:
    unsigned int AddRef() override { return ++m_nReferences; }
    unsigned int Release() override { return --m_nReferences; }
    int QueryInterface(unsigned long, void** face) override {
        *face = nullptr;
        return kInterfaceMissing;
    }

    unsigned int m_nReferences = 1;
};

// Detaches another one when the table gives it up.
class CDetachingObject final : public CObject {
public:
    CDetachingObject(CAudioPluginMgr& manager, void* key) : m_manager(manager), m_pKey(key) {}

    unsigned int Release() override {
        const unsigned int count = CObject::Release();
        if (count == 1) m_manager.DetachAuxObject(m_pKey);
        return count;
    }

private:
    CAudioPluginMgr& m_manager;
    void* m_pKey;
};

// Would not outlive what the table does to it: tells whether it was touched after the table had given it up.
class CMortalObject final : public CObject {
public:
    unsigned int AddRef() override {
        m_bTouched = m_bTouched || m_bGone;
        return CObject::AddRef();
    }
    unsigned int Release() override {
        const unsigned int count = CObject::Release();
        m_bGone = count == 1;
        return count;
    }

    bool m_bGone = false;
    bool m_bTouched = false;
};

class AuxObjects : public testing::Test {
protected:
    CObject m_a;
    CObject m_b;
    int m_firstKey = 0;
    int m_secondKey = 0;
    CComPtr<CAudioPluginMgr> m_manager = ObtainManager();
};

TEST_F(AuxObjects, KeepTheFirstObjectOfAKey) {
    EXPECT_TRUE(m_manager->AttachAuxObject(&m_firstKey, &m_a));
    EXPECT_FALSE(m_manager->AttachAuxObject(&m_firstKey, &m_b));
    IUnknown* found = nullptr;
    EXPECT_TRUE(m_manager->GetAuxObject(&m_firstKey, &found));
    EXPECT_EQ(found, &m_a);
    EXPECT_EQ(m_a.m_nReferences, 3U);
    EXPECT_EQ(m_b.m_nReferences, 1U);
}

TEST_F(AuxObjects, AreReleasedWhenDetachedAndLeaveTheOthers) {
    m_manager->AttachAuxObject(&m_firstKey, &m_a);
    m_manager->AttachAuxObject(&m_secondKey, &m_b);
    EXPECT_TRUE(m_manager->DetachAuxObject(&m_firstKey));
    EXPECT_EQ(m_a.m_nReferences, 1U);
    EXPECT_EQ(m_b.m_nReferences, 2U);
    CComPtr<IUnknown> found;
    EXPECT_TRUE(m_manager->GetAuxObject(&m_secondKey, found.Out()));
    EXPECT_EQ(found.Get(), &m_b);
    EXPECT_FALSE(m_manager->GetAuxObject(&m_firstKey, nullptr));
}

TEST_F(AuxObjects, MayDetachAnotherWhenTheyAreReleased) {
    int key = 0;
    CDetachingObject object(*m_manager, &m_secondKey);
    CMortalObject last;
    m_manager->AttachAuxObject(&key, &object);
    m_manager->AttachAuxObject(&m_firstKey, &m_a);
    m_manager->AttachAuxObject(&m_secondKey, &last);
    last.m_bTouched = false;
    EXPECT_TRUE(m_manager->DetachAuxObject(&key));
    EXPECT_EQ(object.m_nReferences, 1U);
    EXPECT_EQ(m_a.m_nReferences, 2U);
    EXPECT_EQ(last.m_nReferences, 1U);
    EXPECT_FALSE(last.m_bTouched);
    EXPECT_TRUE(m_manager->GetAuxObject(&m_firstKey, nullptr));
    EXPECT_FALSE(m_manager->GetAuxObject(&m_secondKey, nullptr));
}

TEST_F(AuxObjects, AnExistenceTestChangesNoCount) {
    m_manager->AttachAuxObject(&m_firstKey, &m_a);
    EXPECT_TRUE(m_manager->GetAuxObject(&m_firstKey, nullptr));
    EXPECT_EQ(m_a.m_nReferences, 2U);
}

TEST_F(AuxObjects, AnUnknownKeyIsFalseAndLeavesTheOutPointer) {
    IUnknown* found = &m_b;
    EXPECT_FALSE(m_manager->DetachAuxObject(&m_firstKey));
    EXPECT_FALSE(m_manager->GetAuxObject(&m_firstKey, &found));
    EXPECT_EQ(found, &m_b);
}

TEST_F(AuxObjects, ANullObjectOccupiesItsKey) {
    EXPECT_TRUE(m_manager->AttachAuxObject(&m_firstKey, nullptr));
    EXPECT_FALSE(m_manager->AttachAuxObject(&m_firstKey, &m_a));
    IUnknown* found = &m_b;
    EXPECT_TRUE(m_manager->GetAuxObject(&m_firstKey, &found));
    EXPECT_EQ(found, nullptr);
    EXPECT_TRUE(m_manager->DetachAuxObject(&m_firstKey));
    EXPECT_TRUE(m_manager->AttachAuxObject(&m_firstKey, &m_a));
}

TEST_F(AuxObjects, TakeANullKeyLikeAnyOther) {
    EXPECT_FALSE(m_manager->GetAuxObject(nullptr, nullptr));
    EXPECT_TRUE(m_manager->AttachAuxObject(nullptr, &m_a));
    EXPECT_FALSE(m_manager->AttachAuxObject(nullptr, &m_b));
    EXPECT_TRUE(m_manager->AttachAuxObject(&m_firstKey, &m_b));
    CComPtr<IUnknown> found;
    EXPECT_TRUE(m_manager->GetAuxObject(nullptr, found.Out()));
    EXPECT_EQ(found.Get(), &m_a);
    EXPECT_TRUE(m_manager->DetachAuxObject(nullptr));
    EXPECT_FALSE(m_manager->GetAuxObject(nullptr, nullptr));
    EXPECT_TRUE(m_manager->GetAuxObject(&m_firstKey, nullptr));
}

// A manager under whose every key an object is found.
class CFullManager : public CAudioPluginMgr {
public:
    bool GetAuxObject(void* /*key*/, IUnknown** object) override {
        EXPECT_EQ(object, nullptr);
        return true;
    }
};

TEST_F(AuxObjects, AreLookedUpThroughTheTableBeforeTheyAreAttached) {
    m_manager.Reset();
    const CComPtr<CFullManager> full(new CFullManager);
    EXPECT_FALSE(full->AttachAuxObject(&m_firstKey, &m_a));
    EXPECT_EQ(m_a.m_nReferences, 1U);
}

TEST_F(AuxObjects, AreReleasedOnceAtTheManagersEnd) {
    m_manager->AttachAuxObject(&m_firstKey, &m_a);
    m_manager->AttachAuxObject(&m_secondKey, &m_b);
    m_manager.Reset();
    EXPECT_EQ(m_a.m_nReferences, 1U);
    EXPECT_EQ(m_b.m_nReferences, 1U);
}

TEST_F(AuxObjects, HoldOneReferencePerCopyOfTheirEntry) {
    using CEntry = CAudioPluginMgr::AUXOBJECT;
    static_assert(sizeof(CEntry) == 3 * sizeof(void*), "table of operations, key, object");
    {
        const CEntry entry(&m_firstKey, &m_a);
        EXPECT_EQ(m_a.m_nReferences, 2U);
        CEntry copy(entry);
        EXPECT_EQ(copy.pKey, &m_firstKey);
        EXPECT_EQ(copy.pObject.Get(), &m_a);
        EXPECT_EQ(m_a.m_nReferences, 3U);
        copy = CEntry(&m_secondKey, &m_b);
        EXPECT_EQ(m_a.m_nReferences, 2U);
        EXPECT_EQ(m_b.m_nReferences, 2U);
        void* words[3];
        std::memcpy(words, static_cast<const void*>(&copy), sizeof words);
        EXPECT_EQ(words[1], &m_secondKey);
        EXPECT_EQ(words[2], &m_b);
    }
    EXPECT_EQ(m_a.m_nReferences, 1U);
    EXPECT_EQ(m_b.m_nReferences, 1U);
}

TEST_F(AuxObjects, SurviveUnloading) {
    m_manager->AttachAuxObject(&m_firstKey, &m_a);
    m_manager->SetPluginDirectory("/no/such/directory");
    m_manager->LoadPlugins();
    EXPECT_TRUE(m_manager->UnloadPlugins());
    EXPECT_TRUE(m_manager->GetAuxObject(&m_firstKey, nullptr));
    EXPECT_EQ(m_a.m_nReferences, 2U);
}

}  // namespace

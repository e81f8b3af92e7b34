// The registry of components, their identities and their order.
#include <gtest/gtest.h>

#include <thread>

#include "com/InterfaceIds.h"
#include "com/QueryTable.h"
#include "tests/pluginmgr/Manager.h"
#include "tests/pluginmgr/PluginDirectory.h"

namespace {

using Names = std::vector<std::string>;

// A component of automatic life that shows its count.
class CCountedComponent : public IAudioComponent {
public:
    explicit CCountedComponent(EAudioComponentType type, const char* name = "counted") : m_pName(name), m_eType(type) {}

    unsigned int AddRef() override { return ++m_nReferences; }
    unsigned int Release() override { return --m_nReferences; }
    int QueryInterface(unsigned long identity, void** face) override {
        return AnswerQuery(*this, identity, face, {{IID_IUnknown, this}, {IID_IComponentEnum, m_pMembers}});
    }
    const char* GetName() override { return m_pName; }
    EAudioComponentType GetType() override { return m_eType; }
    bool Initialize(IAudioPluginMgr*, IStatus**) override { return true; }
    void Terminate() override {}

    // The component with the reference that a registration takes over.
    IAudioComponent* HandOver() {
        AddRef();
        return this;
    }

    unsigned int m_nReferences = 0;
    IComponentEnum* m_pMembers = nullptr;

private:
    const char* m_pName;
    EAudioComponentType m_eType;
};

class CMembers : public IComponentEnum {
public:
    explicit CMembers(std::vector<IAudioComponent*> members) : m_vMembers(std::move(members)) {}

    unsigned int AddRef() override { return 1; }
    unsigned int Release() override {
        ++m_nReleases;
        return 0;
    }
    int QueryInterface(unsigned long, void** face) override {
        *face = nullptr;
        return kInterfaceMissing;
    }
    int GetCount() override { return static_cast<int>(m_vMembers.size()); }
    bool GetComponent(int index, IAudioComponent** component) override {
        *component = m_vMembers[static_cast<std::size_t>(index)];
        if (*component != nullptr) (*component)->AddRef();
        return *component != nullptr;
    }

    int m_nReleases = 0;

private:
    std::vector<IAudioComponent*> m_vMembers;
};

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

TEST(AddComponent, TakesOverTheCallersReference) {
    const auto manager = ObtainManager();
    CCountedComponent component(ACT_ENCODER);
    manager->AddComponent(component.HandOver(), "enc.so", 0);
    EXPECT_EQ(component.m_nReferences, 1U);
    EXPECT_EQ(manager->GetCount(), 1);
}

TEST(AddComponent, KeepsTheFirstIdentityOfAComponentThatIsRegisteredTwice) {
    const auto manager = ObtainManager();
    CCountedComponent component(ACT_ENCODER);
    manager->AddComponent(component.HandOver(), "first.so", 0);
    manager->AddComponent(component.HandOver(), "second.so", 1);
    EXPECT_EQ(manager->GetCount(), 2);
    EXPECT_STREQ(manager->GetComponentStringID(&component).GetText(), "first.so*0");
}

TEST(AddComponent, IgnoresNull) {
    const auto manager = ObtainManager();
    manager->AddComponent(nullptr, "enc.so", 0);
    EXPECT_EQ(manager->GetCount(), 0);
}

TEST(AddComponent, FlattensNestedCollectionsWithTheirOwnPositions) {
    const CPluginDirectory plugins({"collection"});
    const auto manager = ObtainManager();
    manager->SetPluginDirectory(plugins.Path().c_str());
    manager->LoadPlugins();
    EXPECT_EQ(ComponentNames(*manager), (Names{"first", "nested first", "nested second", "last"}));
    Names identities;
    for (int i = 0; i < manager->GetCount(); ++i) {
        CComPtr<IAudioComponent> component;
        manager->GetComponent(i, component.Out());
        identities.emplace_back(manager->GetComponentStringID(component.Get()).GetText());
    }
    EXPECT_EQ(identities, (Names{"collection.so*0", "collection.so*0", "collection.so*1", "collection.so*2"}));
    EXPECT_TRUE(manager->UnloadPlugins());
}

TEST(AddComponent, RegistersTheMembersOfACollectionInItsPlace) {
    const auto manager = ObtainManager();
    CCountedComponent decoder(ACT_DECODER);
    CCountedComponent encoder(ACT_ENCODER);
    CMembers members({&decoder, &encoder});
    CCountedComponent collection(ACT_COLLECTION);
    collection.m_pMembers = &members;
    manager->AddComponent(collection.HandOver(), "name", 0);
    ASSERT_EQ(manager->GetCount(), 2);
    EXPECT_STREQ(manager->GetComponentStringID(&decoder).GetText(), "name*0");
    EXPECT_STREQ(manager->GetComponentStringID(&encoder).GetText(), "name*1");
    EXPECT_STREQ(manager->GetComponentStringID(&collection).GetText(), "*0");
    EXPECT_EQ(decoder.m_nReferences, 1U);
    EXPECT_EQ(encoder.m_nReferences, 1U);
    EXPECT_EQ(members.m_nReleases, 1);
}

TEST(AddComponent, SkipsMembersThatACollectionDoesNotGive) {
    const auto manager = ObtainManager();
    CCountedComponent decoder(ACT_DECODER);
    CMembers members({nullptr, &decoder});
    CCountedComponent collection(ACT_COLLECTION);
    collection.m_pMembers = &members;
    manager->AddComponent(collection.HandOver(), "name", 0);
    ASSERT_EQ(manager->GetCount(), 1);
    EXPECT_STREQ(manager->GetComponentStringID(&decoder).GetText(), "name*1");
}

TEST(AddComponent, RegistersNothingForACollectionWithoutMembers) {
    const auto manager = ObtainManager();
    CMembers members({});
    CCountedComponent empty(ACT_COLLECTION);
    empty.m_pMembers = &members;
    CCountedComponent without(ACT_COLLECTION);
    manager->AddComponent(empty.HandOver(), "name", 0);
    manager->AddComponent(without.HandOver(), "name", 0);
    EXPECT_EQ(manager->GetCount(), 0);
    EXPECT_EQ(members.m_nReleases, 1);
}

TEST(GetComponent, GivesAReference) {
    const auto manager = ObtainManager();
    CCountedComponent component(ACT_ENCODER);
    manager->AddComponent(component.HandOver(), "enc.so", 0);
    IAudioComponent* given = nullptr;
    EXPECT_TRUE(manager->GetComponent(0, &given));
    EXPECT_EQ(given, &component);
    EXPECT_EQ(component.m_nReferences, 2U);
}

TEST(GetComponentInfo, TellsFileNameAndIndex) {
    const auto manager = ObtainManager();
    CCountedComponent first(ACT_ENCODER);
    CCountedComponent second(ACT_DECODER);
    manager->AddComponent(first.HandOver(), "first.so", 3);
    manager->AddComponent(second.HandOver(), "a-rather-long-file-name.so", 7);
    COMPONENT_INFO info;
    EXPECT_TRUE(manager->GetComponentInfo(&second, &info));
    EXPECT_STREQ(info.m_strLibraryFileName.GetText(), "a-rather-long-file-name.so");
    EXPECT_EQ(info.m_nIndex, 7);
    EXPECT_EQ(info.m_strLibraryFileName.GetCapacity(), 2 * 26 + 2);
    EXPECT_TRUE(manager->GetComponentInfo(&first, &info));
    EXPECT_STREQ(info.m_strLibraryFileName.GetText(), "first.so");
    EXPECT_EQ(info.m_strLibraryFileName.GetCapacity(), 2 * 26 + 2);
    EXPECT_EQ(info.m_strLibraryFileName.GetText()[20], '\0');
}

TEST(GetComponentInfo, LeavesTheRecordAloneForAnUnknownComponent) {
    const auto manager = ObtainManager();
    CCountedComponent unknown(ACT_ENCODER);
    COMPONENT_INFO info;
    info.m_strLibraryFileName = "before";
    info.m_nIndex = 5;
    EXPECT_FALSE(manager->GetComponentInfo(&unknown, &info));
    EXPECT_STREQ(info.m_strLibraryFileName.GetText(), "before");
    EXPECT_EQ(info.m_nIndex, 5);
}

TEST(GetComponentStringID, JoinsFileNameAndIndex) {
    const auto manager = ObtainManager();
    CCountedComponent component(ACT_DECODER);
    manager->AddComponent(component.HandOver(), "dec.so", 2);
    EXPECT_STREQ(manager->GetComponentStringID(&component).GetText(), "dec.so*2");
    EXPECT_STREQ(manager->GetComponentStringID(nullptr).GetText(), "*0");
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

TEST(GetUnsupportedComponents, IsAlwaysRefused) {
    const auto manager = ObtainManager();
    IComponentEnum* components = nullptr;
    EXPECT_FALSE(manager->GetUnsupportedComponents(&components));
    EXPECT_FALSE(manager->GetUnsupportedComponents(nullptr));
    EXPECT_EQ(components, nullptr);
}

}  // namespace

// The registry of components and their identities.
#include <gtest/gtest.h>

#include "tests/pluginmgr/Manager.h"
#include "tests/pluginmgr/PluginDirectory.h"
#include "tests/pluginmgr/RegisteredComponents.h"

namespace {

using Names = std::vector<std::string>;

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

TEST(GetUnsupportedComponents, IsAlwaysRefused) {
    const auto manager = ObtainManager();
    IComponentEnum* components = nullptr;
    EXPECT_FALSE(manager->GetUnsupportedComponents(&components));
    EXPECT_FALSE(manager->GetUnsupportedComponents(nullptr));
    EXPECT_EQ(components, nullptr);
}

}  // namespace

// The slots and exact types of the operations of the interfaces, from their headers.
#include <gtest/gtest.h>

#include "com/Aggregatable.h"
#include "com/AppWindow.h"
#include "com/AudioComponent.h"
#include "com/ComponentEnum.h"
#include "com/ComponentInfo.h"
#include "com/ComponentOrder.h"
#include "com/Configurable.h"
#include "com/EventReceiver.h"
#include "com/FeatureSupport.h"
#include "com/NamedSettings.h"
#include "com/Profile.h"
#include "com/Status.h"
#include "com/Unknown.h"
#include "tests/support/InterfaceSlots.h"

namespace {

using support::LengthBehindUnknown;
using support::Slot;

int g_nCalledSlot = -1;

// Each slot notes its number.
template <int Number>
void NoteSlot(void* /*object*/) {
    g_nCalledSlot = Number;
}

// The numbers that the other tests expect are those through which compiled code calls.
TEST(InterfaceSlots, AreTheOnesThatACallGoesThrough) {
    void (*const table[])(void*) = {NoteSlot<0>, NoteSlot<1>, NoteSlot<2>, NoteSlot<3>, NoteSlot<4>, NoteSlot<5>};
    const void* object = static_cast<const void*>(table);
    auto* const status = reinterpret_cast<IStatus*>(&object);
    status->Release();
    EXPECT_EQ(g_nCalledSlot, 1);
    EXPECT_EQ(Slot<unsigned int()>(&IStatus::Release), 1U);
    status->GetSysError();
    EXPECT_EQ(g_nCalledSlot, 5);
    EXPECT_EQ(Slot<unsigned int()>(&IStatus::GetSysError), 5U);
}

TEST(InterfaceSlots, OfIUnknown) {
    EXPECT_EQ(Slot<unsigned int()>(&IUnknown::AddRef), 0U);
    EXPECT_EQ(Slot<unsigned int()>(&IUnknown::Release), 1U);
    EXPECT_EQ((Slot<int(unsigned long, void**)>(&IUnknown::QueryInterface)), 2U);
    EXPECT_EQ(LengthBehindUnknown<IUnknown>(), 3U);
}

TEST(InterfaceSlots, OfIStatus) {
    EXPECT_EQ(Slot<const char*()>(&IStatus::GetDescription), 3U);
    EXPECT_EQ(Slot<EAudioError()>(&IStatus::GetAudioError), 4U);
    EXPECT_EQ(Slot<unsigned int()>(&IStatus::GetSysError), 5U);
    EXPECT_EQ(LengthBehindUnknown<IStatus>(), 6U);
}

TEST(InterfaceSlots, OfIStatusCategory) {
    EXPECT_EQ(Slot<EStatusCategory()>(&IStatusCategory::GetCategory), 3U);
    EXPECT_EQ(LengthBehindUnknown<IStatusCategory>(), 4U);
}

TEST(InterfaceSlots, OfIAggregatable) {
    EXPECT_EQ(Slot<bool(IUnknown*)>(&IAggregatable::SetAggregator), 3U);
    EXPECT_EQ(Slot<bool(IUnknown**)>(&IAggregatable::GetAggregator), 4U);
    EXPECT_EQ((Slot<int(unsigned long, void**)>(&IAggregatable::InnerQueryInterface)), 5U);
    EXPECT_EQ(Slot<unsigned int()>(&IAggregatable::InnerAddRef), 6U);
    EXPECT_EQ(Slot<unsigned int()>(&IAggregatable::InnerRelease), 7U);
    EXPECT_EQ(LengthBehindUnknown<IAggregatable>(), 8U);
}

TEST(InterfaceSlots, OfIComponentEnum) {
    EXPECT_EQ(Slot<int()>(&IComponentEnum::GetCount), 3U);
    EXPECT_EQ((Slot<bool(int, IAudioComponent**)>(&IComponentEnum::GetComponent)), 4U);
    EXPECT_EQ(LengthBehindUnknown<IComponentEnum>(), 5U);
}

TEST(InterfaceSlots, OfIAudioComponent) {
    EXPECT_EQ(Slot<const char*()>(&IAudioComponent::GetName), 3U);
    EXPECT_EQ(Slot<EAudioComponentType()>(&IAudioComponent::GetType), 4U);
    EXPECT_EQ((Slot<bool(IAudioPluginMgr*, IStatus**)>(&IAudioComponent::Initialize)), 5U);
    EXPECT_EQ(Slot<void()>(&IAudioComponent::Terminate), 6U);
    EXPECT_EQ(LengthBehindUnknown<IAudioComponent>(), 7U);
}

TEST(InterfaceSlots, OfIProfile) {
    EXPECT_EQ((Slot<bool(const char*, IStatus**)>(&IProfile::SetVendor)), 3U);
    EXPECT_EQ(Slot<const char*()>(&IProfile::GetVendor), 4U);
    EXPECT_EQ((Slot<bool(const char*, IStatus**)>(&IProfile::SetProduct)), 5U);
    EXPECT_EQ(Slot<const char*()>(&IProfile::GetProduct), 6U);
    EXPECT_EQ(LengthBehindUnknown<IProfile>(), 7U);
}

TEST(InterfaceSlots, OfIConfigurable) {
    EXPECT_EQ(Slot<bool()>(&IConfigurable::Configure), 3U);
    EXPECT_EQ(LengthBehindUnknown<IConfigurable>(), 4U);
}

TEST(InterfaceSlots, OfIComponentAbout) {
    EXPECT_EQ(Slot<const char*()>(&IComponentAbout::GetVendor), 3U);
    EXPECT_EQ(Slot<bool()>(&IComponentAbout::HasAbout), 4U);
    EXPECT_EQ(Slot<void()>(&IComponentAbout::About), 5U);
    EXPECT_EQ(LengthBehindUnknown<IComponentAbout>(), 6U);
}

TEST(InterfaceSlots, OfIAudioPluginMgrInternal) {
    EXPECT_EQ((Slot<bool(IAudioComponent*, COMPONENT_INFO*)>(&IAudioPluginMgrInternal::GetComponentInfo)), 3U);
    EXPECT_EQ(LengthBehindUnknown<IAudioPluginMgrInternal>(), 4U);
}

TEST(InterfaceSlots, OfIComponentOrderMgr) {
    EXPECT_EQ((Slot<bool(IAudioComponent**, int)>(&IComponentOrderMgr::Set)), 3U);
    EXPECT_EQ((Slot<bool(EAudioComponentType, IComponentEnum**)>(&IComponentOrderMgr::Get)), 4U);
    EXPECT_EQ(LengthBehindUnknown<IComponentOrderMgr>(), 5U);
}

TEST(InterfaceSlots, OfIAppWindow) {
    EXPECT_EQ(Slot<void(_GtkWindow*)>(&IAppWindow::SetAppWindow), 3U);
    EXPECT_EQ(Slot<_GtkWindow*()>(&IAppWindow::GetAppWindow), 4U);
    EXPECT_EQ(LengthBehindUnknown<IAppWindow>(), 5U);
}

TEST(InterfaceSlots, OfIFeatureSupport) {
    EXPECT_EQ(Slot<bool(EAudioFeature)>(&IFeatureSupport::IsSupported), 3U);
    EXPECT_EQ((Slot<bool(EAudioFeature, bool)>(&IFeatureSupport::EnableSupport)), 4U);
    EXPECT_EQ(LengthBehindUnknown<IFeatureSupport>(), 5U);
}

TEST(InterfaceSlots, OfIEventReceiver) {
    EXPECT_EQ((Slot<bool(unsigned int, IUnknown*)>(&IEventReceiver::OnEvent)), 3U);
    EXPECT_EQ(LengthBehindUnknown<IEventReceiver>(), 4U);
}

TEST(InterfaceSlots, OfINamedSettings) {
    EXPECT_EQ(Slot<int()>(&INamedSettings::GetSettingCount), 3U);
    EXPECT_EQ(Slot<const char*(int)>(&INamedSettings::GetSettingName), 4U);
    EXPECT_EQ(Slot<const char*(int)>(&INamedSettings::GetSettingValues), 5U);
    EXPECT_EQ(Slot<const char*(const char*)>(&INamedSettings::GetSetting), 6U);
    EXPECT_EQ((Slot<bool(const char*, const char*, IStatus**)>(&INamedSettings::SetSetting)), 7U);
    EXPECT_EQ(LengthBehindUnknown<INamedSettings>(), 8U);
}

}  // namespace

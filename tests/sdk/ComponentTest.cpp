// Components, collections, URL handlers and the entry symbols.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "sdk/Collection.h"
#include "sdk/Plugin.h"
#include "sdk/URLHandler.h"
#include "tests/support/ManagerHold.h"
#include "tests/support/StreamQueries.h"

namespace {

using support::CodeOf;
using support::TextOf;

class CHandler final : public CURLHandlerComponent<> {
public:
    CHandler() : CURLHandlerComponent("Handler", URL_HTTP | URL_FTP) {}

    bool m_bRejects = false;
    bool m_bEnded = false;
    bool m_bBusy = false;
    std::string m_strPath = "/fetched.wav";

private:
    void Begin() override {
        if (m_bRejects) Refuse("not today");
        EXPECT_NE(Manager(), nullptr);
    }
    void End() noexcept override { m_bEnded = Manager() != nullptr; }
    std::string FetchFile(const std::string& url) override {
        m_bBusy = CLiveObject::AnyAlive();
        if (url == "http://bad/") Refuse("http://bad/: not found");
        return m_strPath;
    }
};

class CSecond final : public CComponent<> {
public:
    CSecond() : CComponent("Second", ACT_ENCODER) {}
};

class CBoth final : public CCollection<CHandler, CSecond> {
public:
    CBoth() : CCollection("Both") {}
};

TEST(SdkComponent, AnswersItsOwnInterfacesAndNoOthers) {
    CHandler handler;
    IAudioComponent& component = handler;
    EXPECT_EQ(CodeOf(&component, IID_IUnknown), 0);
    EXPECT_EQ(CodeOf(&component, IID_IURLSourceHandler), 0);
    EXPECT_EQ(CodeOf(&component, IID_IExtensionList), 2);
    EXPECT_EQ(component.QueryInterface(IID_IUnknown, nullptr), 3);
    EXPECT_STREQ(component.GetName(), "Handler");
    EXPECT_EQ(component.GetType(), ACT_URL_HANDLER);
}

TEST(SdkComponent, BeginsAndEndsWithTheManager) {
    const support::CManagerHold manager;
    CHandler handler;
    EXPECT_TRUE(handler.Initialize(manager.Get(), nullptr));
    handler.Terminate();
    EXPECT_TRUE(handler.m_bEnded);
}

TEST(SdkComponent, ExceptionOfBeginRejectsIt) {
    const support::CManagerHold manager;
    CHandler handler;
    handler.m_bRejects = true;
    CComPtr<IStatus> status;
    EXPECT_FALSE(handler.Initialize(manager.Get(), status.Out()));
    EXPECT_STREQ(TextOf(status), "Handler: not today");
}

TEST(SdkComponent, HandlerFetchesIntoTheCallersBuffer) {
    CHandler handler;
    char path[kLocalPathCapacity] = "untouched";
    EXPECT_EQ(handler.GetProtocols(), 6U);
    EXPECT_TRUE(handler.Fetch("http://good/", path, 0, nullptr));
    EXPECT_STREQ(path, "/fetched.wav");
    EXPECT_TRUE(handler.m_bBusy) << "the plug-in is not ready to finish while it fetches";
    EXPECT_FALSE(CLiveObject::AnyAlive());
}

TEST(SdkComponent, FailedFetchLeavesTheBufferAlone) {
    CHandler handler;
    char path[kLocalPathCapacity] = "untouched";
    CComPtr<IStatus> status;
    EXPECT_FALSE(handler.Fetch("http://bad/", path, 0, status.Out()));
    EXPECT_STREQ(TextOf(status), "http://bad/: not found");
    handler.m_strPath.assign(kLocalPathCapacity, 'x');
    EXPECT_FALSE(handler.Fetch("http://good/", path, 0, status.Out()));
    EXPECT_STREQ(TextOf(status), "the local path is too long");
    EXPECT_STREQ(path, "untouched");
    EXPECT_FALSE(handler.Fetch(nullptr, path, 0, status.Out()));
    EXPECT_EQ(status->GetAudioError(), AE_BAD_ARGUMENT);
}

TEST(SdkComponent, CollectionListsItsMembersInOrder) {
    CBoth both;
    const auto members = CComPtr<IComponentEnum>::Query(static_cast<IAudioComponent*>(&both), IID_IComponentEnum);
    ASSERT_TRUE(members);
    ASSERT_EQ(members->GetCount(), 2);
    CComPtr<IAudioComponent> member;
    ASSERT_TRUE(members->GetComponent(1, member.Out()));
    EXPECT_STREQ(member->GetName(), "Second");
    EXPECT_EQ(member->AddRef(), 2U);
    EXPECT_EQ(member->Release(), 1U);
    EXPECT_FALSE(members->GetComponent(2, member.Out()));
    EXPECT_FALSE(members->GetComponent(-1, member.Out()));
    EXPECT_FALSE(members->GetComponent(0, nullptr));
}

TEST(SdkComponent, PluginHasOnePrimaryComponent) {
    CComPtr<IAudioComponent> first;
    CComPtr<IAudioComponent> second;
    ASSERT_TRUE(GivePrimaryComponent<CBoth>(first.Out()));
    ASSERT_TRUE(GivePrimaryComponent<CBoth>(second.Out()));
    EXPECT_EQ(first.Get(), second.Get());
    EXPECT_EQ(first->AddRef(), 3U);
    EXPECT_EQ(first->Release(), 2U);
    EXPECT_FALSE(GivePrimaryComponent<CBoth>(nullptr));
}

class CBroken final : public CComponent<> {
public:
    CBroken() : CComponent("Broken", ACT_ENCODER) { throw 5; }
};

TEST(SdkComponent, PrimaryComponentThatCannotBeMadeIsNone) {
    IAudioComponent* component = nullptr;
    EXPECT_FALSE(GivePrimaryComponent<CBroken>(&component));
    EXPECT_EQ(component, nullptr);
}

}  // namespace

// The plug-in's entry points and its components.
#include "com/Configurable.h"
#include "tests/plugins/sndfile/AudioFiles.h"
#include "tests/plugins/sndfile/PluginUnderTest.h"
#include "tests/support/ScratchDirectory.h"

namespace {

CComPtr<IComponentEnum> Collection() {
    CComPtr<IAudioComponent> primary;
    EXPECT_TRUE(Plugin().m_pGetPrimary(primary.Out()));
    return CComPtr<IComponentEnum>::Query(primary.Get(), IID_IComponentEnum);
}

std::vector<std::string> ExtensionsOf(int component) {
    const auto list = CComPtr<IExtensionList>::Query(Component(component).Get(), IID_IExtensionList);
    std::vector<std::string> extensions;
    for (int i = 0; i < list->GetCount(); ++i) extensions.emplace_back(list->GetAt(i));
    return extensions;
}

}  // namespace

TEST(SndfilePlugin, ExportsItsTwoEntryPointsAlone) {
    CScratchDirectory scratch;
    const std::string list = scratch / "symbols";
    ASSERT_EQ(
        std::system(("nm -D --defined-only --format=just-symbols '" KELO_SNDFILE_PLUGIN "' | sort > " + list).c_str()),
        0);
    EXPECT_EQ(Content(list), "KELO_PLUGIN_GetPrimaryAudioObject\nKELO_PLUGIN_ReadyToFinish\n");
}

TEST(SndfilePlugin, NeedsNothingOfGtk) {
    CScratchDirectory scratch;
    const std::string list = scratch / "needed";
    ASSERT_EQ(std::system(("readelf -d '" KELO_SNDFILE_PLUGIN "' | grep NEEDED > " + list).c_str()), 0);
    EXPECT_NE(Content(list).find("[libsndfile.so.1]"), std::string::npos);
    for (const char* const library : {"libgtk", "libgdk", "libglib", "libgobject"}) {
        EXPECT_EQ(Content(list).find(library), std::string::npos) << library;
    }
}

TEST(SndfilePlugin, HasNoAboutBoxWithoutGtk) {
    for (const int index : {0, 1}) {
        const auto about = CComPtr<IComponentAbout>::Query(Component(index).Get(), IID_IComponentAbout);
        ASSERT_TRUE(about);
        EXPECT_STREQ(about->GetVendor(), "Kelo Audio");
        EXPECT_FALSE(about->HasAbout());
        about->About();
    }
}

TEST(SndfilePlugin, PrimaryComponentIsACollectionWithAReferenceForTheCaller) {
    CComPtr<IAudioComponent> primary;
    ASSERT_TRUE(Plugin().m_pGetPrimary(primary.Out()));
    EXPECT_EQ(primary->GetType(), ACT_COLLECTION);
    EXPECT_STREQ(primary->GetName(), "libsndfile");
    const unsigned int count = primary->AddRef();
    IAudioComponent* again = nullptr;
    ASSERT_TRUE(Plugin().m_pGetPrimary(&again));
    EXPECT_EQ(again, primary.Get());
    EXPECT_EQ(again->Release(), count);
    EXPECT_EQ(primary->Release(), count - 1);
}

TEST(SndfilePlugin, RefusesToStoreThePrimaryComponentNowhere) { EXPECT_FALSE(Plugin().m_pGetPrimary(nullptr)); }

TEST(SndfilePlugin, CollectsADecoderAndThenAnEncoder) {
    ASSERT_EQ(Collection()->GetCount(), 2);
    EXPECT_EQ(Component(0)->GetType(), ACT_DECODER);
    EXPECT_STREQ(Component(0)->GetName(), "libsndfile Decoder");
    EXPECT_EQ(Component(1)->GetType(), ACT_ENCODER);
    EXPECT_STREQ(Component(1)->GetName(), "libsndfile Encoder");
}

TEST(SndfilePlugin, CollectionHasNothingBeforeItsFirstAndAfterItsLastMember) {
    IAudioComponent* member = nullptr;
    EXPECT_FALSE(Collection()->GetComponent(-1, &member));
    EXPECT_FALSE(Collection()->GetComponent(2, &member));
    EXPECT_FALSE(Collection()->GetComponent(0, nullptr));
    EXPECT_EQ(member, nullptr);
}

TEST(SndfilePlugin, ComponentsOutliveReferencesThatNobodyGivesBack) {
    for (int i = 0; i < 3; ++i) Component(0).Detach();
    EXPECT_EQ(Component(0)->GetType(), ACT_DECODER);
    EXPECT_TRUE(Plugin().m_pReadyToFinish());
}

TEST(SndfilePlugin, ComponentsAcceptInitialisationAndTermination) {
    for (const int index : {0, 1}) {
        EXPECT_TRUE(Component(index)->Initialize(nullptr, nullptr));
        Component(index)->Terminate();
    }
}

TEST(SndfilePlugin, QueryInterfaceOfComponentsKeepsTheRules) {
    const std::vector<std::vector<unsigned long>> offered = {
        {IID_IUnknown, IID_IAudioFileOpener, IID_IExtensionList, IID_IComponentAbout},
        {IID_IUnknown, IID_IExtensionList, IID_IAudioTargetOpener, IID_IComponentAbout}};
    for (const int index : {0, 1}) {
        const CComPtr<IAudioComponent> component = Component(index);
        EXPECT_EQ(component->QueryInterface(IID_IUnknown, nullptr), 3);
        void* face = &face;
        EXPECT_EQ(component->QueryInterface(IID_IProcess, &face), 2);
        EXPECT_EQ(face, nullptr);
        const unsigned int count = component->AddRef();
        for (const unsigned long identity : offered[static_cast<std::size_t>(index)]) {
            EXPECT_EQ(component->QueryInterface(identity, &face), 0) << identity;
            EXPECT_NE(face, nullptr);
            EXPECT_EQ(component->Release(), count);
        }
        component->Release();
    }
}

TEST(SndfileDecoder, OpenerLiesInTwoFacesSideBySide) {
    void* face = nullptr;
    ASSERT_EQ(Component(0)->QueryInterface(IID_IAudioFileOpener, &face), 0);
    auto* const operations = static_cast<IAudioFileOpenerOperations*>(face);
    auto* const control = reinterpret_cast<IAudioFileOpenerControl*>(static_cast<void**>(face) + 1);
    EXPECT_EQ(operations->GetAuxFlags(), AUX_CONVERT);
    EXPECT_EQ(control->GetOpenerState() & 1u, 1u);
    const unsigned int count = Component(0)->AddRef();
    EXPECT_LT(control->Release(), count);
    Component(0)->Release();
}

TEST(SndfileDecoder, ListsTheExtensionsThatTheLibraryReads) {
    const std::vector<std::string> expected = {
        "wav", "wave", "bwf",  "amb", "rf64", "w64", "aif", "aiff", "aifc", "caf",   "au",  "snd",  "flac",
        "ogg", "oga",  "opus", "mp3", "mp2",  "mp1", "mpa", "voc",  "sf",   "ircam", "sph", "nist", "iff",
        "svx", "8svx", "16sv", "paf", "fap",  "avr", "htk", "mat",  "pvf",  "sds",   "wve", "xi"};
    EXPECT_EQ(ExtensionsOf(0), expected);
}

TEST(SndfileEncoder, ListsTheExtensionsThatTheLibraryWrites) {
    const std::vector<std::string> expected = {"wav", "rf64", "w64", "aiff", "aif",  "caf",
                                               "au",  "flac", "ogg", "oga",  "opus", "mp3"};
    EXPECT_EQ(ExtensionsOf(1), expected);
}

TEST(SndfilePlugin, HasNoExtensionOutsideTheLists) {
    for (const int index : {0, 1}) {
        const auto list = CComPtr<IExtensionList>::Query(Component(index).Get(), IID_IExtensionList);
        EXPECT_EQ(list->GetAt(-1), nullptr);
        EXPECT_EQ(list->GetAt(list->GetCount()), nullptr);
    }
}

TEST(SndfilePlugin, IsReadyToFinishOnlyWhileNoStreamIsAlive) {
    EXPECT_TRUE(Plugin().m_pReadyToFinish());
    {
        const SSource first(kVoice);
        {
            const SSource second(kVoice);
            EXPECT_FALSE(Plugin().m_pReadyToFinish());
        }
        EXPECT_FALSE(Plugin().m_pReadyToFinish());
    }
    EXPECT_TRUE(Plugin().m_pReadyToFinish());
}

TEST(SndfilePlugin, IsReadyToFinishAfterARefusedOpen) {
    EXPECT_NE(RefusalOf("/nonexistent/x.wav"), "");
    EXPECT_TRUE(Plugin().m_pReadyToFinish());
}

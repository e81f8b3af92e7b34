// The plug-in's file, its component, and the libraries in the process.
#include <dlfcn.h>

#include <cstdlib>
#include <filesystem>
#include <set>

#include "com/Configurable.h"
#include "tests/plugins/LoadedPlugins.h"
#include "tests/plugins/libav/DecoderUnderTest.h"
#include "tests/support/ScratchDirectory.h"

namespace {

std::string OutputOf(const std::string& command) {
    CScratchDirectory scratch;
    RunTool(command + " > " + scratch / "out");
    return Content(scratch / "out");
}

bool IsMapped(const std::string& library) { return Content("/proc/self/maps").find(library) != std::string::npos; }

std::set<std::string> ExtensionsOf(const CComPtr<IAudioComponent>& component) {
    const auto list = CComPtr<IExtensionList>::Query(component.Get(), IID_IExtensionList);
    std::set<std::string> extensions;
    for (int i = 0; i < list->GetCount(); ++i) extensions.insert(list->GetAt(i));
    EXPECT_EQ(list->GetAt(-1), nullptr);
    EXPECT_EQ(list->GetAt(list->GetCount()), nullptr);
    EXPECT_EQ(extensions.size(), static_cast<std::size_t>(list->GetCount()));
    return extensions;
}

TEST(LibavPlugin, ExportsItsTwoEntryPointsAlone) {
    EXPECT_EQ(OutputOf("nm -D --defined-only --format=just-symbols '" KELO_LIBAV_PLUGIN "' | sort"),
              "KELO_PLUGIN_GetPrimaryAudioObject\nKELO_PLUGIN_ReadyToFinish\n");
}

TEST(LibavPlugin, NeedsNoneOfTheLibrariesToBeLoaded) {
    EXPECT_THAT(OutputOf("readelf -d '" KELO_LIBAV_PLUGIN "'"), testing::Not(testing::HasSubstr("[libav")));
}

TEST(LibavPlugin, LibrariesComeWithTheFirstFileAndStayOutOfTheGlobalScope) {
    EXPECT_EQ(Decoder()->GetType(), ACT_DECODER);
    EXPECT_TRUE(Decoder()->Initialize(nullptr, nullptr));
    EXPECT_FALSE(IsMapped("libavformat"));
    RefusalOf(Media("source.pcm"));
    EXPECT_TRUE(IsMapped("libavformat"));
    EXPECT_TRUE(IsMapped("libavcodec"));
    EXPECT_EQ(dlsym(RTLD_DEFAULT, "avformat_open_input"), nullptr);
}

TEST(LibavPlugin, ComponentHasANameAndAVendor) {
    EXPECT_STREQ(Decoder()->GetName(), "libavcodec Decoder");
    const auto about = CComPtr<IComponentAbout>::Query(Decoder().Get(), IID_IComponentAbout);
    ASSERT_TRUE(about);
    EXPECT_STREQ(about->GetVendor(), "Kelo Audio");
    EXPECT_FALSE(about->HasAbout());
    about->About();
    EXPECT_FALSE(IsMapped("libavformat"));
}

TEST(LibavPlugin, ListsNoExtensionOfLibsndfile) {
    const std::set<std::string> extensions = ExtensionsOf(Decoder());
    for (const char* const extension : {"aac", "m4a", "mp4", "wma",  "ape", "wv", "tta", "mpc", "dsf", "dff", "ac3",
                                        "dts", "mka", "mkv", "webm", "avi", "ts", "thd", "shn", "tak", "amr", "ra"}) {
        EXPECT_EQ(extensions.count(extension), 1u) << extension;
    }
    const CLoadedPlugins plugins;
    for (const std::string& extension : ExtensionsOf(plugins.Component("libsndfile Decoder"))) {
        EXPECT_EQ(extensions.count(extension), 0u) << extension;
    }
}

TEST(LibavPlugin, IsReadyToFinishOnlyWhileNoStreamIsAlive) {
    EXPECT_TRUE(Plugin().m_pReadyToFinish());
    {
        const SSource first(Media("aac.m4a"));
        {
            const SSource second(Media("deep.wv"));
            EXPECT_FALSE(Plugin().m_pReadyToFinish());
        }
        EXPECT_FALSE(Plugin().m_pReadyToFinish());
    }
    EXPECT_TRUE(Plugin().m_pReadyToFinish());
    RefusalOf(Media("silent.mp4"));
    EXPECT_TRUE(Plugin().m_pReadyToFinish());
}

TEST(LibavPlugin, ReallyUnloadsAndComesBackWithItsFiles) {
    const CScratchDirectory scratch;
    std::filesystem::copy_file(KELO_LIBAV_PLUGIN, scratch / "copy-of-libav.so");
    const support::CManagerHold manager;
    manager->SetPluginDirectory(scratch.Path().c_str());
    for (int i = 0; i < 3; ++i) {
        manager->LoadPlugins();
        {
            CComPtr<IUnknown> stream;
            ASSERT_TRUE(manager->OpenURLAudioFile(Media("aac.m4a").c_str(), nullptr, stream.Out(), -1, AUX_CONVERT,
                                                  AUX_NONE, nullptr));
            EXPECT_FALSE(manager->UnloadPlugins());
        }
        EXPECT_TRUE(IsMapped("copy-of-libav.so"));
        EXPECT_TRUE(manager->UnloadPlugins());
        EXPECT_FALSE(IsMapped("copy-of-libav.so"));
    }
}

}  // namespace

// One opened plug-in.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstring>
#include <stdexcept>

#include "com/AudioComponent.h"
#include "pluginmgr/AudioPluginLib.h"
#include "portable/DynamicLibrary.h"
#include "tests/pluginmgr/PluginDirectory.h"

namespace {

std::string Fixture(const char* name) { return std::string(KELO_FIXTURE_DIRECTORY) + "/" + name + ".so"; }

// CAudioPluginLib::IsOK by its symbol, so that a null object can be asked.
extern "C" bool AskWhetherOK(void* library) __asm__("_ZN15CAudioPluginLib4IsOKEv");

class CFixtureLibrary : public CAudioPluginLib {
public:
    explicit CFixtureLibrary(const char* name)
        : CAudioPluginLib(Fixture(name).c_str(), LoadLibrary(Fixture(name).c_str())) {}
};

TEST(AudioPluginLib, IsOKWithBothEntries) {
    CFixtureLibrary library("decoder");
    EXPECT_TRUE(library.IsOK());
    EXPECT_STREQ(library.GetFileName(), "decoder.so");
}

TEST(AudioPluginLib, ANullPointerIsNotOK) { EXPECT_FALSE(AskWhetherOK(nullptr)); }

TEST(AudioPluginLib, WithoutReadyToFinishIsNotOKAlthoughItsComponentCanBeAsked) {
    CFixtureLibrary library("lacks_ready");
    EXPECT_FALSE(library.IsOK());
    EXPECT_FALSE(library.ReadyToFinish());
    IAudioComponent* component = nullptr;
    EXPECT_TRUE(library.GetPrimaryAudioObject(&component));
    ASSERT_NE(component, nullptr);
    EXPECT_STREQ(component->GetName(), "lacks ready");
    component->Release();
}

TEST(AudioPluginLib, WithoutPrimaryEntryIsNotOKAndLeavesTheOutPointer) {
    CFixtureLibrary library("lacks_primary");
    EXPECT_FALSE(library.IsOK());
    EXPECT_TRUE(library.ReadyToFinish());
    int marker = 0;
    auto* component = reinterpret_cast<IAudioComponent*>(&marker);
    EXPECT_FALSE(library.GetPrimaryAudioObject(&component));
    EXPECT_EQ(component, reinterpret_cast<IAudioComponent*>(&marker));
}

TEST(AudioPluginLib, ANullHandleLeavesItEmpty) {
    CAudioPluginLib library("/opt/x/lib/dec.so", nullptr);
    EXPECT_FALSE(library.IsOK());
    EXPECT_STREQ(library.GetFileName(), "");
    EXPECT_FALSE(library.ReadyToFinish());
}

TEST(AudioPluginLib, ANullOrEmptyPathLeavesItEmptyAndStillClosesTheModule) {
    for (const char* const path : {static_cast<const char*>(nullptr), ""}) {
        const CPluginDirectory plugins({"decoder"});
        {
            CAudioPluginLib library(path, LoadLibrary(plugins.File("decoder.so").c_str()));
            EXPECT_FALSE(library.IsOK());
            EXPECT_STREQ(library.GetFileName(), "");
        }
        EXPECT_EQ(plugins.Log(), std::vector<std::string>{"decoder unloaded"});
    }
}

TEST(AudioPluginLib, FileNameIsTheLastComponentOfThePath) {
    CAudioPluginLib library("/opt/x/lib/dec.so", LoadLibrary(Fixture("encoder").c_str()));
    EXPECT_STREQ(library.GetFileName(), "dec.so");
}

TEST(AudioPluginLib, AMissingSymbolLeavesNoLoaderErrorBehind) {
    dlerror();
    const CFixtureLibrary library("lacks_ready");
    EXPECT_EQ(dlerror(), nullptr);
}

TEST(AudioPluginLib, AnIntFromThePrimaryEntryGivesFalse) {
    CFixtureLibrary library("primary_throws_int");
    IAudioComponent* component = nullptr;
    EXPECT_FALSE(library.GetPrimaryAudioObject(&component));
}

TEST(AudioPluginLib, AnotherExceptionFromThePrimaryEntryPasses) {
    CFixtureLibrary library("primary_throws_exception");
    IAudioComponent* component = nullptr;
    EXPECT_THROW(library.GetPrimaryAudioObject(&component), std::runtime_error);
}

TEST(AudioPluginLib, AnIntFromReadyToFinishGivesFalse) {
    CFixtureLibrary library("ready_throws_int");
    EXPECT_FALSE(library.ReadyToFinish());
}

TEST(AudioPluginLib, AnotherExceptionFromReadyToFinishPasses) {
    CFixtureLibrary library("ready_throws_exception");
    EXPECT_THROW(library.ReadyToFinish(), std::runtime_error);
}

TEST(AudioPluginLib, ClosesItsModuleAtItsEnd) {
    const CPluginDirectory plugins({"decoder"});
    auto* const library =
        new CAudioPluginLib(plugins.File("decoder.so").c_str(), LoadLibrary(plugins.File("decoder.so").c_str()));
    EXPECT_TRUE(plugins.Log().empty());
    delete library;
    EXPECT_EQ(plugins.Log(), std::vector<std::string>{"decoder unloaded"});
}

TEST(AudioPluginLib, LaysItsMembersOutInOrder) {
    CFixtureLibrary library("decoder");
    const auto* const bytes = reinterpret_cast<const unsigned char*>(static_cast<CAudioPluginLib*>(&library));
    EXPECT_STREQ(reinterpret_cast<const char*>(bytes + 8), Fixture("decoder").c_str());
    static_assert(sizeof(CAudioPluginLib) == 8 + 4096 + sizeof(CBasicString<char>) + 3 * sizeof(void*));
    void* entries[3];
    std::memcpy(entries, bytes + 8 + 4096 + sizeof(CBasicString<char>), sizeof entries);
    EXPECT_EQ(entries[1], GetProcAddress(entries[0], "KELO_PLUGIN_GetPrimaryAudioObject"));
    EXPECT_EQ(entries[2], GetProcAddress(entries[0], "KELO_PLUGIN_ReadyToFinish"));
}

}  // namespace

// A process without libavformat, or with another one than the plug-in was built for.
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

#include "pluginmgr/AudioPluginMgr.h"
#include "tests/plugins/libav/DecoderUnderTest.h"
#include "tests/support/ManagerHold.h"
#include "tests/support/ScratchDirectory.h"

namespace {

// Runs the case in a new program whose loader finds libraries in `directory` first.
void RunWithLibraries(const std::string& directory, const std::string& name) {
    const pid_t child = fork();
    if (child == 0) {
        setenv("LD_LIBRARY_PATH", directory.c_str(), 1);
        execl("/proc/self/exe", "libav_tests", "--gtest_also_run_disabled_tests",
              ("--gtest_filter=LibavMissing.DISABLED_" + name).c_str(), static_cast<char*>(nullptr));
        _exit(1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
}

std::string RefusalThroughManager() {
    const CScratchDirectory scratch;
    std::filesystem::create_symlink(KELO_LIBAV_PLUGIN, scratch / "libav.so");
    const support::CManagerHold manager;
    manager->SetPluginDirectory(scratch.Path().c_str());
    manager->LoadPlugins();
    EXPECT_EQ(manager->GetCount(), 1);
    CComPtr<IUnknown> stream;
    const std::string reason = ReasonOf([&](IStatus** status) {
        return manager->OpenURLAudioFile(Media("aac.m4a").c_str(), nullptr, stream.Out(), -1, AUX_CONVERT, AUX_NONE,
                                         status);
    });
    EXPECT_TRUE(manager->UnloadPlugins());
    return reason;
}

TEST(LibavMissing, PluginIsListedAndItsFirstUseNamesTheLibrary) {
    const CScratchDirectory scratch;
    scratch.Write(KELO_LIBAVFORMAT, "");
    RunWithLibraries(scratch.Path(), "NamesTheLibrary");
}

TEST(LibavMissing, DISABLED_NamesTheLibrary) {
    const std::string reason = RefusalThroughManager();
    EXPECT_THAT(reason, testing::StartsWith("aac.m4a: libavformat cannot be used: "));
    EXPECT_THAT(reason, testing::HasSubstr(KELO_LIBAVFORMAT));
}

TEST(LibavMissing, AnotherVersionIsRefusedByItsNumber) { RunWithLibraries(KELO_OTHER_LIBAV, "NamesTheVersion"); }

TEST(LibavMissing, DISABLED_NamesTheVersion) {
    EXPECT_THAT(RefusalThroughManager(), testing::StartsWith("aac.m4a: libavformat 99.1.2 is in use, this plug-in was "
                                                             "built for "));
}

}  // namespace

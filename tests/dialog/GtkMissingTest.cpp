// A process without a usable GTK 2. This program does not link it.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "com/InterfaceIds.h"
#include "com/SettingsDialog.h"
#include "stream/Process.h"
#include "stream/RawReader.h"
#include "tests/pluginmgr/Manager.h"
#include "tests/support/ExpectedLeaks.h"
#include "tests/support/ScratchDirectory.h"

namespace {

constexpr char kPrefix[] = "Audio format settings: GTK 2 cannot be used: ";

bool IsMapped(const std::string& library) {
    std::ifstream maps("/proc/self/maps");
    return std::string(std::istreambuf_iterator<char>(maps), {}).find(library) != std::string::npos;
}

bool IsGtkMapped() { return IsMapped("libgtk-x11-2.0"); }

// What both ways to the dialog say; each must fail with one line.
std::string Complaint() {
    const CExpectedLeaks leaks;  // GTK keeps what it registers
    testing::internal::CaptureStderr();
    EXPECT_EQ(AudioFormatSettingsDialog_New(nullptr), nullptr);
    const std::string first = testing::internal::GetCapturedStderr();
    testing::internal::CaptureStderr();
    EXPECT_FALSE(ObtainManager()->Configure());
    EXPECT_EQ(testing::internal::GetCapturedStderr(), first);
    EXPECT_EQ(std::count(first.begin(), first.end(), '\n'), 1) << first;
    EXPECT_EQ(first.rfind(kPrefix, 0), 0U) << first;
    return first.substr(std::min(first.size(), sizeof kPrefix - 1));
}

TEST(GtkMissing, WithoutADisplayTheReasonIsTheDisplay) {
    unsetenv("DISPLAY");
    EXPECT_EQ(Complaint(), "there is no display; DISPLAY is not set\n");
}

TEST(GtkMissing, WithADisplayThatIsNotThereTheReasonNamesIt) {
    setenv("DISPLAY", ":4711", 1);
    EXPECT_EQ(Complaint(), "the display \":4711\" of DISPLAY cannot be opened\n");
}

TEST(GtkMissing, TheLocaleStaysAsItIs) {
    unsetenv("DISPLAY");
    setenv("LC_ALL", "C.UTF-8", 1);
    std::setlocale(LC_ALL, "C");
    const CExpectedLeaks leaks;  // GTK keeps what it registers
    EXPECT_EQ(AudioFormatSettingsDialog_New(nullptr), nullptr);
    EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), "C");
}

TEST(GtkMissing, BesideALaterGtkTheReasonIsTheOther) {
    ASSERT_NE(dlopen(KELO_OTHER_GTK, RTLD_NOW | RTLD_LOCAL), nullptr) << dlerror();
    EXPECT_EQ(Complaint(), "a later GTK is in this process, and both cannot be\n");
    EXPECT_FALSE(IsGtkMapped());
}

TEST(GtkMissing, BesideTheLatestGtkToo) {
    ASSERT_NE(dlopen(KELO_LATEST_GTK, RTLD_NOW | RTLD_LOCAL), nullptr) << dlerror();
    EXPECT_EQ(Complaint(), "a later GTK is in this process, and both cannot be\n");
    EXPECT_FALSE(IsGtkMapped());
}

TEST(GtkMissing, BesideARealGtk3ThatKeepsItsSymbolsToItself) {
    const CExpectedLeaks leaks;  // GTK keeps what it registers
    if (dlopen("libgtk-3.so.0", RTLD_NOW | RTLD_LOCAL) == nullptr) GTEST_SKIP() << "no GTK 3 (Debian: libgtk-3-0)";
    EXPECT_EQ(Complaint(), "a later GTK is in this process, and both cannot be\n");
    EXPECT_FALSE(IsGtkMapped());
}

TEST(GtkMissing, BesideARealGtk3InTheGlobalScope) {
    const CExpectedLeaks leaks;  // GTK keeps what it registers
    if (dlopen("libgtk-3.so.0", RTLD_NOW | RTLD_GLOBAL) == nullptr) GTEST_SKIP() << "no GTK 3 (Debian: libgtk-3-0)";
    EXPECT_EQ(Complaint(), "a later GTK is in this process, and both cannot be\n");
    EXPECT_FALSE(IsGtkMapped());
}

TEST(GtkMissing, BesideALaterGtkUnderAnotherNameToo) {
    const auto copy = std::filesystem::temp_directory_path() / ("kelo-other-" + std::to_string(getpid()) + ".so");
    std::filesystem::copy_file(KELO_UNNAMED_OTHER_GTK, copy);
    ASSERT_NE(dlopen(copy.c_str(), RTLD_NOW | RTLD_GLOBAL), nullptr) << dlerror();
    std::filesystem::remove(copy);
    EXPECT_EQ(Complaint(), "a later GTK is in this process, and both cannot be\n");
}

TEST(GtkMissing, WhereItIsNotInstalledTheReasonIsTheLoaders) {
    // The library's file is hidden in a mount namespace of this process's own.
    void* const gtk = dlopen("libgtk-x11-2.0.so.0", RTLD_LAZY);
    if (gtk == nullptr) GTEST_SKIP() << "GTK 2 is really not installed";
    Dl_info file{};
    ASSERT_NE(dladdr(dlsym(gtk, "gtk_window_new"), &file), 0);
    const std::string path = std::filesystem::canonical(file.dli_fname);
    const pid_t child = fork();
    if (child == 0) {
        // A new program, in which the library has never been open.
        const bool hidden = unshare(CLONE_NEWNS) == 0 &&
                            mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
                            mount("/dev/null", path.c_str(), nullptr, MS_BIND, nullptr) == 0;
        if (!hidden) _exit(77);
        execl("/proc/self/exe", "dialog_missing_tests", "--gtest_also_run_disabled_tests",
              "--gtest_filter=GtkMissing.DISABLED_InANamespaceWithoutIt", static_cast<char*>(nullptr));
        _exit(1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    if (WEXITSTATUS(status) == 77) GTEST_SKIP() << "no mount namespace here";
    EXPECT_EQ(status, 0);
}

// Run by the test above.
TEST(GtkMissing, DISABLED_InANamespaceWithoutIt) {
    const std::string reason = Complaint();
    EXPECT_NE(reason.find("libgtk-x11-2.0.so.0"), std::string::npos) << reason;
}

// A tenth of a second of silence, mono, 16 bits at 8000 Hz (RIFF WAVE).
std::string SilentWav() {
    constexpr char header[] =
        "RIFF\x64\x06\0\0WAVEfmt \x10\0\0\0\1\0\1\0\x40\x1f\0\0\x80\x3e\0\0\2\0\x10\0"
        "data\x40\x06\0\0";
    return std::string(header, sizeof header - 1) + std::string(1600, '\0');
}

// The bytes of a source in 16-bit stereo at 48000 Hz.
std::size_t ConvertedLength(CAudioPluginMgr& manager, const std::string& path) {
    const SWavFormat wanted{48000, 16, 2};
    CComPtr<IUnknown> stream;
    if (!manager.OpenURLAudioFile(path.c_str(), &wanted, stream.Out(), -1, AUX_CONVERT, AUX_NONE, nullptr)) return 0;
    const auto process = CComPtr<IProcess>::Query(stream.Get(), IID_IProcess);
    const auto reader = CComPtr<IAudioRawReader>::Query(stream.Get(), IID_IAudioRawReader);
    if (!process->Start(nullptr)) return 0;
    std::size_t length = 0;
    EAudioRawState state = ARS_MORE;
    unsigned char buffer[4096];
    int read = 0;
    do {
        if (!reader->RawRead(buffer, sizeof buffer, &read, state, nullptr)) break;
        length += static_cast<std::size_t>(read);
    } while (read > 0 || state == ARS_MORE);
    process->End(nullptr);
    return length;
}

TEST(GtkMissing, LoadingPluginsAndConvertingASourceNeedsNone) {
    const CScratchDirectory files;
    const std::string path = files.Write("silence.wav", SilentWav());
    const auto manager = ObtainManager();
    manager->SetPluginDirectory(KELO_PLUGIN_DIRECTORY);
    manager->LoadPlugins();
    if (manager->GetCount() == 0) GTEST_SKIP() << "no plug-ins in " KELO_PLUGIN_DIRECTORY;
    EXPECT_EQ(ConvertedLength(*manager, path), 4800U * 4);
    EXPECT_EQ(manager->GetAppWindow(), nullptr);
    for (const char* const library : {"libgtk", "libgdk", "libgobject", "libglib"}) {
        EXPECT_FALSE(IsMapped(library)) << library;
    }
    EXPECT_TRUE(manager->UnloadPlugins());
}

}  // namespace

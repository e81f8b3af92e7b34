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

#include "com/SettingsDialog.h"
#include "tests/pluginmgr/Manager.h"
#include "tests/support/ExpectedLeaks.h"

namespace {

constexpr char kPrefix[] = "Audio format settings: GTK 2 cannot be used: ";

bool IsGtkMapped() {
    std::ifstream maps("/proc/self/maps");
    return std::string(std::istreambuf_iterator<char>(maps), {}).find("libgtk-x11-2.0") != std::string::npos;
}

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

TEST(GtkMissing, LoadingPluginsAndOpeningSourcesNeedsNone) {
    const auto manager = ObtainManager();
    manager->SetPluginDirectory(KELO_PLUGIN_DIRECTORY);
    manager->LoadPlugins();
    EXPECT_GT(manager->GetCount(), 0);
    EXPECT_EQ(manager->GetAppWindow(), nullptr);
    EXPECT_FALSE(IsGtkMapped());
    EXPECT_TRUE(manager->UnloadPlugins());
}

}  // namespace

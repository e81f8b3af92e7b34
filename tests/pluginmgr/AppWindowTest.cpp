// The host's window, with a real GTK 2 on a display of the test's own.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>

#include "com/AppWindow.h"
#include "tests/pluginmgr/Manager.h"

// Present only under a leak checker.
extern "C" void __lsan_disable() __attribute__((weak));
extern "C" void __lsan_enable() __attribute__((weak));

namespace {

// An X server on a free display, ended with the test.
class CDisplay {
public:
    CDisplay() {
        int numbers[2];
        if (pipe(numbers) != 0) return;
        m_nProcess = fork();
        if (m_nProcess == 0) {
            close(numbers[0]);
            const std::string descriptor = std::to_string(numbers[1]);
            execlp("Xvfb", "Xvfb", "-displayfd", descriptor.c_str(), "-screen", "0", "320x240x24", "-nolisten", "tcp",
                   static_cast<char*>(nullptr));
            _exit(127);
        }
        close(numbers[1]);
        char number[16] = "";
        const ssize_t length = read(numbers[0], number, sizeof number - 1);
        close(numbers[0]);
        if (length > 0) m_strName = ":" + std::string(number, static_cast<std::size_t>(length) - 1);
    }
    ~CDisplay() {
        if (m_nProcess <= 0) return;
        kill(m_nProcess, SIGTERM);
        waitpid(m_nProcess, nullptr, 0);
    }

    CDisplay(const CDisplay&) = delete;
    CDisplay& operator=(const CDisplay&) = delete;

    const std::string& Name() const { return m_strName; }

private:
    pid_t m_nProcess = -1;
    std::string m_strName;
};

template <typename TFunction>
TFunction Find(const char* symbol) {
    return reinterpret_cast<TFunction>(dlsym(RTLD_DEFAULT, symbol));
}

TEST(AppWindow, IsNullAtFirst) { EXPECT_EQ(ObtainManager()->GetAppWindow(), nullptr); }

TEST(AppWindow, IsNullForWhatIsNoWindow) {
    const auto manager = ObtainManager();
    void* words[8] = {};
    manager->SetAppWindow(reinterpret_cast<_GtkWindow*>(words));
    EXPECT_EQ(manager->GetAppWindow(), nullptr);
}

TEST(AppWindow, IsGivenBackWhenItIsAGtkWindow) {
    void* const gtk = dlopen("libgtk-x11-2.0.so.0", RTLD_NOW | RTLD_GLOBAL);
    if (gtk == nullptr) GTEST_SKIP() << "GTK 2 is not installed";
    const CDisplay display;
    ASSERT_FALSE(display.Name().empty()) << "no X server (Xvfb)";
    setenv("DISPLAY", display.Name().c_str(), 1);
    if (__lsan_disable != nullptr) __lsan_disable();
    ASSERT_NE(Find<int (*)(int*, char***)>("gtk_init_check")(nullptr, nullptr), 0);
    auto* const window = Find<_GtkWindow* (*)(int)>("gtk_window_new")(0);
    auto* const dialog = Find<_GtkWindow* (*)()>("gtk_dialog_new")();
    auto* const label = Find<_GtkWindow* (*)(const char*)>("gtk_label_new")("label");

    const auto manager = ObtainManager();
    manager->SetAppWindow(window);
    EXPECT_EQ(manager->GetAppWindow(), window);
    manager->SetAppWindow(dialog);
    EXPECT_EQ(manager->GetAppWindow(), dialog);
    manager->SetAppWindow(label);
    EXPECT_EQ(manager->GetAppWindow(), nullptr);
    void* words[8] = {};
    manager->SetAppWindow(reinterpret_cast<_GtkWindow*>(words));
    EXPECT_EQ(manager->GetAppWindow(), nullptr);
    manager->SetAppWindow(nullptr);
    EXPECT_EQ(manager->GetAppWindow(), nullptr);

    Find<void (*)(_GtkWindow*)>("gtk_widget_destroy")(window);
    Find<void (*)(_GtkWindow*)>("gtk_widget_destroy")(dialog);
    if (__lsan_enable != nullptr) __lsan_enable();
}

}  // namespace

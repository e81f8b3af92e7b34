// The host's window, with a real GTK 2 on a display of the test's own.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include "com/AppWindow.h"
#include "tests/pluginmgr/Manager.h"
#include "tests/support/ExpectedLeaks.h"
#include "tests/support/VirtualDisplay.h"

namespace {

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
    const CVirtualDisplay display;
    const CExpectedLeaks leaks;  // GTK keeps what it registers
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
}

}  // namespace

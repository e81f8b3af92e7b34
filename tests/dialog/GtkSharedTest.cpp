// GTK 2 that was initialised before the dialog came. This program does not link it, as the library does not.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <string>

#include "com/SettingsDialog.h"
#include "tests/support/ExpectedLeaks.h"
#include "tests/support/VirtualDisplay.h"

namespace {

// GTK writes its complaints to the standard error.
class GtkShared : public testing::Test {
protected:
    GtkShared() {
        setenv("LC_ALL", "C.UTF-8", 1);
        testing::internal::CaptureStderr();
    }
    ~GtkShared() override {
        if (m_pDialog != nullptr) Find<void(_GtkWidget*)>("gtk_widget_destroy")(m_pDialog);
    }

    template <typename TFunction>
    static TFunction* Find(const char* name) {
        return reinterpret_cast<TFunction*>(dlsym(RTLD_DEFAULT, name));
    }

    static bool Initialise() {
        dlopen("libgtk-x11-2.0.so.0", RTLD_NOW | RTLD_GLOBAL);
        return Find<int(int*, char***)>("gtk_init_check")(nullptr, nullptr) != 0;
    }

    void ShowDisplay() const { setenv("DISPLAY", m_display.Name().c_str(), 1); }

    _GtkWidget* Build() { return m_pDialog = AudioFormatSettingsDialog_New(nullptr); }

    static std::string Complaints() { return testing::internal::GetCapturedStderr(); }

    CExpectedLeaks m_leaks;     // GTK keeps what it registers
    CVirtualDisplay m_display;  // has said what it has to say before the test listens
    _GtkWidget* m_pDialog = nullptr;
};

TEST_F(GtkShared, IsLoadedByTheFirstDialogInSilence) {
    ASSERT_EQ(dlsym(RTLD_DEFAULT, "gtk_init_check"), nullptr);
    EXPECT_NE(Build(), nullptr);
    EXPECT_NE(dlsym(RTLD_DEFAULT, "gtk_init_check"), nullptr) << "components find it too";
    EXPECT_EQ(Complaints(), "");
}

TEST_F(GtkShared, OfTheHostIsUsedInSilence) {
    ASSERT_TRUE(Initialise());
    EXPECT_NE(Build(), nullptr);
    EXPECT_EQ(Complaints(), "");
}

TEST_F(GtkShared, OfTheHostIsUsedInSilenceWhereTheDisplayCameLater) {
    unsetenv("DISPLAY");
    ASSERT_FALSE(Initialise());
    ShowDisplay();
    EXPECT_NE(Build(), nullptr);
    EXPECT_EQ(Complaints(), "");
}

TEST_F(GtkShared, IsTriedAgainAfterAFailure) {
    unsetenv("DISPLAY");
    EXPECT_EQ(Build(), nullptr);
    EXPECT_EQ(Build(), nullptr);
    const std::string line = "Audio format settings: GTK 2 cannot be used: there is no display; DISPLAY is not set\n";
    EXPECT_EQ(Complaints(), line + line);
    testing::internal::CaptureStderr();
    ShowDisplay();
    EXPECT_NE(Build(), nullptr);
    EXPECT_EQ(Complaints(), "");
}

TEST_F(GtkShared, SaysNothingOfALocaleThatTheSystemLacks) {
    unsetenv("DISPLAY");
    setenv("LC_ALL", "xx_XX.UTF-8", 1);
    EXPECT_EQ(Build(), nullptr);
    EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), "C");
    EXPECT_EQ(Complaints(), "Audio format settings: GTK 2 cannot be used: there is no display; DISPLAY is not set\n");
}

}  // namespace

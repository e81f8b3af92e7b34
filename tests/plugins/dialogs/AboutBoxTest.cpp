// The about boxes of the reference plug-ins' components.
#include <dlfcn.h>

#include <algorithm>

#include "tests/plugins/LoadedPlugins.h"
#include "tests/support/DialogDriver.h"

namespace {

struct SComponent {
    const char* m_pszName;
    const char* m_pszText;  // without the library's version
};

constexpr SComponent kComponents[] = {
    {"libsndfile Decoder", "Reads sound files with libsndfile-1."},
    {"libsndfile Encoder", "Writes sound files with libsndfile-1."},
    {"SoX Resampler Convertor", "Converts sample rates, sample sizes and channels with libsoxr-0."},
#ifdef KELO_LIBAV_PLUGIN
    {"libavcodec Decoder", "Reads sound files with libavformat 5"},
#endif
#ifdef KELO_CURL_PLUGIN
    {"libcurl URL Handler", "Fetches remote files with libcurl 7."},
#endif
};

const std::vector<std::filesystem::path> kFurtherPlugins = {
#ifdef KELO_LIBAV_PLUGIN
    KELO_LIBAV_PLUGIN,
#endif
#ifdef KELO_CURL_PLUGIN
    KELO_CURL_PLUGIN,
#endif
};

// What was seen of a box while it was open.
struct SSeenBox {
    bool m_bAbout = false;
    GtkWindow* m_pParent = nullptr;
    std::vector<std::string> m_vTexts;

    bool Shows(const std::string& text) const {
        return std::any_of(m_vTexts.begin(), m_vTexts.end(),
                           [&](const std::string& shown) { return shown.find(text) != std::string::npos; });
    }
};

SSeenBox ShowAbout(IComponentAbout& about) {
    SSeenBox seen;
    const CDialogDriver driver([&](GtkDialog* dialog) {
        seen.m_bAbout = GTK_IS_ABOUT_DIALOG(dialog);
        seen.m_pParent = gtk_window_get_transient_for(GTK_WINDOW(dialog));
        seen.m_vTexts = VisibleTexts(dialog);
        gtk_dialog_response(dialog, GTK_RESPONSE_CANCEL);
    });
    about.About();
    EXPECT_TRUE(driver.Acted());
    return seen;
}

// How many windows there are, hidden ones too.
guint CountWindows() {
    GList* const windows = gtk_window_list_toplevels();
    const guint count = g_list_length(windows);
    g_list_free(windows);
    return count;
}

}  // namespace

TEST(PluginAbout, NamesItsVendor) {
    const CLoadedPlugins plugins(kFurtherPlugins);
    for (const SComponent& component : kComponents) {
        const auto about = plugins.About(component.m_pszName);
        ASSERT_TRUE(about) << component.m_pszName;
        EXPECT_STREQ(about->GetVendor(), "Kelo Audio") << component.m_pszName;
    }
}

TEST(PluginAbout, IsNotOfferedWhileGtkHasNoDisplay) {
    const CLoadedPlugins plugins(kFurtherPlugins);
    ASSERT_NE(dlsym(RTLD_DEFAULT, "gtk_major_version"), nullptr);
    for (const SComponent& component : kComponents) {
        EXPECT_FALSE(plugins.About(component.m_pszName)->HasAbout()) << component.m_pszName;
        plugins.About(component.m_pszName)->About();
    }
}

TEST(PluginAbout, IsOfferedWithGtk) {
    const CGtkSession gtk;
    const CLoadedPlugins plugins(kFurtherPlugins);
    for (const SComponent& component : kComponents) {
        EXPECT_TRUE(plugins.About(component.m_pszName)->HasAbout()) << component.m_pszName;
    }
}

TEST(PluginAbout, ShowsComponentLibraryAndVersionAboveTheHostsWindow) {
    const CGtkSession gtk;
    const CLoadedPlugins plugins(kFurtherPlugins);
    GtkWidget* const window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    const guint windows = CountWindows();
    for (const SComponent& component : kComponents) {
        SCOPED_TRACE(component.m_pszName);
        plugins.Manager().SetAppWindow(GTK_WINDOW(window));
        const SSeenBox seen = ShowAbout(*plugins.About(component.m_pszName));
        EXPECT_TRUE(seen.m_bAbout);
        EXPECT_EQ(seen.m_pParent, GTK_WINDOW(window));
        EXPECT_TRUE(seen.Shows(component.m_pszName));
        EXPECT_TRUE(seen.Shows(component.m_pszText));
        EXPECT_EQ(CountWindows(), windows);
    }
    gtk_widget_destroy(window);
}

TEST(PluginAbout, HasNoParentWithoutAHostsWindow) {
    const CGtkSession gtk;
    const CLoadedPlugins plugins(kFurtherPlugins);
    EXPECT_EQ(ShowAbout(*plugins.About("libsndfile Decoder")).m_pParent, nullptr);
}

TEST(PluginAbout, ForgetsTheManagerAtItsTermination) {
    const CGtkSession gtk;
    const CLoadedPlugins plugins(kFurtherPlugins);
    GtkWidget* const window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    plugins.Manager().SetAppWindow(GTK_WINDOW(window));
    for (const SComponent& component : kComponents) {
        plugins.Component(component.m_pszName)->Terminate();
        EXPECT_EQ(ShowAbout(*plugins.About(component.m_pszName)).m_pParent, nullptr) << component.m_pszName;
    }
    gtk_widget_destroy(window);
}

TEST(PluginAbout, TakesNoReferenceToTheManager) {
    const CLoadedPlugins plugins(kFurtherPlugins);
    EXPECT_EQ(plugins.Manager().AddRef(), 2u);
    EXPECT_EQ(plugins.Manager().Release(), 1u);
}

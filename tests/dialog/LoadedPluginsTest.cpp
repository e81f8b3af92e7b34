// The dialog filled from the reference plug-ins, with pictures of its pages for a person to look at.
#include <algorithm>
#include <set>

#include "tests/dialog/DialogFixture.h"
#include "tests/plugins/LoadedPlugins.h"

namespace {

constexpr const char* kPageNames[] = {"decoders", "encoders", "convertors"};

void ShowWhatIsPending() {
    while (gtk_events_pending() != FALSE) gtk_main_iteration();
}

struct SUnref {
    void operator()(gpointer object) const { g_object_unref(object); }
};
using CPicture = std::unique_ptr<GdkPixbuf, SUnref>;

CPicture PictureOf(GtkWidget* window) {
    int width = 0;
    int height = 0;
    gtk_window_get_size(GTK_WINDOW(window), &width, &height);
    return CPicture(
        gdk_pixbuf_get_from_drawable(nullptr, gtk_widget_get_window(window), nullptr, 0, 0, 0, 0, width, height));
}

std::size_t CountColours(GdkPixbuf* picture) {
    std::set<std::string> colours;
    const guchar* const pixels = gdk_pixbuf_get_pixels(picture);
    for (int y = 0; y < gdk_pixbuf_get_height(picture); ++y) {
        for (int x = 0; x < gdk_pixbuf_get_width(picture); ++x) {
            const auto* const pixel = pixels + y * gdk_pixbuf_get_rowstride(picture) + 3 * x;
            colours.emplace(pixel, pixel + 3);
        }
    }
    return colours.size();
}

class LoadedPluginsDialog : public testing::Test {
protected:
    LoadedPluginsDialog() {
        m_plugins.Manager().SetImagesDirectory(KELO_IMAGES);
        m_pDialog = AudioFormatSettingsDialog_New(nullptr);
    }
    ~LoadedPluginsDialog() override { gtk_widget_destroy(m_pDialog); }

    // Brings a page to the front with its first row selected.
    SPageUnderTest Turn(int number) const {
        const SPageUnderTest page = PageOf(m_pDialog, number);
        gtk_notebook_set_current_page(GTK_NOTEBOOK(NotebookOf(m_pDialog)), number);
        page.Select(0);
        ShowWhatIsPending();
        return page;
    }

    CGtkSession m_gtk;
    CLoadedPlugins m_plugins;
    GtkWidget* m_pDialog;
};

TEST_F(LoadedPluginsDialog, ListsWhatThePluginsProvide) {
    struct SRow {
        const char* m_pszName;
        const char* m_pszFile;
        bool m_bConfigurable;
    };
    constexpr SRow kRows[] = {{"libsndfile Decoder", "sndfile.so", false},
                              {"libsndfile Encoder", "sndfile.so", false},
                              {"SoX Resampler Convertor", "soxr.so", true}};
    for (int number = 0; number < 3; ++number) {
        const SPageUnderTest page = Turn(number);
        ASSERT_EQ(page.Rows(), 1) << kPageNames[number];
        EXPECT_EQ(page.Text(0, 1), kRows[number].m_pszName);
        EXPECT_EQ(page.Text(0, 2), "Kelo Audio");
        EXPECT_EQ(page.Text(0, 3), kRows[number].m_pszFile);
        EXPECT_EQ(page.CanConfigure(), kRows[number].m_bConfigurable) << kPageNames[number];
        EXPECT_TRUE(page.CanAbout()) << kPageNames[number];
    }
}

TEST_F(LoadedPluginsDialog, ShowsAnAboutBoxAboveItself) {
    GtkWindow* parent = nullptr;
    std::vector<std::string> texts;
    const SPageUnderTest page = Turn(2);
    const CDialogDriver driver([&](GtkDialog* box) {
        parent = gtk_window_get_transient_for(GTK_WINDOW(box));
        texts = VisibleTexts(box);
        gtk_dialog_response(box, GTK_RESPONSE_CANCEL);
    });
    gtk_button_clicked(GTK_BUTTON(page.m_pAbout));
    EXPECT_TRUE(driver.Acted());
    EXPECT_EQ(parent, GTK_WINDOW(m_pDialog));
    EXPECT_NE(std::find(texts.begin(), texts.end(), "SoX Resampler Convertor"), texts.end());
    EXPECT_EQ(m_plugins.Manager().GetAppWindow(), nullptr);
}

TEST_F(LoadedPluginsDialog, HasPagesThatCanBeSeen) {
    gtk_widget_show(m_pDialog);
    std::filesystem::create_directories(KELO_SCREENSHOTS);
    for (int number = 0; number < 3; ++number) {
        Turn(number);
        const CPicture picture = PictureOf(m_pDialog);
        ASSERT_NE(picture, nullptr);
        EXPECT_EQ(gdk_pixbuf_get_width(picture.get()), 600);
        EXPECT_EQ(gdk_pixbuf_get_height(picture.get()), 350);
        EXPECT_GT(CountColours(picture.get()), 20U) << "texts and an icon";
        const std::string path = std::string(KELO_SCREENSHOTS "/") + kPageNames[number] + ".png";
        EXPECT_TRUE(gdk_pixbuf_save(picture.get(), path.c_str(), "png", nullptr, "compression", "9", nullptr));
    }
}

}  // namespace

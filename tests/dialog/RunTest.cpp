// The dialog as a person leaves it.
#include <clocale>

#include "tests/dialog/DialogFixture.h"

namespace {

class Running : public DialogTest {
protected:
    static GtkWidget* CloseButtonOf(GtkDialog* dialog) {
        return Child<GtkWidget>(gtk_dialog_get_action_area(dialog), 0);
    }
};

TEST_F(Running, EndsWithTheOkResponseWhenClosedWithItsButton) {
    Build();
    const CDialogDriver driver([](GtkDialog* dialog) { gtk_button_clicked(GTK_BUTTON(CloseButtonOf(dialog))); });
    EXPECT_EQ(gtk_dialog_run(GTK_DIALOG(m_pDialog)), -5);
}

TEST_F(Running, MeansAcceptanceForConfigureWhenClosedWithItsButton) {
    const CDialogDriver driver([](GtkDialog* dialog) { gtk_button_clicked(GTK_BUTTON(CloseButtonOf(dialog))); });
    EXPECT_TRUE(m_manager->Configure());
    EXPECT_TRUE(driver.Acted());
    GList* const windows = gtk_window_list_toplevels();
    EXPECT_EQ(windows, nullptr) << "destroyed";
    g_list_free(windows);
}

TEST_F(Running, MeansRefusalForConfigureWhenTheWindowIsClosed) {
    const CDialogDriver driver([](GtkDialog* dialog) {
        GdkEvent* const event = gdk_event_new(GDK_DELETE);
        event->any.window = GDK_WINDOW(g_object_ref(gtk_widget_get_window(GTK_WIDGET(dialog))));
        gtk_main_do_event(event);
        gdk_event_free(event);
    });
    EXPECT_FALSE(m_manager->Configure());
    EXPECT_TRUE(driver.Acted());
}

TEST_F(Running, MeansRefusalForConfigureOnEscape) {
    const CDialogDriver driver([](GtkDialog* dialog) { g_signal_emit_by_name(dialog, "close"); });
    EXPECT_FALSE(m_manager->Configure());
    EXPECT_TRUE(driver.Acted());
}

TEST_F(Running, HasTheStoredWindowAsItsParent) {
    GtkWidget* const own = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    m_manager->SetAppWindow(GTK_WINDOW(own));
    GtkWindow* parent = nullptr;
    const CDialogDriver driver([&](GtkDialog* dialog) {
        parent = gtk_window_get_transient_for(GTK_WINDOW(dialog));
        gtk_button_clicked(GTK_BUTTON(CloseButtonOf(dialog)));
    });
    EXPECT_TRUE(m_manager->Configure());
    EXPECT_EQ(parent, GTK_WINDOW(own));
    m_manager->SetAppWindow(nullptr);
    gtk_widget_destroy(own);
}

TEST_F(Running, EndsInRefusalWhenItsParentGoes) {
    GtkWidget* const own = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    m_manager->SetAppWindow(GTK_WINDOW(own));
    const CDialogDriver driver([&](GtkDialog*) { gtk_widget_destroy(own); });
    EXPECT_FALSE(m_manager->Configure());
    m_manager->SetAppWindow(nullptr);
}

TEST_F(Running, LeavesTheLocaleToTheManager) {
    const std::string before = std::setlocale(LC_ALL, nullptr);
    Build();
    EXPECT_EQ(std::setlocale(LC_ALL, nullptr), before);
}

}  // namespace

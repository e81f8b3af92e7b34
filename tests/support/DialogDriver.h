// GTK 2 on a display of the test's own, and a hand for the dialogs that open there.
#pragma once

#include <gtest/gtest.h>
#include <gtk/gtk.h>

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/support/ExpectedLeaks.h"
#include "tests/support/VirtualDisplay.h"

// What GTK and its libraries allocate is theirs. Texts are the sources' own.
class CGtkSession {
public:
    CGtkSession() {
        setenv("LC_ALL", "C.UTF-8", 1);
        if (gtk_init_check(nullptr, nullptr) == FALSE) throw std::runtime_error("GTK has no display");
    }

private:
    CExpectedLeaks m_leaks;
    CVirtualDisplay m_display;
};

// Does `act` to the next dialog that the main loop shows.
class CDialogDriver {
public:
    explicit CDialogDriver(std::function<void(GtkDialog*)> act)
        : m_act(std::move(act)), m_nSource(g_timeout_add(20, &CDialogDriver::Look, this)) {}
    ~CDialogDriver() {
        if (m_nSource != 0) g_source_remove(m_nSource);
    }

    CDialogDriver(const CDialogDriver&) = delete;
    CDialogDriver& operator=(const CDialogDriver&) = delete;

    bool Acted() const { return m_nSource == 0; }

private:
    static GtkDialog* ShownDialog() {
        GList* const windows = gtk_window_list_toplevels();
        GtkDialog* shown = nullptr;
        for (const GList* entry = windows; entry != nullptr; entry = entry->next) {
            if (GTK_IS_DIALOG(entry->data) && gtk_widget_get_mapped(GTK_WIDGET(entry->data))) {
                shown = GTK_DIALOG(entry->data);
            }
        }
        g_list_free(windows);
        return shown;
    }

    static gboolean Look(gpointer data) {
        CDialogDriver& driver = *static_cast<CDialogDriver*>(data);
        GtkDialog* const dialog = ShownDialog();
        if (dialog == nullptr) return TRUE;
        driver.m_nSource = 0;
        driver.m_act(dialog);
        return FALSE;
    }

    std::function<void(GtkDialog*)> m_act;
    guint m_nSource;
};

// Every widget below `root`, outermost first.
inline void CollectWidgets(GtkWidget* root, std::vector<GtkWidget*>& widgets) {
    widgets.push_back(root);
    if (!GTK_IS_CONTAINER(root)) return;
    gtk_container_forall(
        GTK_CONTAINER(root),
        [](GtkWidget* child, gpointer list) { CollectWidgets(child, *static_cast<std::vector<GtkWidget*>*>(list)); },
        &widgets);
}

// The texts of the labels that are on the screen.
inline std::vector<std::string> VisibleTexts(GtkDialog* dialog) {
    std::vector<GtkWidget*> widgets;
    CollectWidgets(GTK_WIDGET(dialog), widgets);
    std::vector<std::string> texts;
    for (GtkWidget* const widget : widgets) {
        if (GTK_IS_LABEL(widget) && gtk_widget_get_mapped(widget)) {
            texts.emplace_back(gtk_label_get_text(GTK_LABEL(widget)));
        }
    }
    return texts;
}

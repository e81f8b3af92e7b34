// The settings dialog over components that a test makes, and hands for its widgets.
#pragma once

#include <gtest/gtest.h>
#include <gtk/gtk.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "com/AppWindow.h"
#include "com/AudioComponent.h"
#include "com/ComPtr.h"
#include "com/Configurable.h"
#include "com/InterfaceIds.h"
#include "com/QueryTable.h"
#include "com/SettingsDialog.h"
#include "pluginmgr/AudioPluginMgr.h"
#include "pluginmgr/GetAudioPluginMgr.h"
#include "tests/support/DialogDriver.h"

// A component whose dialogs are counted instead of shown.
class CDialogComponent : public IAudioComponent, public IConfigurable, public IComponentAbout {
public:
    CDialogComponent(const char* name, EAudioComponentType type) : m_pName(name), m_eType(type) {}
    virtual ~CDialogComponent() = default;

    unsigned int AddRef() override { return ++m_nReferences; }
    unsigned int Release() override { return --m_nReferences; }
    int QueryInterface(unsigned long identity, void** face) override {
        IConfigurable* const configurable = m_bConfigurable ? this : nullptr;
        IComponentAbout* const about = m_bOffersAbout ? this : nullptr;
        return AnswerQuery(*this, identity, face,
                           {{IID_IUnknown, static_cast<IAudioComponent*>(this)},
                            {IID_IConfigurable, configurable},
                            {IID_IComponentAbout, about}});
    }
    const char* GetName() override { return m_pName; }
    EAudioComponentType GetType() override { return m_eType; }
    bool Initialize(IAudioPluginMgr*, IStatus**) override { return true; }
    void Terminate() override {}
    bool Configure() override {
        ++m_nConfigured;
        if (m_during) m_during();
        return true;
    }
    const char* GetVendor() override { return m_pVendor; }
    bool HasAbout() override { return m_bHasAbout; }
    void About() override {
        ++m_nAbout;
        if (m_during) m_during();
    }

    bool m_bConfigurable = false;
    bool m_bOffersAbout = false;
    bool m_bHasAbout = false;
    const char* m_pVendor = "Vendor";
    int m_nConfigured = 0;
    int m_nAbout = 0;
    unsigned int m_nReferences = 1;
    std::function<void()> m_during;

private:
    const char* m_pName;
    EAudioComponentType m_eType;
};

template <typename T>
T* Child(GtkWidget* parent, guint index) {
    GList* const children = gtk_container_get_children(GTK_CONTAINER(parent));
    auto* const child = static_cast<T*>(g_list_nth_data(children, index));
    g_list_free(children);
    return child;
}

inline guint ChildCount(GtkWidget* parent) {
    GList* const children = gtk_container_get_children(GTK_CONTAINER(parent));
    const guint count = g_list_length(children);
    g_list_free(children);
    return count;
}

// One page's widgets, found by walking the real tree.
struct SPageUnderTest {
    GtkWidget* m_pBox;
    GtkWidget* m_pScroller;
    GtkTreeView* m_pView;
    GtkWidget* m_pButtonBox;
    GtkWidget* m_pConfigure;
    GtkWidget* m_pAbout;

    GtkTreeModel* Model() const { return gtk_tree_view_get_model(m_pView); }
    int Rows() const { return gtk_tree_model_iter_n_children(Model(), nullptr); }

    std::string Text(int row, int column) const {
        GtkTreeIter iter;
        EXPECT_TRUE(gtk_tree_model_iter_nth_child(Model(), &iter, nullptr, row));
        gchar* text = nullptr;
        gtk_tree_model_get(Model(), &iter, column, &text, -1);
        const std::string copy = text != nullptr ? text : "(none)";
        g_free(text);
        return copy;
    }

    bool Flag(int row, int column) const {
        GtkTreeIter iter;
        gtk_tree_model_iter_nth_child(Model(), &iter, nullptr, row);
        gboolean flag = FALSE;
        gtk_tree_model_get(Model(), &iter, column, &flag, -1);
        return flag != FALSE;
    }

    void Select(int row) const {
        GtkTreePath* const path = gtk_tree_path_new_from_indices(row, -1);
        gtk_tree_selection_select_path(gtk_tree_view_get_selection(m_pView), path);
        gtk_tree_path_free(path);
    }
    void Unselect() const { gtk_tree_selection_unselect_all(gtk_tree_view_get_selection(m_pView)); }

    bool CanConfigure() const { return gtk_widget_get_sensitive(m_pConfigure) != FALSE; }
    bool CanAbout() const { return gtk_widget_get_sensitive(m_pAbout) != FALSE; }
};

inline GtkWidget* NotebookOf(GtkWidget* dialog) {
    return Child<GtkWidget>(gtk_dialog_get_content_area(GTK_DIALOG(dialog)), 0);
}

inline SPageUnderTest PageOf(GtkWidget* dialog, int number) {
    SPageUnderTest page{};
    page.m_pBox = gtk_notebook_get_nth_page(GTK_NOTEBOOK(NotebookOf(dialog)), number);
    page.m_pScroller = Child<GtkWidget>(page.m_pBox, 0);
    page.m_pButtonBox = Child<GtkWidget>(page.m_pBox, 1);
    page.m_pView = GTK_TREE_VIEW(gtk_bin_get_child(GTK_BIN(page.m_pScroller)));
    page.m_pConfigure = Child<GtkWidget>(page.m_pButtonBox, 0);
    page.m_pAbout = Child<GtkWidget>(page.m_pButtonBox, 1);
    return page;
}

// The manager with components of the test's own; the dialog is built on demand.
class DialogTest : public testing::Test {
protected:
    DialogTest() {
        // What the toolkit complains of is a fault of the dialog.
        g_log_set_always_fatal(static_cast<GLogLevelFlags>(G_LOG_LEVEL_CRITICAL | G_LOG_LEVEL_WARNING));
        IAudioPluginMgr* manager = nullptr;
        GetAudioPluginMgr(&manager);
        m_manager = CComPtr<CAudioPluginMgr>::Adopt(static_cast<CAudioPluginMgr*>(manager));
    }
    ~DialogTest() override { Destroy(); }

    CDialogComponent& Add(const char* name, EAudioComponentType type, const char* file = "plugin.so") {
        m_components.push_back(std::make_unique<CDialogComponent>(name, type));
        m_manager->AddComponent(m_components.back().get(), file, 0);
        return *m_components.back();
    }

    GtkWidget* Build(GtkWindow* parent = nullptr) {
        m_pDialog = AudioFormatSettingsDialog_New(parent);
        if (m_pDialog != nullptr)
            g_object_add_weak_pointer(G_OBJECT(m_pDialog), reinterpret_cast<gpointer*>(&m_pDialog));
        return m_pDialog;
    }

    void Destroy() {
        if (m_pDialog != nullptr) gtk_widget_destroy(m_pDialog);
    }

    GtkWidget* Notebook() const { return NotebookOf(m_pDialog); }
    SPageUnderTest Page(int number) const { return PageOf(m_pDialog, number); }

    GtkWidget* CloseButton() const { return Child<GtkWidget>(gtk_dialog_get_action_area(GTK_DIALOG(m_pDialog)), 0); }

    CGtkSession m_gtk;
    std::vector<std::unique_ptr<CDialogComponent>> m_components;
    CComPtr<CAudioPluginMgr> m_manager;
    GtkWidget* m_pDialog = nullptr;
};

// What a page's buttons do with the selected component, and when they can be pressed.
#include "dialog/ButtonHandlers.h"

#include "com/AppWindow.h"
#include "com/AudioComponent.h"
#include "com/ComPtr.h"
#include "com/Configurable.h"
#include "com/InterfaceIds.h"
#include "stream/GuardedCall.h"

namespace {

// A row as its page's list shows it; the component is null when no row is selected.
struct SSelectedRow {
    CComPtr<IAudioComponent> m_pComponent;
    bool m_bFlag = false;
};

SSelectedRow SelectedRow(GtkButton* button, EListColumn flagColumn) {
    auto* const view = static_cast<GtkTreeView*>(g_object_get_data(G_OBJECT(button), kTreeViewKey));
    GtkTreeModel* model = nullptr;
    GtkTreeIter row;
    if (gtk_tree_selection_get_selected(gtk_tree_view_get_selection(view), &model, &row) == FALSE) return {};
    gpointer component = nullptr;
    gboolean flag = FALSE;
    gtk_tree_model_get(model, &row, LC_COMPONENT, &component, flagColumn, &flag, -1);
    return {CComPtr<IAudioComponent>(static_cast<IAudioComponent*>(component)), flag != FALSE};
}

// The settings dialog is the host's window while a component shows a dialog of its own. Afterwards there is none until
// the host sets one again: deliberate, as is that the window is set without regard to what the row offers.
template <typename TAction>
void WithDialogAsAppWindow(const SettingsDialogContext& context, TAction action) {
    const auto window = CComPtr<IAppWindow>::Query(context.pMgr, IID_IAppWindow);
    if (window) window->SetAppWindow(GTK_WINDOW(context.pDialog));
    // A component's exception must not reach GTK's frames.
    CallGuarded([&] { return action(), true; });
    if (window) window->SetAppWindow(nullptr);
}

template <EDialogPage Page>
gboolean OnRowSelected(GtkTreeSelection* /*selection*/, GtkTreeModel* model, GtkTreePath* path,
                       gboolean isCurrentlySelected, gpointer data) {
    const SDialogPage& page = static_cast<SettingsDialogContext*>(data)->pages[Page];
    gtk_widget_set_sensitive(page.pConfigureButton, FALSE);
    gtk_widget_set_sensitive(page.pAboutButton, FALSE);
    GtkTreeIter row;
    if (isCurrentlySelected != FALSE || gtk_tree_model_get_iter(model, &row, path) == FALSE) return TRUE;
    gboolean configurable = FALSE;
    gboolean hasAbout = FALSE;
    gtk_tree_model_get(model, &row, LC_CONFIGURABLE, &configurable, LC_HAS_ABOUT, &hasAbout, -1);
    gtk_widget_set_sensitive(page.pConfigureButton, configurable);
    gtk_widget_set_sensitive(page.pAboutButton, hasAbout);
    return TRUE;
}

}  // namespace

void OnConfigureClicked(GtkButton* button, gpointer data) {
    const SettingsDialogContext& context = *static_cast<SettingsDialogContext*>(data);
    const SSelectedRow row = SelectedRow(button, LC_CONFIGURABLE);
    if (!row.m_pComponent) return;
    WithDialogAsAppWindow(context, [&] {
        const auto configurable = CComPtr<IConfigurable>::Query(row.m_pComponent.Get(), IID_IConfigurable);
        if (configurable) configurable->Configure();
    });
}

void OnAboutClicked(GtkButton* button, gpointer data) {
    const SettingsDialogContext& context = *static_cast<SettingsDialogContext*>(data);
    const SSelectedRow row = SelectedRow(button, LC_HAS_ABOUT);
    if (!row.m_pComponent) return;
    WithDialogAsAppWindow(context, [&] {
        const auto about = CComPtr<IComponentAbout>::Query(row.m_pComponent.Get(), IID_IComponentAbout);
        if (about && about->HasAbout()) about->About();
    });
}

void FollowSelection(SettingsDialogContext* context, EDialogPage page) {
    constexpr GtkTreeSelectionFunc kFunctions[DP_COUNT] = {OnRowSelected<DP_DECODERS>, OnRowSelected<DP_ENCODERS>,
                                                           OnRowSelected<DP_CONVERTORS>};
    gtk_tree_selection_set_select_function(gtk_tree_view_get_selection(context->pages[page].pTreeView),
                                           kFunctions[page], context, nullptr);
}

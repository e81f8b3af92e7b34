// What a page's buttons do with the selected component, and when they can be pressed.
#include "dialog/ButtonHandlers.h"

#include "com/AppWindow.h"
#include "com/AudioComponent.h"
#include "com/ComPtr.h"
#include "com/Configurable.h"
#include "com/InterfaceIds.h"
#include "stream/GuardedCall.h"

namespace {

// The component of the selected row, null when there is none. `flagColumn` is read along and decides nothing: a
// component without the interface is found out by asking it.
CComPtr<IAudioComponent> SelectedComponent(GtkButton* button, EListColumn flagColumn) {
    auto* const view = static_cast<GtkTreeView*>(g_object_get_data(G_OBJECT(button), kTreeViewKey));
    GtkTreeModel* model = nullptr;
    GtkTreeIter row;
    if (gtk_tree_selection_get_selected(gtk_tree_view_get_selection(view), &model, &row) == FALSE) return nullptr;
    gpointer component = nullptr;
    gboolean flag = FALSE;
    gtk_tree_model_get(model, &row, LC_COMPONENT, &component, flagColumn, &flag, -1);
    return CComPtr<IAudioComponent>(static_cast<IAudioComponent*>(component));
}

// Calls `action` with the component's interface, if it has it, while the settings dialog is the manager's app window.
// Afterwards there is no app window until the host sets one again: deliberate, and so whatever the component has.
// The component may end the dialog and its context meanwhile, and its exceptions must not reach GTK's frames.
template <typename TInterface, typename TAction>
void CallWithDialogAsAppWindow(const SettingsDialogContext& context, IAudioComponent* component, unsigned long identity,
                               TAction action) {
    const auto window = CComPtr<IAppWindow>::Query(context.pMgr, IID_IAppWindow);
    CComPtr<TInterface> face;
    CallGuarded([&] {
        face = CComPtr<TInterface>::Query(component, identity);
        return true;
    });
    if (window) window->SetAppWindow(GTK_WINDOW(context.pDialog));
    CallGuarded([&] {
        if (face) action(*face);
        return true;
    });
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
    const auto component = SelectedComponent(button, LC_CONFIGURABLE);
    if (!component) return;
    CallWithDialogAsAppWindow<IConfigurable>(*static_cast<SettingsDialogContext*>(data), component.Get(),
                                             IID_IConfigurable, [](IConfigurable& face) { face.Configure(); });
}

void OnAboutClicked(GtkButton* button, gpointer data) {
    const auto component = SelectedComponent(button, LC_HAS_ABOUT);
    if (!component) return;
    CallWithDialogAsAppWindow<IComponentAbout>(*static_cast<SettingsDialogContext*>(data), component.Get(),
                                               IID_IComponentAbout, [](IComponentAbout& face) {
                                                   if (face.HasAbout()) face.About();
                                               });
}

void FollowSelection(SettingsDialogContext* context, EDialogPage page) {
    constexpr GtkTreeSelectionFunc kFunctions[DP_COUNT] = {OnRowSelected<DP_DECODERS>, OnRowSelected<DP_ENCODERS>,
                                                           OnRowSelected<DP_CONVERTORS>};
    gtk_tree_selection_set_select_function(gtk_tree_view_get_selection(context->pages[page].pTreeView),
                                           kFunctions[page], context, nullptr);
}

// The audio format settings dialog: building and end.
#include "com/SettingsDialog.h"

#include <libintl.h>

#include <cstdlib>
#include <cstring>

#include "com/SettingsDialogRun.h"
#include "dialog/ButtonHandlers.h"
#include "dialog/DialogContext.h"
#include "dialog/DialogPage.h"
#include "dialog/GtkLoading.h"
#include "dialog/PageFilling.h"
#include "stream/GuardedCall.h"

namespace {

constexpr int kDefaultWidth = 600;
constexpr int kDefaultHeight = 350;

SettingsDialogContext* NewContext() {
    void* const memory = std::malloc(sizeof(SettingsDialogContext));
    if (memory != nullptr) std::memset(memory, 0, sizeof(SettingsDialogContext));
    return static_cast<SettingsDialogContext*>(memory);
}

void OnDestroy(GtkObject* /*dialog*/, gpointer data) {
    auto* const context = static_cast<SettingsDialogContext*>(data);
    if (context->pMgr != nullptr) context->pMgr->Release();
    std::free(context);
}

void AppendPages(SettingsDialogContext* context, GtkNotebook* notebook) {
    const char* const labels[DP_COUNT] = {dgettext(kTextDomain, "Decoders"), dgettext(kTextDomain, "Encoders"),
                                          dgettext(kTextDomain, "Convertors")};
    for (const EDialogPage page : {DP_DECODERS, DP_ENCODERS, DP_CONVERTORS}) {
        GtkWidget* const content = BuildDialogPage(context, context->pages[page]);
        FollowSelection(context, page);
        gtk_notebook_append_page(notebook, content, gtk_label_new(labels[page]));
    }
}

void AddCloseButton(GtkDialog* dialog) {
    GtkWidget* const close = gtk_button_new_with_mnemonic(dgettext(kTextDomain, "_Close"));
    // Closing with the button counts as acceptance.
    gtk_dialog_add_action_widget(dialog, close, GTK_RESPONSE_OK);
    gtk_widget_show(close);
    WidenButton(close);
}

GtkWidget* BuildDialog(SettingsDialogContext* context, GtkWindow* parent) {
    GtkWidget* const widget = gtk_dialog_new();
    context->pDialog = GTK_DIALOG(widget);
    gtk_dialog_set_has_separator(context->pDialog, FALSE);
    g_signal_connect(widget, "destroy", G_CALLBACK(OnDestroy), context);

    GtkWidget* const notebook = gtk_notebook_new();
    gtk_box_pack_start(GTK_BOX(gtk_dialog_get_content_area(context->pDialog)), notebook, TRUE, TRUE, 0);
    gtk_widget_show(notebook);
    AppendPages(context, GTK_NOTEBOOK(notebook));
    AddCloseButton(context->pDialog);
    gtk_window_set_title(GTK_WINDOW(widget), dgettext(kTextDomain, "Audio Format Settings"));
    gtk_window_set_default_size(GTK_WINDOW(widget), kDefaultWidth, kDefaultHeight);

    // Without the manager, or with half of its components, the dialog is still one.
    CallGuarded([&] { return FillPages(*context), true; });
    if (GTK_IS_WINDOW(parent)) {
        gtk_window_set_transient_for(GTK_WINDOW(widget), parent);
        gtk_window_set_destroy_with_parent(GTK_WINDOW(widget), TRUE);
    }
    return widget;
}

}  // namespace

_GtkWidget* AudioFormatSettingsDialog_New(_GtkWindow* parent) {
    if (!PrepareGtk()) return nullptr;
    SettingsDialogContext* const context = NewContext();
    return context != nullptr ? BuildDialog(context, parent) : nullptr;
}

bool RunAudioFormatSettingsDialog(_GtkWindow* parent) {
    GtkWidget* const dialog = AudioFormatSettingsDialog_New(parent);
    if (dialog == nullptr) return false;
    g_object_ref(dialog);  // the dialog goes with its parent, whenever that is
    const bool accepted = gtk_dialog_run(GTK_DIALOG(dialog)) == GTK_RESPONSE_OK;
    gtk_widget_destroy(dialog);
    g_object_unref(dialog);
    return accepted;
}

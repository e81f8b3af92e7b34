// One page of the settings dialog: a list of components and two buttons.
#include "dialog/DialogPage.h"

#include <libintl.h>

#include "dialog/ButtonHandlers.h"

namespace {

constexpr int kSpacing = 5;
constexpr int kIconPadding = 2;
constexpr int kExtraWidth = 50;

void OnSizeRequest(GtkWidget* /*button*/, GtkRequisition* requisition, gpointer /*data*/) {
    requisition->width += kExtraWidth;
}

GtkListStore* NewStore() {
    return gtk_list_store_new(LC_COUNT, GDK_TYPE_PIXBUF, G_TYPE_STRING, G_TYPE_STRING, G_TYPE_STRING, G_TYPE_BOOLEAN,
                              G_TYPE_BOOLEAN, G_TYPE_POINTER);
}

GtkTreeViewColumn* NewColumn(GtkTreeView* view, const char* title) {
    GtkTreeViewColumn* const column = gtk_tree_view_column_new();
    gtk_tree_view_column_set_title(column, title);
    gtk_tree_view_column_set_expand(column, TRUE);
    gtk_tree_view_append_column(view, column);
    return column;
}

void PackText(GtkTreeViewColumn* column, EListColumn source) {
    GtkCellRenderer* const text = gtk_cell_renderer_text_new();
    gtk_tree_view_column_pack_start(column, text, TRUE);
    gtk_tree_view_column_add_attribute(column, text, "text", source);
}

void PackIcon(GtkTreeViewColumn* column) {
    GtkCellRenderer* const icon = gtk_cell_renderer_pixbuf_new();
    gtk_tree_view_column_pack_start(column, icon, FALSE);
    gtk_tree_view_column_add_attribute(column, icon, "pixbuf", LC_ICON);
    g_object_set(icon, "xpad", kIconPadding, nullptr);
}

GtkTreeView* NewTreeView() {
    GtkListStore* const store = NewStore();
    GtkTreeView* const view = GTK_TREE_VIEW(gtk_tree_view_new_with_model(GTK_TREE_MODEL(store)));
    g_object_unref(store);  // the view keeps it

    GtkTreeViewColumn* const name = NewColumn(view, dgettext(kTextDomain, "Plug-in Name"));
    PackIcon(name);
    PackText(name, LC_NAME);
    PackText(NewColumn(view, dgettext(kTextDomain, "Vendor")), LC_VENDOR);
    PackText(NewColumn(view, dgettext(kTextDomain, "File Name")), LC_FILE_NAME);
    return view;
}

GtkWidget* NewButton(GtkWidget* box, const char* label, GtkTreeView* view, GCallback onClicked,
                     SettingsDialogContext* context) {
    GtkWidget* const button = gtk_button_new_with_mnemonic(label);
    gtk_box_pack_start(GTK_BOX(box), button, FALSE, TRUE, 0);
    gtk_widget_set_sensitive(button, FALSE);
    gtk_widget_show(button);
    g_object_set_data(G_OBJECT(button), kTreeViewKey, view);
    WidenButton(button);
    g_signal_connect(button, "clicked", onClicked, context);
    return button;
}

}  // namespace

void WidenButton(GtkWidget* button) { g_signal_connect(button, "size_request", G_CALLBACK(OnSizeRequest), nullptr); }

GtkWidget* BuildDialogPage(SettingsDialogContext* context, SDialogPage& page) {
    GtkWidget* const box = gtk_vbox_new(FALSE, kSpacing);
    gtk_container_set_border_width(GTK_CONTAINER(box), kSpacing);
    gtk_widget_show(box);

    GtkWidget* const scroller = gtk_scrolled_window_new(nullptr, nullptr);
    gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(scroller), GTK_POLICY_AUTOMATIC, GTK_POLICY_AUTOMATIC);
    gtk_box_pack_start(GTK_BOX(box), scroller, TRUE, TRUE, 0);
    gtk_widget_show(scroller);

    page.pTreeView = NewTreeView();
    gtk_container_add(GTK_CONTAINER(scroller), GTK_WIDGET(page.pTreeView));
    gtk_widget_show(GTK_WIDGET(page.pTreeView));

    GtkWidget* const buttons = gtk_hbutton_box_new();
    gtk_button_box_set_layout(GTK_BUTTON_BOX(buttons), GTK_BUTTONBOX_START);
    gtk_box_set_spacing(GTK_BOX(buttons), kSpacing);
    gtk_box_pack_start(GTK_BOX(box), buttons, FALSE, TRUE, 0);
    gtk_widget_show(buttons);

    page.pConfigureButton = NewButton(buttons, dgettext(kTextDomain, "Configure..."), page.pTreeView,
                                      G_CALLBACK(OnConfigureClicked), context);
    page.pAboutButton =
        NewButton(buttons, dgettext(kTextDomain, "About..."), page.pTreeView, G_CALLBACK(OnAboutClicked), context);
    return box;
}

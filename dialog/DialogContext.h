// What one settings dialog keeps while it is open.
#pragma once

#include <gtk/gtk.h>

#include "stream/AudioPluginMgrInterface.h"

// The pages in their order.
enum EDialogPage : int { DP_DECODERS, DP_ENCODERS, DP_CONVERTORS, DP_COUNT };

// The columns of a page's list.
enum EListColumn : int {
    LC_ICON,
    LC_NAME,
    LC_VENDOR,
    LC_FILE_NAME,
    LC_CONFIGURABLE,
    LC_HAS_ABOUT,
    LC_COMPONENT,
    LC_COUNT
};

struct SDialogPage {
    GtkTreeView* pTreeView;
    GtkWidget* pConfigureButton;
    GtkWidget* pAboutButton;
};

// Allocated with malloc and zero-filled; freed when the dialog is destroyed. [GTK thread]
struct SettingsDialogContext {
    GtkDialog* pDialog;
    SDialogPage pages[DP_COUNT];
    IAudioPluginMgr* pMgr;  // one reference, null when the manager could not be had
};

// A button's way to its page's tree view.
constexpr char kTreeViewKey[] = "kelo_tree_view";

// The text domain that the manager binds.
constexpr char kTextDomain[] = "keloaudiopluginmgr";

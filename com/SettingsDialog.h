// The audio format settings dialog.
#pragma once

#include "portable/Export.h"

struct _GtkWidget;
struct _GtkWindow;

// Builds the dialog that lists the manager's components and opens their settings and about boxes; GTK 2 is loaded for
// it. The caller shows it with gtk_dialog_run and destroys it, before plug-ins are unloaded. `parent` is used only if
// it is a GTK window; it may be null.
// Null, with one line on the standard error naming the reason, where GTK 2 cannot be had. [GTK thread]
extern "C" KELO_EXPORT _GtkWidget* AudioFormatSettingsDialog_New(_GtkWindow* parent);

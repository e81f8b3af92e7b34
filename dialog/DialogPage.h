// One page of the settings dialog: a list of components and two buttons.
#pragma once

#include "dialog/DialogContext.h"

// Builds a page, shown, and stores its parts in `page`; both buttons begin insensitive and get `context` as the data of
// their handlers. [GTK thread]
GtkWidget* BuildDialogPage(SettingsDialogContext* context, SDialogPage& page);

// Makes a button 50 pixels wider than its natural size.
void WidenButton(GtkWidget* button);

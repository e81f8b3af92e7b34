// What a page's buttons do with the selected component.
#pragma once

#include "dialog/DialogContext.h"

// "clicked" handlers; `data` is the SettingsDialogContext. Without a selected row they do nothing. [GTK thread]
void OnConfigureClicked(GtkButton* button, gpointer data);
void OnAboutClicked(GtkButton* button, gpointer data);

// Installs the function that follows the page's selection with the sensitivity of its buttons. [GTK thread]
void FollowSelection(SettingsDialogContext* context, EDialogPage page);

// The rows of the settings dialog: a snapshot of the manager's components.
#pragma once

#include "dialog/DialogContext.h"

// Gets the manager into the context and appends a row for each decoder, encoder and convertor of its registry. What
// cannot be had leaves pages empty or rows without it. [GTK thread]
void FillPages(SettingsDialogContext& context);

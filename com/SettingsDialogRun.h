// The settings dialog as the manager's Configure shows it.
#pragma once

struct _GtkWindow;

// Shows the dialog until the person closes it; `parent` may be null or any pointer. True when it was closed with its
// own button, false also where there is no GTK 2. Implemented by the dialog. [GTK thread]
bool RunAudioFormatSettingsDialog(_GtkWindow* parent);

// GTK 2, loaded at the dialog's first use.
#pragma once

// Makes GTK 2 usable, or writes one line to the standard error that names the reason why it cannot be had: it is not
// installed, there is no display, or another GTK is in the process. The process's locale stays as it is. [GTK thread]
bool PrepareGtk();

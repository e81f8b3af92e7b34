// Whether a pointer is a GTK 2 window, in a library that does not link GTK.
#pragma once

// The GTK_IS_WINDOW test. False where the process has no GTK 2. [GTK thread]
bool IsGtkWindow(void* instance);

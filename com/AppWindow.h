// The host's top-level window.
#pragma once

#include "com/Unknown.h"

struct _GtkWindow;

// Implemented by the manager; set by hosts, read by components as the parent of their dialogs.
class IAppWindow : public IUnknown {
public:
    // Stored unchecked and without a reference; null forgets the window. [host set-up]
    virtual void SetAppWindow(_GtkWindow* window) = 0;

    // Null unless what was stored is a GTK 2 window. [GTK thread]
    virtual _GtkWindow* GetAppWindow() = 0;

protected:
    ~IAppWindow() = default;
};

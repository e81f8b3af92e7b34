// GTK 2 where the process already has it, for the dialogs of plug-ins.
#pragma once

class IAudioPluginMgr;
struct _GtkWidget;
struct _GtkWindow;

// A plug-in neither links nor loads GTK 2: it finds the functions in the process, or it has no dialogs.
// All of this file is for the [GTK thread].

// Whether GTK 2 is loaded and has a display.
bool CanShowDialogs();

// The window that component dialogs have as their parent; null when the host has set none. `manager` may be null.
_GtkWindow* AppWindowOf(IAudioPluginMgr* manager);

// An address in the process's global scope; throws std::runtime_error when there is none.
void* FindGtkSymbol(const char* name);

// TFunction is the C declaration, for example _GtkWidget*(const char*).
template <typename TFunction>
TFunction* GtkFunction(const char* name) {
    return reinterpret_cast<TFunction*>(FindGtkSymbol(name));
}

// A dialog from its creation to its destruction.
class CGtkDialog {
public:
    // Takes the dialog over. Transient for `parent` unless that is null.
    CGtkDialog(_GtkWidget* dialog, _GtkWindow* parent);
    ~CGtkDialog();

    CGtkDialog(const CGtkDialog&) = delete;
    CGtkDialog& operator=(const CGtkDialog&) = delete;

    _GtkWidget* Get() const { return m_pDialog; }

    // Shows the dialog until the person answers; true for OK.
    bool Run();

private:
    _GtkWidget* m_pDialog;
};

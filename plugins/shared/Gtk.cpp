// GTK 2 where the process already has it, for the dialogs of plug-ins.
#include "plugins/shared/Gtk.h"

#include <dlfcn.h>

#include <stdexcept>
#include <string>

#include "com/AppWindow.h"
#include "com/ComPtr.h"
#include "com/InterfaceIds.h"
#include "stream/AudioPluginMgrInterface.h"

namespace {

constexpr int kResponseOk = -5;  // GTK_RESPONSE_OK

}  // namespace

bool CanShowDialogs() {
    // A variable of GTK 2 alone; later versions have a function instead.
    const auto* const major = static_cast<const unsigned int*>(dlsym(RTLD_DEFAULT, "gtk_major_version"));
    if (major == nullptr || *major != 2) return false;
    const auto display = reinterpret_cast<void* (*)()>(dlsym(RTLD_DEFAULT, "gdk_display_get_default"));
    return display != nullptr && display() != nullptr;
}

_GtkWindow* AppWindowOf(IAudioPluginMgr* manager) {
    const auto host = CComPtr<IAppWindow>::Query(manager, IID_IAppWindow);
    return host ? host->GetAppWindow() : nullptr;
}

void* FindGtkSymbol(const char* name) {
    void* const symbol = dlsym(RTLD_DEFAULT, name);
    if (symbol == nullptr) throw std::runtime_error(std::string("GTK has no ") + name);
    return symbol;
}

CGtkDialog::CGtkDialog(_GtkWidget* dialog, _GtkWindow* parent) : m_pDialog(dialog) {
    if (parent == nullptr) return;
    GtkFunction<void(_GtkWidget*, _GtkWindow*)>("gtk_window_set_transient_for")(dialog, parent);
}

CGtkDialog::~CGtkDialog() { GtkFunction<void(_GtkWidget*)>("gtk_widget_destroy")(m_pDialog); }

bool CGtkDialog::Run() { return GtkFunction<int(_GtkWidget*)>("gtk_dialog_run")(m_pDialog) == kResponseOk; }

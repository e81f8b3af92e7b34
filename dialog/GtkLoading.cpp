// GTK 2, loaded at the dialog's first use.
#include "dialog/GtkLoading.h"

#include <dlfcn.h>
#include <gtk/gtk.h>
#include <stdlib.h>

#include <cstdio>
#include <string>

// Generated: fills the jump stubs. Empty, or the reason why the library cannot be had.
std::string DelayLoad_gtk2();

namespace {

bool IsLoaded(const char* library) {
    void* const handle = dlopen(library, RTLD_LAZY | RTLD_NOLOAD);
    if (handle != nullptr) dlclose(handle);
    return handle != nullptr;
}

// GTK 2 ends a process that holds the types of a later GTK. Only the later ones have this function.
bool IsLaterGtkLoaded() {
    return dlsym(RTLD_DEFAULT, "gtk_get_major_version") != nullptr || IsLoaded("libgtk-3.so.0") ||
           IsLoaded("libgtk-4.so.1");
}

void Ignore(const gchar* /*domain*/, GLogLevelFlags /*level*/, const gchar* /*message*/, gpointer /*data*/) {}

// The locale is the host's and the manager's; GTK would set it from the environment when it is initialised. It must be
// told before. That a host has initialised it already, without a display, cannot be asked and is no reason to complain.
void KeepLocale() {
    if (gdk_display_get_default() != nullptr) return;
    const guint handler = g_log_set_handler("Gtk", G_LOG_LEVEL_WARNING, Ignore, nullptr);
    gtk_disable_setlocale();
    g_log_remove_handler("Gtk", handler);
}

std::string WhyNoDisplay() {
    const char* const display = getenv("DISPLAY");
    if (display == nullptr || *display == '\0') return "there is no display; DISPLAY is not set";
    return "the display \"" + std::string(display) + "\" of DISPLAY cannot be opened";
}

// Empty when GTK 2 can be used.
std::string WhyNoGtk() {
    if (IsLaterGtkLoaded()) return "a later GTK is in this process, and both cannot be";
    std::string reason = DelayLoad_gtk2();
    if (!reason.empty()) return reason;
    KeepLocale();
    return gtk_init_check(nullptr, nullptr) != FALSE ? std::string() : WhyNoDisplay();
}

}  // namespace

bool PrepareGtk() {
    const std::string reason = WhyNoGtk();
    if (reason.empty()) return true;
    std::fprintf(stderr, "Audio format settings: GTK 2 cannot be used: %s\n", reason.c_str());
    return false;
}

// GTK 2, loaded at the dialog's first use.
#include "dialog/GtkLoading.h"

#include <dlfcn.h>
#include <gtk/gtk.h>

#include <cstdio>
#include <string>

// Generated: fills the jump stubs. Null, or the reason why the library cannot be had.
const char* DelayLoad_gtk2();

namespace {

bool IsLoaded(const char* library) {
    void* const handle = dlopen(library, RTLD_NOW | RTLD_NOLOAD);
    if (handle != nullptr) dlclose(handle);
    return handle != nullptr;
}

// GTK 2 ends a process that holds another GTK's types. Only later ones have this function.
bool IsOtherGtkLoaded() {
    return dlsym(RTLD_DEFAULT, "gtk_get_major_version") != nullptr || IsLoaded("libgtk-3.so.0") ||
           IsLoaded("libgtk-4.so.1");
}

// The locale is the host's and the manager's; GTK would set it from the environment. It must be told before it is
// initialised, and complains when it is told afterwards.
void KeepLocale() {
    static bool told = false;
    if (told || gdk_display_get_default() != nullptr) return;
    told = true;
    gtk_disable_setlocale();
}

// Empty when GTK 2 can be used.
std::string WhyNoGtk() {
    if (IsOtherGtkLoaded()) return "another version of GTK is in this process";
    if (const char* const reason = DelayLoad_gtk2()) return reason;
    KeepLocale();
    return gtk_init_check(nullptr, nullptr) != FALSE ? std::string() : "no display can be opened";
}

}  // namespace

bool PrepareGtk() {
    const std::string reason = WhyNoGtk();
    if (reason.empty()) return true;
    std::fprintf(stderr, "Audio format settings: GTK 2 cannot be used: %s\n", reason.c_str());
    return false;
}

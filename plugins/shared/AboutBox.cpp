// The about boxes of the reference plug-ins' components.
#include "plugins/shared/AboutBox.h"

#include <exception>
#include <string>

#include "plugins/shared/Gtk.h"

namespace {

std::string Filled(const std::string& format, const char* library) {
    const std::size_t place = format.find("%s");
    return place == std::string::npos ? format : format.substr(0, place) + library + format.substr(place + 2);
}

}  // namespace

void ShowAboutBox(_GtkWindow* parent, const char* component, const char* format, const char* library) noexcept {
    if (!CanShowDialogs()) return;
    try {
        CGtkDialog box(GtkFunction<_GtkWidget*()>("gtk_about_dialog_new")(), parent);
        using CSetText = void(_GtkWidget*, const char*);
        GtkFunction<CSetText>("gtk_about_dialog_set_program_name")(box.Get(), component);
        GtkFunction<CSetText>("gtk_about_dialog_set_comments")(box.Get(), Filled(format, library).c_str());
        box.Run();
    } catch (const std::exception&) {
        // About has no result to report with.
    }
}

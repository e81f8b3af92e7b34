// The about boxes of the reference plug-ins' components.
#pragma once

struct _GtkWindow;

// What IComponentAbout::GetVendor answers.
constexpr const char* kVendor = "Kelo Audio";

// The text domain of the dialogs' texts; the manager binds it.
constexpr const char* kTextDomain = "keloaudiopluginmgr";

// Shows the box until it is closed: the component's name, and `format` with `library`, a codec library's name and
// version, in the place of its "%s". `parent` may be null. Nothing is shown where GTK 2 cannot. [GTK thread]
void ShowAboutBox(_GtkWindow* parent, const char* component, const char* format, const char* library) noexcept;

// GTK_IS_WINDOW through the functions of the GTK 2 that is in the process, whoever brought it.
#include "pluginmgr/GtkWindowCheck.h"

#include <dlfcn.h>

#include <cstddef>
#include <memory>

namespace {

// GObject's public layout: an instance begins with its class, a class with its type (GTypeInstance, GTypeClass).
struct STypeClass {
    std::size_t m_nType;
};
struct STypeInstance {
    STypeClass* m_pClass;
};

struct SCloseLibrary {
    void operator()(void* library) const { dlclose(library); }
};

template <typename TFunction>
TFunction Find(void* library, const char* symbol) {
    return reinterpret_cast<TFunction>(dlsym(library, symbol));
}

}  // namespace

bool IsGtkWindow(void* instance) {
    if (instance == nullptr) return false;
    const std::unique_ptr<void, SCloseLibrary> gtk(dlopen("libgtk-x11-2.0.so.0", RTLD_NOW | RTLD_NOLOAD));
    if (gtk == nullptr) return false;
    const auto windowType = Find<std::size_t (*)()>(gtk.get(), "gtk_window_get_type");
    const auto isA = Find<int (*)(void*, std::size_t)>(gtk.get(), "g_type_check_instance_is_a");
    if (windowType == nullptr || isA == nullptr) return false;

    const STypeClass* const instanceClass = static_cast<STypeInstance*>(instance)->m_pClass;
    const std::size_t type = windowType();
    return (instanceClass != nullptr && instanceClass->m_nType == type) || isA(instance, type) != 0;
}

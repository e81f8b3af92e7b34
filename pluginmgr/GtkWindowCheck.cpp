// GTK_IS_WINDOW through symbols that the host's own GTK 2 provides.
#include "pluginmgr/GtkWindowCheck.h"

#include <dlfcn.h>

#include <cstddef>

namespace {

// GObject's public layout: an instance begins with its class, a class with its type (GTypeInstance, GTypeClass).
struct STypeClass {
    std::size_t m_nType;
};
struct STypeInstance {
    STypeClass* m_pClass;
};

template <typename TFunction>
TFunction FindGlobal(const char* symbol) {
    return reinterpret_cast<TFunction>(dlsym(RTLD_DEFAULT, symbol));
}

bool IsGtk2Loaded() {
    const auto* const major = FindGlobal<const unsigned int*>("gtk_major_version");
    return major != nullptr && *major == 2;
}

}  // namespace

bool IsGtkWindow(void* instance) {
    if (instance == nullptr || !IsGtk2Loaded()) return false;
    const auto windowType = FindGlobal<std::size_t (*)()>("gtk_window_get_type");
    const auto isA = FindGlobal<int (*)(void*, std::size_t)>("g_type_check_instance_is_a");
    if (windowType == nullptr || isA == nullptr) return false;

    const STypeClass* const instanceClass = static_cast<STypeInstance*>(instance)->m_pClass;
    const std::size_t type = windowType();
    return (instanceClass != nullptr && instanceClass->m_nType == type) || isA(instance, type) != 0;
}

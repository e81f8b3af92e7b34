// Calls through the slots of a live object's virtual table, past the declarations that the compiler sees.
// Itanium C++ ABI, 2.5: the first word of every face of an object points at the slots of that face's table.
#pragma once

#include <dlfcn.h>

#include <cstddef>
#include <string>

inline void* SlotAddress(const void* face, std::size_t slot) {
    void* const* const table = *static_cast<void* const* const*>(face);
    return table[slot];
}

// Calls slot number `slot` of `face` as a function of the hand-written type `TFunction`, whose first parameter is the
// face. The function sanitizer knows only the declared type, so it is off here.
template <typename TFunction, typename... TArguments>
__attribute__((no_sanitize("undefined"))) auto CallSlot(void* face, std::size_t slot, TArguments... arguments) {
    return reinterpret_cast<TFunction>(SlotAddress(face, slot))(face, arguments...);
}

// The mangled name of the library's function in that slot; what stands there when the library shows no such function.
inline std::string SlotSymbol(const void* face, std::size_t slot) {
    Dl_info found{};
    void* const address = SlotAddress(face, slot);
    if (dladdr(address, &found) == 0 || found.dli_sname == nullptr) return "nothing";
    return found.dli_saddr == address ? found.dli_sname : "inside " + std::string(found.dli_sname);
}

// Whether the slot holds exactly the exported function of that mangled name.
inline bool SlotHolds(const void* face, std::size_t slot, const char* symbol) {
    void* const function = dlsym(RTLD_DEFAULT, symbol);
    return function != nullptr && function == SlotAddress(face, slot);
}

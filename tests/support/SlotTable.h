// Calls through the virtual table of a live object, with nothing taken from the class's header.
#pragma once

#include <cstddef>
#include <cstring>

#if defined(__clang__)
#define KELO_UNTYPED_CALL __attribute__((no_sanitize("function", "vptr")))
#else
#define KELO_UNTYPED_CALL
#endif

// The entry of slot `index` (Itanium C++ ABI: the object begins with the address of slot 0).
inline void* SlotOf(const void* object, std::size_t index) {
    void* const* table = nullptr;
    std::memcpy(&table, object, sizeof(table));
    return table[index];
}

// Calls slot `index` as an operation of this signature.
template <typename Result, typename... Arguments>
KELO_UNTYPED_CALL Result CallSlot(void* object, std::size_t index, Arguments... arguments) {
    return reinterpret_cast<Result (*)(void*, Arguments...)>(SlotOf(object, index))(object, arguments...);
}

// The value of type T that lies `offset` bytes into the object.
template <typename T>
T FieldAt(const void* object, std::size_t offset) {
    T value;
    std::memcpy(&value, static_cast<const char*>(object) + offset, sizeof(value));
    return value;
}

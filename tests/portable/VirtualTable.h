// Reads and calls the slots of a live object's virtual table by hand.
#pragma once

#include <stddef.h>
#include <stdint.h>
#include <string.h>

// The function in slot `index` (Itanium C++ ABI: the complete and the deleting destructor take one slot each).
template <typename TFunction>
TFunction* SlotOf(const void* object, size_t index) {
    const void* const* table = nullptr;
    memcpy(&table, object, sizeof table);
    return reinterpret_cast<TFunction*>(reinterpret_cast<uintptr_t>(table[index]));
}

// A field of type T at a byte offset of an object, also of one whose life has ended.
template <typename T>
T FieldAt(const void* object, size_t offset) {
    T field;
    memcpy(&field, static_cast<const unsigned char*>(object) + offset, sizeof field);
    return field;
}

// Calls by slot number, as a separately built module makes them.
#pragma once

namespace support {

// The table of operations that a face begins with.
inline void* const* TableOf(const void* face) { return *static_cast<void* const* const*>(face); }

// Calls the operation in a slot of the face's table. The object goes in as the first argument (Itanium C++ ABI).
template <typename TResult, typename... TArguments>
#ifdef __clang__
__attribute__((no_sanitize("function")))
#endif
TResult
CallSlot(void* face, int slot, TArguments... arguments) {
    using Operation = TResult (*)(void*, TArguments...);
    return reinterpret_cast<Operation>(TableOf(face)[slot])(face, arguments...);
}

}  // namespace support

// Slot numbers of an interface's operations, as every compiler that reads its header calls them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "com/Unknown.h"

namespace support {

// The slot of a virtual operation, which has exactly the type `TSignature` or does not compile (Itanium C++ ABI, 2.3:
// a pointer to a virtual member is 1 plus the offset of its slot).
template <typename TSignature, typename TInterface>
std::size_t Slot(TSignature TInterface::*operation) {
    std::uintptr_t word = 0;
    static_assert(sizeof(operation) == 2 * sizeof(word), "slot, adjustment");
    std::memcpy(&word, &operation, sizeof(word));
    return (word - 1) / sizeof(void*);
}

// An operation behind the last one of an interface; its slot is the length of the interface's table.
template <typename TInterface>
class CBehind : public TInterface {
public:
    virtual void Behind() = 0;

protected:
    ~CBehind() = default;
};

template <typename TInterface>
std::size_t TableLength() {
    return Slot<void()>(&CBehind<TInterface>::Behind);
}

// The length of the table of an interface that begins with the root interface and consists of one table.
template <typename TInterface>
std::size_t LengthBehindUnknown() {
    static_assert(std::is_base_of<IUnknown, TInterface>::value, "begins with the three operations of IUnknown");
    static_assert(sizeof(TInterface) == sizeof(void*), "one table and nothing else");
    return TableLength<TInterface>();
}

}  // namespace support

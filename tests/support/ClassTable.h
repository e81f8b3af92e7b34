// The tables of operations of exported classes, compared with the library's functions by their mangled names.
#pragma once

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <link.h>

#include <cstddef>
#include <cstring>
#include <initializer_list>

#include "tests/support/Sanitizers.h"

namespace support {

using CTable = const void* const*;

// In the place of a name: the operation is left to the deriving class.
constexpr const char* kPure = "__cxa_pure_virtual";

// The table of one face of a live object (Itanium C++ ABI, 2.5: the face begins with the address of slot 0).
inline CTable TableOf(const void* face) {
    CTable table = nullptr;
    std::memcpy(&table, face, sizeof(table));
    return table;
}

// The primary table of a class by the mangled name of its table group; slot 0 stands behind the offset to the object's
// begin and the type information.
inline CTable TableOfClass(const char* group) {
    const void* const found = dlsym(RTLD_DEFAULT, group);
    return found == nullptr ? nullptr : static_cast<CTable>(found) + 2;
}

// Expects the slots from 0 on to hold exactly these functions.
inline void ExpectSlots(CTable table, std::initializer_list<const char*> functions) {
    ASSERT_NE(table, nullptr);
    std::size_t slot = 0;
    for (const char* const function : functions) {
        const void* const expected = dlsym(RTLD_DEFAULT, function);
        EXPECT_NE(expected, nullptr) << "slot " << slot << ": the library does not show " << function;
        EXPECT_EQ(table[slot], expected) << "slot " << slot << " is not " << function;
        ++slot;
    }
}

// Expects the tables of a class, one length per face in the order of the bases, to be all that its group holds.
inline void ExpectTableLengths(const char* group, std::initializer_list<std::size_t> lengths) {
    std::size_t expected = 0;
    for (const std::size_t slots : lengths) expected += sizeof(void*) * (2 + slots);

    Dl_info found{};
    ElfW(Sym)* symbol = nullptr;
    void* const address = dlsym(RTLD_DEFAULT, group);
    ASSERT_NE(address, nullptr) << "the library does not show " << group;
    ASSERT_NE(dladdr1(address, &found, reinterpret_cast<void**>(&symbol), RTLD_DL_SYMENT), 0);
    // The address sanitizer lets a guard zone count as a part of every variable.
    if (kAddressSanitizer) {
        EXPECT_GE(symbol->st_size, expected) << group;
    } else {
        EXPECT_EQ(symbol->st_size, expected) << group;
    }
}

}  // namespace support

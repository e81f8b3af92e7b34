// Where the members of a class lie, private ones included.
#pragma once

#include <cstddef>
#include <cstring>
#include <ostream>
#include <vector>

namespace support {

struct SPlace {
    std::size_t m_nOffset;
    std::size_t m_nSize;
};

inline bool operator==(const SPlace& left, const SPlace& right) {
    return left.m_nOffset == right.m_nOffset && left.m_nSize == right.m_nSize;
}
inline void PrintTo(const SPlace& place, std::ostream* out) {
    *out << place.m_nSize << " bytes at " << place.m_nOffset;
}

// Itanium C++ ABI, 2.3: a pointer to a data member is its offset.
template <typename TClass, typename TMember>
SPlace PlaceOf(TMember TClass::*member) {
    std::size_t offset = 0;
    static_assert(sizeof(member) == sizeof(offset), "an offset and nothing else");
    std::memcpy(&offset, &member, sizeof(offset));
    return {offset, sizeof(TMember)};
}

// The places of the members of one class, which `TName` stands for. Only an explicit instantiation may name private
// members (C++17, [temp.explicit]/12), hence
//     template struct SMembers<SNameOfTheList, &CClass::m_first, &CClass::m_second>;
// after a declaration, in this namespace, of the function that it defines.
template <typename TName, auto... kMembers>
struct SMembers {
    friend std::vector<SPlace> PlacesOf(TName) { return {PlaceOf(kMembers)...}; }
};

}  // namespace support

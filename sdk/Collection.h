// Several components in one plug-in.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <tuple>

#include "sdk/Component.h"

// The primary component of a plug-in with one default-constructed component of each of TMembers. [any thread]
template <typename... TMembers>
class CCollection : public CComponent<IComponentEnum> {
public:
    // One for each of TMembers.
    int GetCount() final { return static_cast<int>(sizeof...(TMembers)); }

    bool GetComponent(int index, IAudioComponent** component) final {
        if (index < 0 || index >= GetCount() || component == nullptr) return false;
        *component = m_faces[static_cast<std::size_t>(index)];
        (*component)->AddRef();
        return true;
    }

protected:
    // A name that no list shows: only the members are registered.
    explicit CCollection(std::string name) : CComponent(std::move(name), ACT_COLLECTION) {}
    ~CCollection() = default;

private:
    std::tuple<TMembers...> m_members;
    std::array<IAudioComponent*, sizeof...(TMembers)> m_faces{&std::get<TMembers>(m_members)...};
};

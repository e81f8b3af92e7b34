// The extensions that a component lists. [any thread]
#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "sdk/Component.h"

// Extensions are given without the dot.
template <typename... TFaces>
class CExtensionComponent : public CComponent<IExtensionList, TFaces...> {
public:
    // Extensions that the component lists.
    int GetCount() final { return static_cast<int>(m_vExtensions.size()); }

    // Null when there is no extension `n`.
    const char* GetAt(int n) final {
        return n >= 0 && n < GetCount() ? m_vExtensions[static_cast<std::size_t>(n)].c_str() : nullptr;
    }

protected:
    // The name that people see; `extensions` are without the dot.
    CExtensionComponent(std::string name, EAudioComponentType type, std::vector<std::string> extensions)
        : CComponent<IExtensionList, TFaces...>(std::move(name), type), m_vExtensions(std::move(extensions)) {}
    ~CExtensionComponent() = default;

    // As given.
    const std::vector<std::string>& Extensions() const { return m_vExtensions; }

private:
    std::vector<std::string> m_vExtensions;
};

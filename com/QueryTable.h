// QueryInterface as a table of identities and faces.
#pragma once

#include <initializer_list>

#include "com/InterfaceIds.h"
#include "com/Unknown.h"

// One line of a class's table. A null face means that the object does not offer the interface.
struct SInterfaceFace {
    unsigned long m_nIdentity;
    void* m_pFace;
};

// Stores the first face whose identity is asked and adds one reference to `object`. [any thread]
template <typename TObject>
int AnswerQuery(TObject& object, unsigned long identity, void** face, std::initializer_list<SInterfaceFace> faces) {
    if (face == nullptr) return kInterfaceNoOutPointer;
    *face = nullptr;
    for (const SInterfaceFace& offered : faces) {
        if (offered.m_pFace == nullptr || offered.m_nIdentity != identity) continue;
        *face = offered.m_pFace;
        object.AddRef();
        return kInterfaceFound;
    }
    return kInterfaceMissing;
}

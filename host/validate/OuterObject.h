// An outer object that records what reaches it.
#pragma once

#include "com/Unknown.h"

// Answers no interface. Not counted: it lives on the stack of a check. [stream-thread]
class COuterObject final : public IUnknown {
public:
    unsigned int AddRef() override {
        ++m_nAddRefs;
        return ++m_nReferences;
    }
    unsigned int Release() override {
        ++m_nReleases;
        return --m_nReferences;
    }
    int QueryInterface(unsigned long identity, void** face) override {
        ++m_nQueries;
        m_nLastIdentity = identity;
        if (face == nullptr) return kInterfaceNoOutPointer;
        *face = nullptr;
        return kInterfaceMissing;
    }

    int AddRefs() const { return m_nAddRefs; }
    int Releases() const { return m_nReleases; }
    int Queries() const { return m_nQueries; }
    unsigned long LastIdentity() const { return m_nLastIdentity; }

private:
    unsigned int m_nReferences = 1000;
    int m_nAddRefs = 0;
    int m_nReleases = 0;
    int m_nQueries = 0;
    unsigned long m_nLastIdentity = ~0UL;
};

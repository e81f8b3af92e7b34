// An object in memory that a process shares with the processes that it forks.
#pragma once

#include <sys/mman.h>

#include <new>

#include "host/Failure.h"

// What a process has written there survives its crash. Made before the fork; one process writes, the other reads.
template <typename TObject>
class CSharedObject {
public:
    // Throws CFailure when memory runs out.
    CSharedObject() : m_pObject(new (Map()) TObject) {}
    ~CSharedObject() { munmap(m_pObject, sizeof(TObject)); }

    CSharedObject(const CSharedObject&) = delete;
    CSharedObject& operator=(const CSharedObject&) = delete;

    TObject* operator->() const { return m_pObject; }

private:
    static void* Map() {
        void* const memory = mmap(nullptr, sizeof(TObject), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED) throw CFailure("validate", "not enough memory");
        return memory;
    }

    TObject* m_pObject;
};

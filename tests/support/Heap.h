// The heap of a test program that Heap.cpp is linked into: counted, and out of memory on demand. What the library and
// the plug-ins take with operator new counts, what C libraries take does not; tests/faults/Allocations.h fails those of
// the library alone. Any thread, unless told otherwise.
#pragma once

#include <cstddef>

#include "tests/support/Sanitizers.h"

// The thread sanitizer's operator new stands before this one; tests that need this one are skipped then.
constexpr bool kHeapIsReplaced = !support::kThreadSanitizer;
constexpr const char* kHeapIsTaken = "the thread sanitizer keeps the heap to itself";

// How often operator new has been called.
int AllocationCount();

// While one lives, no allocation of that many bytes or more succeeds. One at a time.
class CScarceMemory {
public:
    explicit CScarceMemory(std::size_t refusedSize);
    ~CScarceMemory();

    CScarceMemory(const CScarceMemory&) = delete;
    CScarceMemory& operator=(const CScarceMemory&) = delete;
};

// The `n`-th allocation of its life, counted from 1, fails. One at a time, and no other thread allocates.
class CFailingAllocation {
public:
    explicit CFailingAllocation(int n);
    ~CFailingAllocation();

    CFailingAllocation(const CFailingAllocation&) = delete;
    CFailingAllocation& operator=(const CFailingAllocation&) = delete;

    // Whether there have been that many.
    bool HasStruck() const;
};

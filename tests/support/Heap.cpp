// The program's own operator new stands before the C++ library's.
#include "tests/support/Heap.h"

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <new>

namespace {

std::atomic<int> g_nAllocations = 0;
std::atomic<std::size_t> g_nRefusedSize = SIZE_MAX;

// Which of the allocations fails; none has the number 0.
std::atomic<int> g_nFailing = 0;

}  // namespace

int AllocationCount() { return g_nAllocations; }

CScarceMemory::CScarceMemory(std::size_t refusedSize) { g_nRefusedSize = refusedSize; }
CScarceMemory::~CScarceMemory() { g_nRefusedSize = SIZE_MAX; }

CFailingAllocation::CFailingAllocation(int n) { g_nFailing = g_nAllocations + n; }
CFailingAllocation::~CFailingAllocation() { g_nFailing = 0; }
bool CFailingAllocation::HasStruck() const { return g_nAllocations >= g_nFailing; }

void* operator new(std::size_t size) {
    const int number = ++g_nAllocations;
    const bool fails = number == g_nFailing || size >= g_nRefusedSize;
    void* const memory = fails ? nullptr : std::malloc(size);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}
// As std::stable_sort and source aggregators ask for memory; the address sanitizer has such of its own.
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    try {
        return operator new(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}
void* operator new[](std::size_t size) { return operator new(size); }
void* operator new[](std::size_t size, const std::nothrow_t& tag) noexcept { return operator new(size, tag); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t /*size*/) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t /*size*/) noexcept { std::free(memory); }

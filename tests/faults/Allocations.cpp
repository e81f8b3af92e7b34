// The program's own operator new stands before the C++ library's.
#include "tests/faults/Allocations.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <new>

#include "portable/Export.h"
#include "tests/faults/LibraryCaller.h"

namespace {

CFailingLibraryAllocation* g_pFailing = nullptr;

constexpr std::size_t kMostBlocks = 16384;
std::array<void*, kMostBlocks> g_blocks;
std::size_t g_nBlocks = 0;

void Remember(void* block) {
    if (g_nBlocks == kMostBlocks) std::abort();
    g_blocks[g_nBlocks++] = block;
}

void Forget(void* block) {
    const auto end = g_blocks.begin() + static_cast<std::ptrdiff_t>(g_nBlocks);
    const auto found = std::find(g_blocks.begin(), end, block);
    if (found != end) *found = g_blocks[--g_nBlocks];
}

void* Allocate(std::size_t size, const void* caller) noexcept {
    const bool own = ServesLibrary(caller);
    if (own && g_pFailing != nullptr && g_pFailing->Strikes()) return nullptr;
    void* const block = std::malloc(std::max<std::size_t>(size, 1));
    if (own && block != nullptr) Remember(block);
    return block;
}

void* AllocateOrThrow(std::size_t size, const void* caller) {
    void* const block = Allocate(size, caller);
    if (block == nullptr) throw std::bad_alloc();
    return block;
}

void Release(void* block) noexcept {
    if (block == nullptr) return;
    Forget(block);
    std::free(block);
}

}  // namespace

CFailingLibraryAllocation::CFailingLibraryAllocation(int first, bool andLater)
    : m_nFirst(first), m_bAndLater(andLater) {
    g_pFailing = this;
}

CFailingLibraryAllocation::~CFailingLibraryAllocation() { g_pFailing = nullptr; }

bool CFailingLibraryAllocation::Strikes() {
    ++m_nCount;
    return m_nCount == m_nFirst || (m_bAndLater && m_nCount > m_nFirst);
}

std::size_t LiveBlocks() { return g_nBlocks; }

KELO_EXPORT void* operator new(std::size_t size) { return AllocateOrThrow(size, __builtin_return_address(0)); }
KELO_EXPORT void* operator new[](std::size_t size) { return AllocateOrThrow(size, __builtin_return_address(0)); }
KELO_EXPORT void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    return Allocate(size, __builtin_return_address(0));
}
KELO_EXPORT void* operator new[](std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    return Allocate(size, __builtin_return_address(0));
}
KELO_EXPORT void operator delete(void* block) noexcept { Release(block); }
KELO_EXPORT void operator delete[](void* block) noexcept { Release(block); }
KELO_EXPORT void operator delete(void* block, std::size_t /*size*/) noexcept { Release(block); }
KELO_EXPORT void operator delete[](void* block, std::size_t /*size*/) noexcept { Release(block); }
KELO_EXPORT void operator delete(void* block, const std::nothrow_t& /*tag*/) noexcept { Release(block); }
KELO_EXPORT void operator delete[](void* block, const std::nothrow_t& /*tag*/) noexcept { Release(block); }

// Memory that the library asks for and does not get.
#pragma once

#include <cstddef>

// While it lives, one of the allocations that the library makes through operator new fails, its texts included, or all
// of them from there on; those of the tests and of other libraries do not. One at a time. One thread.
class CFailingLibraryAllocation {
public:
    // Counted from 1.
    explicit CFailingLibraryAllocation(int first, bool andLater = false);
    ~CFailingLibraryAllocation();

    CFailingLibraryAllocation(const CFailingLibraryAllocation&) = delete;
    CFailingLibraryAllocation& operator=(const CFailingLibraryAllocation&) = delete;

    // Whether the library came as far as that.
    bool HasStruck() const { return m_nCount >= m_nFirst; }

    // How many allocations it has tried.
    int GetCount() const { return m_nCount; }

    // Counts an allocation and tells whether it fails.
    bool Strikes();

private:
    int m_nFirst;
    bool m_bAndLater;
    int m_nCount = 0;
};

// Blocks that the library has asked for and that were not given back.
std::size_t LiveBlocks();

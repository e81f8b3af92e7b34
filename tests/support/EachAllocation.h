// Memory that runs out at every place of an operation. For test programs that Heap.cpp is linked into.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "tests/support/Heap.h"

namespace support {

// Runs `operation` without memory for its first allocation, then for its second and so on, at last with all it needs.
// It returns whether it has succeeded, and expects nothing itself, since that may need memory. `judge` sees that after
// each run, with memory.
template <typename TOperation, typename TJudge>
void LackEachAllocation(TOperation operation, TJudge judge) {
    if (!kHeapIsReplaced) GTEST_SKIP() << kHeapIsTaken;
    int failures = 0;
    bool struck = true;
    for (int allocation = 1; struck; ++allocation) {
        bool done = false;
        {
            const CFailingAllocation failing(allocation);
            done = operation();
            struck = failing.HasStruck();
        }
        SCOPED_TRACE("allocation " + std::to_string(allocation));
        ASSERT_TRUE(done || struck);
        failures += done ? 0 : 1;
        judge(done);
    }
    EXPECT_GT(failures, 0);
}

}  // namespace support

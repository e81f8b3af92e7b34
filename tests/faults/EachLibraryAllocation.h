// A scenario in which each allocation of the library fails once.
#pragma once

#include <gtest/gtest.h>

#include <new>

#include "tests/faults/Allocations.h"

// Runs `scenario` with the library's first allocation failing, then with the second, and so on up to the run that needs
// no more, alone and with all that follow; the scenario may throw std::bad_alloc. `afterwards` runs behind each with
// memory there, and tidies up. Whatever failed, no block of the library stays allocated that was not before. Returns
// how many allocations the scenario has.
template <typename TScenario, typename TAfterwards>
int FailEachLibraryAllocation(const TScenario& scenario, const TAfterwards& afterwards) {
    // What is allocated once and kept.
    scenario();
    afterwards(false);
    int allocations = 0;
    for (const bool andLater : {false, true}) {
        bool struck = true;
        for (int first = 1; struck && !testing::Test::HasFailure(); ++first) {
            SCOPED_TRACE(testing::Message() << "allocation " << first << (andLater ? " and later" : ""));
            const std::size_t before = LiveBlocks();
            bool thrown = false;
            {
                CFailingLibraryAllocation failing(first, andLater);
                try {
                    scenario();
                } catch (const std::bad_alloc&) {
                    thrown = true;
                }
                struck = failing.HasStruck();
                allocations = failing.GetCount();
            }
            afterwards(thrown);
            EXPECT_EQ(LiveBlocks(), before);
        }
    }
    EXPECT_GT(allocations, 0) << "nothing to fail";
    return allocations;
}

template <typename TScenario>
int FailEachLibraryAllocation(const TScenario& scenario) {
    return FailEachLibraryAllocation(scenario, [](bool /*thrown*/) {});
}

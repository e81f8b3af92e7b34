// Tests that take more than a few seconds.
#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>

#include <string>

// Whether the environment asks for them.
inline bool WantsLongTests() {
    const char* const wanted = getenv("KELO_LONG_TESTS");
    return wanted != nullptr && std::string(wanted) == "1";
}

// Stands first in such a test.
#define KELO_LONG_TEST() \
    if (!WantsLongTests()) GTEST_SKIP() << "takes long: KELO_LONG_TESTS=1, or ./check --long, runs it"

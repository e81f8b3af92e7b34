// The functions that the library takes from others.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/build/ExportedSymbols.h"

namespace {

bool StartsAThread(const std::string& name) {
    return name == "pthread_create" || name == "thrd_create" || name == "clone" ||
           name.find("std::thread::_M_start_thread(") == 0;
}

// Plug-ins are called back on the caller's thread.
TEST(Imports, HoldNothingThatStartsAThread) {
    const std::vector<std::string> imports = ReadImports(KELO_LIBRARY);
    EXPECT_THAT(imports, testing::Contains("pthread_mutex_lock"));
    EXPECT_THAT(imports, testing::Not(testing::Contains(testing::Truly(StartsAThread))));
}

}  // namespace

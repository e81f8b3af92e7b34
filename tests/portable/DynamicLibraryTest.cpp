// Dynamic loading under its familiar names.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <string>

#include "portable/DynamicLibrary.h"

namespace {

constexpr char kPlainLibrary[] = KELO_PORTABLE_FIXTURES "/plain.so";
constexpr char kUnresolvedLibrary[] = KELO_PORTABLE_FIXTURES "/unresolved.so";

}  // namespace

TEST(DynamicLibrary, OpensAModuleAndFindsItsSymbols) {
    void* const module = LoadLibrary(kPlainLibrary);
    ASSERT_NE(nullptr, module);
    const auto answer = reinterpret_cast<int (*)()>(GetProcAddress(module, "kelo_fixture_answer"));
    ASSERT_NE(nullptr, answer);
    EXPECT_EQ(42, answer());
    EXPECT_EQ(0, FreeLibrary(module));
}

TEST(DynamicLibrary, AMissingSymbolIsNull) {
    void* const module = LoadLibrary(kPlainLibrary);
    ASSERT_NE(nullptr, module);
    EXPECT_EQ(nullptr, GetProcAddress(module, "kelo_fixture_absent"));
    FreeLibrary(module);
}

TEST(DynamicLibrary, AnUnresolvedSymbolFailsAtOnce) {
    EXPECT_EQ(nullptr, LoadLibrary(kUnresolvedLibrary));
    // The same module opens when resolution may wait.
    void* const lazy = dlopen(kUnresolvedLibrary, RTLD_LAZY);
    ASSERT_NE(nullptr, lazy) << dlerror();
    dlclose(lazy);
}

TEST(DynamicLibrary, AMissingFileIsNull) { EXPECT_EQ(nullptr, LoadLibrary("/nonexistent/library.so")); }

TEST(DynamicLibrary, SymbolsOfAModuleStayLocalToIt) {
    void* const module = LoadLibrary(kPlainLibrary);
    ASSERT_NE(nullptr, module);
    EXPECT_EQ(nullptr, dlsym(RTLD_DEFAULT, "kelo_fixture_answer"));
    FreeLibrary(module);
}

TEST(DynamicLibrary, FreeingUnloadsTheModule) {
    void* const module = LoadLibrary(kPlainLibrary);
    ASSERT_NE(nullptr, module);
    EXPECT_EQ(0, FreeLibrary(module));
    EXPECT_EQ(nullptr, dlopen(kPlainLibrary, RTLD_NOW | RTLD_NOLOAD));
}

TEST(DynamicLibrary, AFreeingThatFailsTellsSo) {
    // The C library stays in memory however often it is freed.
    void* const module = LoadLibrary("libc.so.6");
    ASSERT_NE(nullptr, module);
    EXPECT_EQ(0, FreeLibrary(module));
    EXPECT_NE(0, FreeLibrary(module));
}

TEST(DynamicLibrary, TheLoadersErrorIsLeftToTheCaller) {
    dlerror();
    LoadLibrary("/nonexistent/library.so");
    EXPECT_NE(nullptr, dlerror());
    EXPECT_EQ(nullptr, dlerror());

    void* const module = LoadLibrary(kPlainLibrary);
    ASSERT_NE(nullptr, module);
    GetProcAddress(module, "kelo_fixture_absent");
    EXPECT_NE(nullptr, dlerror());
    FreeLibrary(module);
}

TEST(DynamicLibrary, ItsNamesAreNotMangled) {
    for (const char* const name : {"LoadLibrary", "GetProcAddress", "FreeLibrary"}) {
        EXPECT_NE(nullptr, dlsym(RTLD_DEFAULT, name)) << name;
    }
}

// Dynamic loading under its familiar names.
// None of these reads or clears dlerror(). [any thread]
#pragma once

#include "portable/Export.h"

extern "C" {

// Opens with immediate resolution and local symbols (dlopen, RTLD_NOW alone). Null on failure.
KELO_EXPORT void* LoadLibrary(const char* name);

// The address of a symbol, null when the module has none of that name (dlsym).
KELO_EXPORT void* GetProcAddress(void* module, const char* name);

// 0 on success (dlclose).
KELO_EXPORT int FreeLibrary(void* module);
}

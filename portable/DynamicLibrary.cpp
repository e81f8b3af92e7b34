// Dynamic loading under its familiar names.
#include "portable/DynamicLibrary.h"

#include <dlfcn.h>

void* LoadLibrary(const char* name) { return dlopen(name, RTLD_NOW); }

void* GetProcAddress(void* module, const char* name) { return dlsym(module, name); }

int FreeLibrary(void* module) { return dlclose(module); }

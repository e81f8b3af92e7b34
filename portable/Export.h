// Marks what the shared library shows to hosts and plug-ins; everything unmarked stays inside.
#pragma once

#define KELO_EXPORT __attribute__((visibility("default")))

// A private helper of an exported class, which hosts and plug-ins never call.
#define KELO_HIDDEN __attribute__((visibility("hidden")))

// Marks what the shared library shows to hosts and plug-ins; everything unmarked stays inside.
#pragma once

#define KELO_EXPORT __attribute__((visibility("default")))

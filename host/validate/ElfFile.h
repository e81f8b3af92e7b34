// What a shared object says about being unloaded.
#pragma once

#include <string>
#include <vector>

// Names of the unique symbols (STB_GNU_UNIQUE) that the file defines: one that is in use keeps the file in memory for
// good. Empty for a file that is no 64-bit ELF.
std::vector<std::string> UniqueSymbols(const std::string& path);

// Whether the file asks never to be unloaded (DF_1_NODELETE).
bool AsksToStay(const std::string& path);

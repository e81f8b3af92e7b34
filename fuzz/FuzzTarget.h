// What every fuzz target of this folder defines: libFuzzer calls it, and so does the replay of stored inputs.
#pragma once

#include <cstddef>
#include <cstdint>

// Always 0. A difference or a crash ends the process.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

// Called once before the first input; only targets that need it define it. Always 0.
extern "C" __attribute__((weak)) int LLVMFuzzerInitialize(int* argc, char*** argv);

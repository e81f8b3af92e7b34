// Benchmarks that run as often as their caller says, for counts of instructions: the difference between two runs is
// what the further iterations cost.
#pragma once

#include <benchmark/benchmark.h>

#include <cstdlib>

// For Apply. Without KELO_BENCH_ITERATIONS the time decides how often.
inline void CountedIterations(benchmark::internal::Benchmark* work) {
    if (const char* const iterations = std::getenv("KELO_BENCH_ITERATIONS")) work->Iterations(std::atoll(iterations));
}

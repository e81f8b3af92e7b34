// AddRef and Release beside a bare semaphore pair.
#include <benchmark/benchmark.h>
#include <semaphore.h>

#include "com/StatusObject.h"

static void BareSemaphorePair(benchmark::State& state) {
    sem_t semaphore;
    sem_init(&semaphore, 0, 1);
    int value = 0;
    for (auto _ : state) {
        sem_post(&semaphore);
        sem_getvalue(&semaphore, &value);
        sem_wait(&semaphore);
        sem_getvalue(&semaphore, &value);
        benchmark::DoNotOptimize(value);
    }
    sem_destroy(&semaphore);
}
BENCHMARK(BareSemaphorePair);

static void AddRefAndRelease(benchmark::State& state) {
    IStatus* const status = new CStatus(AE_NO_DECODER);
    for (auto _ : state) {
        benchmark::DoNotOptimize(status->AddRef());
        benchmark::DoNotOptimize(status->Release());
    }
    status->Release();
}
BENCHMARK(AddRefAndRelease);

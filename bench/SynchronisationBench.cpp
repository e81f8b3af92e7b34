// The recursive mutex beside the POSIX one.
#include <benchmark/benchmark.h>
#include <pthread.h>

#include "bench/CountedIterations.h"
#include "portable/PosixMutex.h"

static void BareRecursiveMutex(benchmark::State& state) {
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    pthread_mutex_t mutex;
    pthread_mutex_init(&mutex, &attributes);
    for (auto _ : state) {
        pthread_mutex_lock(&mutex);
        pthread_mutex_unlock(&mutex);
    }
    pthread_mutex_destroy(&mutex);
    pthread_mutexattr_destroy(&attributes);
}
BENCHMARK(BareRecursiveMutex)->Apply(CountedIterations);

static void LockAndUnlock(benchmark::State& state) {
    CPosixMutex mutex(0);
    for (auto _ : state) {
        mutex.Lock(kInfiniteTimeout);
        mutex.Unlock();
    }
}
BENCHMARK(LockAndUnlock)->Apply(CountedIterations);

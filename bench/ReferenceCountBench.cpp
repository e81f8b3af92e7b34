// AddRef and Release beside a bare semaphore pair.
#include <benchmark/benchmark.h>
#include <semaphore.h>

#include "bench/CountedIterations.h"
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
BENCHMARK(BareSemaphorePair)->Apply(CountedIterations);

namespace {

// The least that an interface object can be: the same pair behind two virtual calls.
class CBareObject {
public:
    CBareObject() { sem_init(&m_semaphore, 0, 1); }
    virtual ~CBareObject() { sem_destroy(&m_semaphore); }
    CBareObject(const CBareObject&) = delete;
    CBareObject& operator=(const CBareObject&) = delete;

    virtual int Add() {
        sem_post(&m_semaphore);
        return Value();
    }
    virtual int Remove() {
        sem_wait(&m_semaphore);
        return Value();
    }

private:
    int Value() {
        int value = 0;
        sem_getvalue(&m_semaphore, &value);
        return value;
    }

    sem_t m_semaphore;
};

}  // namespace

static void SemaphorePairOfAnObject(benchmark::State& state) {
    CBareObject bare;
    CBareObject* object = &bare;
    benchmark::DoNotOptimize(object);
    for (auto _ : state) {
        benchmark::DoNotOptimize(object->Add());
        benchmark::DoNotOptimize(object->Remove());
    }
}
BENCHMARK(SemaphorePairOfAnObject);

static void AddRefAndRelease(benchmark::State& state) {
    IStatus* const status = new CStatus(AE_NO_DECODER);
    for (auto _ : state) {
        benchmark::DoNotOptimize(status->AddRef());
        benchmark::DoNotOptimize(status->Release());
    }
    status->Release();
}
BENCHMARK(AddRefAndRelease)->Apply(CountedIterations);

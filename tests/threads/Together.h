// Threads that begin at the same moment.
#pragma once

#include <pthread.h>

#include <thread>
#include <vector>

// Calls `run` with each number below `count`, each on a thread of its own, and returns when all have ended.
template <typename TRun>
void RunTogether(int count, TRun run) {
    pthread_barrier_t begin;
    pthread_barrier_init(&begin, nullptr, static_cast<unsigned int>(count));
    std::vector<std::thread> threads;
    for (int i = 0; i < count; ++i) {
        threads.emplace_back([&begin, &run, i] {
            pthread_barrier_wait(&begin);
            run(i);
        });
    }
    for (std::thread& thread : threads) thread.join();
    pthread_barrier_destroy(&begin);
}

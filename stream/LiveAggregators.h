// The process-wide count of live aggregators, which keeps plug-ins loaded while a stream is alive.
#pragma once

#include <pthread.h>

#include <cstdint>

#include "portable/Export.h"

// Source and target aggregators alive in this process; guarded by g_AggregatorsMutex, which is never destroyed.
// [any thread]
extern KELO_EXPORT std::int64_t g_lAggregators;
extern KELO_EXPORT pthread_mutex_t g_AggregatorsMutex;

// Counts its owner for as long as it lives.
class CLiveAggregator {
public:
    CLiveAggregator();
    ~CLiveAggregator();

    CLiveAggregator(const CLiveAggregator&) = delete;
    CLiveAggregator& operator=(const CLiveAggregator&) = delete;
};

// Waits for an aggregator that is being built or destroyed at this moment, then tells whether any is alive.
bool AnyAggregatorAlive();

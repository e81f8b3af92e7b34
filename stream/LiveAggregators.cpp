// The process-wide count of live aggregators.
#include "stream/LiveAggregators.h"

std::int64_t g_lAggregators = 0;
pthread_mutex_t g_AggregatorsMutex = PTHREAD_MUTEX_INITIALIZER;

namespace {

std::int64_t AddAggregators(std::int64_t change) {
    pthread_mutex_lock(&g_AggregatorsMutex);
    const std::int64_t alive = g_lAggregators += change;
    pthread_mutex_unlock(&g_AggregatorsMutex);
    return alive;
}

}  // namespace

CLiveAggregator::CLiveAggregator() { AddAggregators(1); }

CLiveAggregator::~CLiveAggregator() { AddAggregators(-1); }

bool AnyAggregatorAlive() { return AddAggregators(0) != 0; }

// How many streams and targets of this plug-in are alive.
#include "plugins/sndfile/LiveObjects.h"

#include <atomic>

namespace {

std::atomic<int> g_nLiveObjects{0};

}  // namespace

CLiveObject::CLiveObject() { ++g_nLiveObjects; }

CLiveObject::~CLiveObject() { --g_nLiveObjects; }

bool HasLiveObjects() { return g_nLiveObjects != 0; }

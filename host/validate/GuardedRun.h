// One place where everything that a check throws ends.
#pragma once

#include <functional>

#include "host/validate/Outcome.h"

// The outcome of `run`: what the validator itself throws is told as it is; every other exception came across the
// plug-in's border and is a finding that names its type.
SOutcome RunGuarded(const std::function<void()>& run);

// What the bounded functions take and return when a caller asks for a cut result instead of a failure.
#pragma once

#include <stddef.h>

// As a count: keep as much as fits.
constexpr size_t _TRUNCATE = static_cast<size_t>(-1);

// As a result: the text was cut on request.
constexpr int STRUNCATE = 80;

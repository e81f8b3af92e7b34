// What sound data and its format are held to.
#pragma once

#include <string>

#include "host/validate/SampleSound.h"

// Throws CFinding for a format without rate, channels or whole bytes in its samples.
void ExpectSaneFormat(const SWavFormat& format);

// "100 bytes instead of 200" or "byte 17 is the first that differs".
std::string DifferenceText(const CBytes& expected, const CBytes& seen);

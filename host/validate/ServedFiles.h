// What the validator's own web server has.
#pragma once

#include <map>
#include <string>

#include "host/validate/SampleSound.h"

constexpr const char* kServedSample = "/sample.wav";
constexpr const char* kServedOther = "/other.wav";

// By name, with the slash.
std::map<std::string, CBytes> ServedFiles();

// The tag in front of an MP3 file.
#pragma once

#include <string>

#include "sdk/Sound.h"

// ID3v2.4 in UTF-8; empty without any text. libsndfile's own would take UTF-8 for Latin-1.
std::string Id3Tag(const STags& tags);

// Classes of source names.
#pragma once

#include "stream/URLSourceHandler.h"

// Case-insensitive. A name must be longer than its prefix: "http://", "ftp://" and "/" alone are unknown, and so are
// relative paths and other schemes. [any thread]
EURLType ClassifyURL(const char* url);

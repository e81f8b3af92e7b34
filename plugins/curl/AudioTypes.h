// File extensions of audio media types.
#pragma once

#include <string_view>

// For a Content-Type header, whose parameters do not matter; empty for a type that is not of sound. [any thread]
std::string_view ExtensionOfType(std::string_view contentType);

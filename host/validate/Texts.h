// Texts that plug-ins hand out.
#pragma once

#include <string>

// "(null)" for a null pointer.
std::string TextOf(const char* text);

// RFC 3629, section 4.
bool IsUtf8(const std::string& text);

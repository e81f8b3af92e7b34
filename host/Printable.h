// Foreign text on its way to a terminal.
#pragma once

#include <string>

// `text` with each control character as '?': of ASCII, and of ISO 6429's C1 set where it stands as UTF-8.
std::string Printable(std::string text);

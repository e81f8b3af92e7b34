// Foreign text on its way to a terminal.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// `text` with each control character as '?': of ASCII, and of ISO 6429's C1 set where it stands as UTF-8.
std::string Printable(std::string text);

// Bytes of the control character at the front of `text`, 0 when another one is there.
std::size_t ControlLength(std::string_view text) noexcept;

// Comparison of extensions and URL schemes.
#pragma once

#include <cstddef>
#include <string_view>

// Lower case of the ASCII letters alone: the host's locale must not decide which decoder knows a file.
constexpr char ToAsciiLower(char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

// [any thread]
constexpr bool EqualIgnoringAsciiCase(std::string_view left, std::string_view right) {
    if (left.size() != right.size()) return false;
    for (std::size_t i = 0; i < left.size(); ++i) {
        if (ToAsciiLower(left[i]) != ToAsciiLower(right[i])) return false;
    }
    return true;
}

// Texts of files as UTF-8. [any thread]
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// Bytes of the UTF-8 sequence at `at` (RFC 3629), 0 when there is none.
inline std::size_t Utf8SequenceLength(std::string_view text, std::size_t at) {
    const auto byte = [text](std::size_t i) -> unsigned {
        return i < text.size() ? static_cast<unsigned char>(text[i]) : 0u;
    };
    const auto follows = [&byte](std::size_t i, unsigned low, unsigned high) {
        return byte(i) >= low && byte(i) <= high;
    };
    const unsigned first = byte(at);
    if (first < 0x80) return 1;
    if (first >= 0xC2 && first <= 0xDF) return follows(at + 1, 0x80, 0xBF) ? 2 : 0;
    const unsigned low = first == 0xE0 ? 0xA0 : first == 0xF0 ? 0x90 : 0x80;
    const unsigned high = first == 0xED ? 0x9F : first == 0xF4 ? 0x8F : 0xBF;
    if (first < 0xE0 || first > 0xF4 || !follows(at + 1, low, high) || !follows(at + 2, 0x80, 0xBF)) return 0;
    if (first < 0xF0) return 3;
    return follows(at + 3, 0x80, 0xBF) ? 4 : 0;
}

// Whether all of the text is.
inline bool IsUtf8(std::string_view text) {
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t length = Utf8SequenceLength(text, at);
        if (length == 0) return false;
        at += length;
    }
    return true;
}

// A text in ISO 8859-1.
inline std::string FromLatin1(const std::string& text) {
    std::string utf8;
    for (const char character : text) {
        const auto code = static_cast<unsigned char>(character);
        if (code < 0x80) {
            utf8 += character;
        } else {
            utf8 += static_cast<char>(0xC0 | code >> 6);
            utf8 += static_cast<char>(0x80 | (code & 0x3F));
        }
    }
    return utf8;
}

// The text itself when it is UTF-8, else what it says in ISO 8859-1: tags of many files name no character set.
inline std::string AsUtf8(const std::string& text) { return IsUtf8(text) ? text : FromLatin1(text); }

// Letters and blanks of ASCII alone, whatever the locale. [any thread]
#pragma once

#include <string>
#include <string_view>

inline std::string LowerCase(std::string_view text) {
    std::string lower(text);
    for (char& character : lower) {
        if (character >= 'A' && character <= 'Z') character = static_cast<char>(character - 'A' + 'a');
    }
    return lower;
}

inline bool IsDigit(char character) { return character >= '0' && character <= '9'; }

inline bool IsLetter(char character) {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

inline std::string_view Trimmed(std::string_view text) {
    constexpr std::string_view kBlank = " \t";
    const std::size_t begin = text.find_first_not_of(kBlank);
    if (begin == std::string_view::npos) return {};
    return text.substr(begin, text.find_last_not_of(kBlank) - begin + 1);
}

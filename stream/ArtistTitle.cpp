// Artist and title from the name of a file.
#include "stream/ArtistTitle.h"

#include <algorithm>
#include <cctype>

namespace {

bool IsPunctuation(char character) {
    return std::isalnum(static_cast<unsigned char>(character)) == 0 && character != ' ' && character != '\'';
}

std::string ChooseSeparator(std::string_view name) {
    const bool hasSpace = name.find(' ') != std::string_view::npos;
    if (name.find('-') != std::string_view::npos) return "-";
    if (!hasSpace && name.find('_') != std::string_view::npos) return "_";
    const auto last = std::find_if(name.rbegin(), name.rend(), IsPunctuation);
    return last == name.rend() ? std::string() : std::string(1, *last);
}

}  // namespace

SNameParts SplitArtistTitle(std::string_view name) {
    const std::string separator = ChooseSeparator(name);
    const std::size_t end = name.find_first_of(separator);
    if (separator.empty() || end == std::string_view::npos) return {std::string(name), std::string()};
    const std::size_t second = name.find_first_not_of(separator, end);
    return {std::string(name.substr(0, end)),
            second == std::string_view::npos ? std::string() : std::string(name.substr(second))};
}

std::string TrimTag(std::string_view text) {
    constexpr std::string_view kBlank = "\t\r\n ";
    const std::size_t begin = text.find_first_not_of(kBlank);
    if (begin == std::string_view::npos) return {};
    return std::string(text.substr(begin, text.find_last_not_of(kBlank) - begin + 1));
}

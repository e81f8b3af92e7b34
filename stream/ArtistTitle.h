// Artist and title from the name of a file.
#pragma once

#include <string>
#include <string_view>

// The two parts of a file name such as "Artist - Title".
struct SNameParts {
    std::string m_strFirst;
    std::string m_strSecond;
};

// Splits at the first separator; a run of separators counts as one, later ones stay in the second part.
// The separator is a hyphen; without any, an underscore in a name without spaces; otherwise the last character that
// is neither letter, digit, space nor apostrophe. Without a separator the first part is the whole name. [any thread]
SNameParts SplitArtistTitle(std::string_view name);

// `text` without leading and trailing tabs, carriage returns, line feeds and spaces. [any thread]
std::string TrimTag(std::string_view text);

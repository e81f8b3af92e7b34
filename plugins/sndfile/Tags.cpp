// Descriptive tags of a sound file.
#include "plugins/sndfile/Tags.h"

#include <cstddef>

namespace {

// Bytes of the UTF-8 sequence at `at` (RFC 3629), 0 when there is none.
std::size_t SequenceLength(const std::string& text, std::size_t at) {
    const auto byte = [&text](std::size_t i) -> unsigned {
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

bool IsUtf8(const std::string& text) {
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t length = SequenceLength(text, at);
        if (length == 0) return false;
        at += length;
    }
    return true;
}

std::string FromLatin1(const std::string& text) {
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

// RIFF and AIFF texts name no character set; what is not UTF-8 is read as Latin-1.
std::string TagOf(SNDFILE* file, int kind) {
    const char* const tag = sf_get_string(file, kind);
    const std::string text = tag != nullptr ? tag : "";
    return IsUtf8(text) ? text : FromLatin1(text);
}

}  // namespace

STags TagsOf(SNDFILE* file) {
    return STags{TagOf(file, SF_STR_TITLE), TagOf(file, SF_STR_ARTIST), TagOf(file, SF_STR_ALBUM),
                 TagOf(file, SF_STR_DATE), TagOf(file, SF_STR_GENRE)};
}

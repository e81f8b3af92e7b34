// Texts that plug-ins hand out.
#include "host/validate/Texts.h"

#include <cstddef>
#include <cstdint>

namespace {

// Bytes of the sequence that begins with `first`; 0 where no sequence begins so.
std::size_t SequenceLength(unsigned char first) {
    if (first < 0x80) return 1;
    if (first >= 0xC2 && first <= 0xDF) return 2;
    if (first >= 0xE0 && first <= 0xEF) return 3;
    return first >= 0xF0 && first <= 0xF4 ? 4 : 0;
}

// The second byte keeps overlong forms, surrogates and what lies above U+10FFFF out.
bool IsSecond(unsigned char first, unsigned char second) {
    switch (first) {
        case 0xE0:
            return second >= 0xA0 && second <= 0xBF;
        case 0xED:
            return second >= 0x80 && second <= 0x9F;
        case 0xF0:
            return second >= 0x90 && second <= 0xBF;
        case 0xF4:
            return second >= 0x80 && second <= 0x8F;
        default:
            return second >= 0x80 && second <= 0xBF;
    }
}

}  // namespace

std::string TextOf(const char* text) { return text == nullptr ? "(null)" : text; }

bool IsUtf8(const std::string& text) {
    for (std::size_t i = 0; i < text.size();) {
        const auto first = static_cast<unsigned char>(text[i]);
        const std::size_t length = SequenceLength(first);
        if (length == 0 || i + length > text.size()) return false;
        if (length > 1 && !IsSecond(first, static_cast<unsigned char>(text[i + 1]))) return false;
        for (std::size_t k = 2; k < length; ++k) {
            if ((static_cast<unsigned char>(text[i + k]) & 0xC0) != 0x80) return false;
        }
        i += length;
    }
    return true;
}

// Foreign text on its way to a terminal.
#include "host/Printable.h"

namespace {

bool IsControl(unsigned char byte) { return byte < 0x20 || byte == 0x7F; }

// U+0080 to U+009F in UTF-8.
bool IsControlPair(unsigned char first, unsigned char second) {
    return first == 0xC2 && second >= 0x80 && second <= 0x9F;
}

}  // namespace

std::string Printable(std::string text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if (i + 1 < text.size() && IsControlPair(byte, static_cast<unsigned char>(text[i + 1]))) {
            text.replace(i, 2, 1, '?');
        } else if (IsControl(byte)) {
            text[i] = '?';
        }
    }
    return text;
}

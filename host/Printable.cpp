// Foreign text on its way to a terminal.
#include "host/Printable.h"

std::size_t ControlLength(std::string_view text) noexcept {
    const auto byte = [text](std::size_t i) { return i < text.size() ? static_cast<unsigned char>(text[i]) : 0xFFu; };
    if (byte(0) < 0x20 || byte(0) == 0x7F) return 1;
    // U+0080 to U+009F in UTF-8.
    return byte(0) == 0xC2 && byte(1) >= 0x80 && byte(1) <= 0x9F ? 2 : 0;
}

std::string Printable(std::string text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        const std::size_t control = ControlLength(std::string_view(text).substr(i));
        if (control > 0) text.replace(i, control, 1, '?');
    }
    return text;
}

// Descriptive tags of a media file.
#include "plugins/libav/Tags.h"

extern "C" {
#include <libavutil/avstring.h>
}

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <string>

namespace {

bool IsUtf8(const std::string& text) {
    const auto* at = reinterpret_cast<const std::uint8_t*>(text.data());
    const auto* const end = at + text.size();
    std::int32_t code = 0;
    while (at < end) {
        if (av_utf8_decode(&code, &at, end, 0) < 0) return false;
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

// The first of `names` that has a text. Some containers name no character set; what is not UTF-8 is read as Latin-1.
std::string TextOf(const AVDictionary* tags, std::initializer_list<const char*> names) {
    for (const char* const name : names) {
        const AVDictionaryEntry* const entry = av_dict_get(tags, name, nullptr, 0);
        if (entry == nullptr || *entry->value == '\0') continue;
        const std::string text = entry->value;
        return IsUtf8(text) ? text : FromLatin1(text);
    }
    return {};
}

// "2004" of "2004-05-06T07:00:00Z".
std::string YearOf(const std::string& date) {
    const auto isDigit = [](char character) { return character >= '0' && character <= '9'; };
    const bool begins = date.size() > 4 && date[4] == '-' && std::all_of(date.begin(), date.begin() + 4, isDigit);
    return begins ? date.substr(0, 4) : date;
}

}  // namespace

STags TagsOf(const AVFormatContext& context, const AVStream& stream) {
    const auto text = [&](std::initializer_list<const char*> names) {
        const std::string own = TextOf(context.metadata, names);
        return own.empty() ? TextOf(stream.metadata, names) : own;
    };
    return {text({"title"}), text({"artist", "album_artist", "author"}), text({"album"}),
            YearOf(text({"date", "year"})), text({"genre"})};
}

// Descriptive tags of a media file.
#include "plugins/libav/Tags.h"

#include <algorithm>
#include <initializer_list>
#include <string>

#include "sdk/Utf8.h"

namespace {

// The first of `names` that has a text.
std::string TextOf(const AVDictionary* tags, std::initializer_list<const char*> names) {
    for (const char* const name : names) {
        const AVDictionaryEntry* const entry = av_dict_get(tags, name, nullptr, 0);
        if (entry == nullptr || *entry->value == '\0') continue;
        return AsUtf8(entry->value);
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

// Descriptive tags of a sound file.
#include "plugins/sndfile/Tags.h"

#include "sdk/Guard.h"
#include "sdk/Utf8.h"

namespace {

struct STagKind {
    ETag m_eTag;
    int m_nKind;
};

constexpr STagKind kKinds[] = {{TAG_TITLE, SF_STR_TITLE},
                               {TAG_ARTIST, SF_STR_ARTIST},
                               {TAG_ALBUM, SF_STR_ALBUM},
                               {TAG_YEAR, SF_STR_DATE},
                               {TAG_GENRE, SF_STR_GENRE}};

std::string TagOf(SNDFILE* file, int kind) {
    const char* const tag = sf_get_string(file, kind);
    return AsUtf8(tag != nullptr ? tag : "");
}

}  // namespace

STags TagsOf(SNDFILE* file) {
    STags tags;
    for (const STagKind& kind : kKinds) tags[kind.m_eTag] = TagOf(file, kind.m_nKind);
    return tags;
}

void SetTags(SNDFILE* file, STags tags) {
    for (const STagKind& kind : kKinds) {
        const std::string& text = tags[kind.m_eTag];
        if (!text.empty() && sf_set_string(file, kind.m_nKind, text.c_str()) != SF_ERR_NO_ERROR) {
            Refuse(sf_strerror(file));
        }
    }
}

// Descriptive tags on their way from a source to a target.
#include "host/Tags.h"

#include "com/ComPtr.h"
#include "host/FailureText.h"

CTagTexts ReadTags(IInfoReader& source) {
    const auto text = [](const char* tag) { return std::string(tag != nullptr ? tag : ""); };
    CTagTexts tags;
    tags[TAG_TITLE] = text(source.GetTitle());
    tags[TAG_ARTIST] = text(source.GetArtist());
    tags[TAG_ALBUM] = text(source.GetAlbum());
    tags[TAG_YEAR] = text(source.GetYear());
    tags[TAG_GENRE] = text(source.GetGenre());
    return tags;
}

std::string WriteTags(const CTagTexts& tags, ITargetTags& target, const std::string& path) {
    std::string refused;
    for (std::size_t i = 0; i < tags.size(); ++i) {
        const auto tag = static_cast<ETag>(i);
        if (tags[i].empty() || !target.HasTag(tag)) continue;
        CComPtr<IStatus> status;
        if (target.SetTag(tag, tags[i].c_str(), status.Out())) continue;
        refused += (refused.empty() ? "the " : ", the ") + std::string(kTagNames[i]) +
                   " is left out: " + StatusText(status.Get(), "its encoder tells no reason", path);
    }
    return refused;
}

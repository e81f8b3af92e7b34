// Descriptive tags on their way from a source to a target.
#include "host/Tags.h"

#include "com/ComPtr.h"
#include "host/Failure.h"
#include "host/FailureText.h"
#include "host/PluginSession.h"

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

void WriteTags(const CTagTexts& tags, ITargetTags& target, const std::string& output) {
    for (std::size_t i = 0; i < tags.size(); ++i) {
        const auto tag = static_cast<ETag>(i);
        if (tags[i].empty() || !target.HasTag(tag)) continue;
        CComPtr<IStatus> status;
        if (target.SetTag(tag, tags[i].c_str(), status.Out())) continue;
        throw CFailure(output, std::string("its encoder does not take the ") + kTagNames[i] + ": " +
                                   StatusText(status.Get(), "it tells no reason", output));
    }
}

std::string TagNamesOf(ITargetTags& target) {
    std::vector<std::string> names;
    for (std::size_t i = 0; i < kTagNames.size(); ++i) {
        if (target.HasTag(static_cast<ETag>(i))) names.emplace_back(kTagNames[i]);
    }
    return JoinNames(names);
}

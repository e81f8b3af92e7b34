// What a decoder stream tells about its file: tags, index points, name, the format with its qualifier.
#include "host/FormatText.h"
#include "host/PluginSession.h"
#include "host/validate/Checks.h"
#include "host/validate/FormatRules.h"
#include "host/validate/Outcome.h"
#include "host/validate/Source.h"
#include "host/validate/Steps.h"
#include "host/validate/Texts.h"
#include "stream/SourceDetails.h"

namespace {

// Calls `examine` for every stream that has the interface, and skips when none has it.
template <typename TFace>
void ForEachFace(CTrial& trial, unsigned long identity, const char* name,
                 const std::function<void(CSource& source, TFace& face)>& examine) {
    bool found = false;
    ForEachSource(trial, [&](CSource& source) {
        const auto face = source.Face<TFace>(identity);
        if (!face) return;
        found = true;
        TellStep(std::string("calling ") + name);
        examine(source, *face);
    });
    if (!found) throw CSkipped(std::string("no stream has ") + name);
}

std::vector<const char*> TagsOf(IInfoReader& tags) {
    return {tags.GetTitle(), tags.GetArtist(), tags.GetAlbum(), tags.GetYear(), tags.GetGenre()};
}

void TellsTags(CTrial& trial) {
    ForEachFace<IInfoReader>(trial, IID_IInfoReader, "IInfoReader", [](CSource& /*source*/, IInfoReader& tags) {
        for (const char* const tag : TagsOf(tags)) {
            Expect(tag == nullptr || IsUtf8(tag), std::string("a tag that is not UTF-8: \"") + TextOf(tag) + "\"");
        }
    });
}

std::vector<std::string> TagTexts(IInfoReader& tags) {
    std::vector<std::string> texts;
    for (const char* const tag : TagsOf(tags)) texts.push_back(TextOf(tag));
    return texts;
}

void KeepsTags(CTrial& trial) {
    ForEachFace<IInfoReader>(trial, IID_IInfoReader, "IInfoReader", [](CSource& source, IInfoReader& tags) {
        const std::vector<std::string> before = TagTexts(tags);
        source.Start();
        source.ReadToEnd();
        const std::vector<std::string> after = TagTexts(tags);
        for (std::size_t i = 0; i < before.size(); ++i) {
            Expect(before[i] == after[i], "first \"" + before[i] + "\", after reading \"" + after[i] + "\"");
        }
    });
}

void HasIndexPointsInside(CTrial& trial) {
    ForEachFace<IIndexArray>(trial, IID_IIndexArray, "IIndexArray", [](CSource& source, IIndexArray& index) {
        const std::uint64_t length = source.Blocks().GetDataLength();
        const int count = index.GetIndexNumber();
        Expect(IsPossibleCount(count), "a count of " + std::to_string(count));
        for (int i = 0; i < count; ++i) {
            const std::uint64_t point = index.GetIndex(i);
            Expect(point != kNoIndexPoint,
                   "index point " + std::to_string(i) + " of " + std::to_string(count) + " is told not to be there");
            Expect(length == 0 || point < length, "index point " + std::to_string(i) + " at frame " +
                                                      std::to_string(point) + " of " + std::to_string(length));
        }
    });
}

void HasNoOtherIndexPoints(CTrial& trial) {
    ForEachFace<IIndexArray>(trial, IID_IIndexArray, "IIndexArray", [](CSource& /*source*/, IIndexArray& index) {
        const int count = index.GetIndexNumber();
        for (const int n : {-1, count, count + 1000}) {
            const std::uint64_t point = index.GetIndex(n);
            Expect(point == kNoIndexPoint, "index point " + std::to_string(n) + " of " + std::to_string(count) +
                                               " at frame " + std::to_string(point));
        }
    });
}

void TellsName(CTrial& trial) {
    bool found = false;
    ForEachSample(trial, [&](const SSampleCase& sample) {
        const auto name = CComPtr<ISourceName>::Query(OpenSample(sample).Get(), IID_ISourceName);
        if (!name) return;
        found = true;
        TellStep("GetSourceName");
        const std::string told = TextOf(name->GetSourceName());
        Expect(told == sample.m_strPath, "the file " + sample.m_strPath + " is told to be " + told);
    });
    if (!found) throw CSkipped("no stream has ISourceName");
}

void TellsFittingAdvancedFormat(CTrial& trial) {
    ForEachFace<IAdvancedFormat>(
        trial, IID_IAdvancedFormat, "IAdvancedFormat", [](CSource& source, IAdvancedFormat& advanced) {
            const SHeldWavFormat held = advanced.GetAdvancedFormat().m_held;
            const SWavFormat plain = source.Format();
            ExpectSaneFormat(held.m_format);
            const bool fits =
                held.m_format.nSampleRate == plain.nSampleRate && held.m_format.nChannels == plain.nChannels;
            Expect(fits, "IAdvancedFormat tells " + FormatText(held) + " and IAudioRawReader " + FormatText(plain));
            Expect(held.m_nQualifier != kFloatSamples || held.m_format.nBitsPerSample == 32,
                   "float samples of " + std::to_string(held.m_format.nBitsPerSample) + " bits");
        });
}

}  // namespace

CCheckList SourceDetailChecks() {
    return {
        {"source/tags", "Tags are texts in UTF-8 or null.", CONCERN_DECODER, "source/end", TellsTags},
        {"source/tags-stable", "Tags are the same before and after reading.", CONCERN_DECODER, "source/tags",
         KeepsTags},
        {"source/index-points", "Index points lie inside the sound.", CONCERN_DECODER, "source/end",
         HasIndexPointsInside},
        {"source/index-out-of-range", "An index that is not there is told as all ones.", CONCERN_DECODER,
         "source/index-points", HasNoOtherIndexPoints},
        {"source/name", "A stream that tells its source's name tells the path that was opened.", CONCERN_DECODER,
         "source/end", TellsName},
        {"source/advanced-format",
         "A format with a qualifier has the rate and the channels of the plain one, and float samples 32 bits.",
         CONCERN_DECODER, "source/end", TellsFittingAdvancedFormat},
    };
}

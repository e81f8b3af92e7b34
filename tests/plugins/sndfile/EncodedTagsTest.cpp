// Tags of written files, read back by this plug-in and by other tools.
#include "tests/plugins/sndfile/AudioFiles.h"
#include "tests/plugins/sndfile/SinkUnderTest.h"
#include "tests/support/ScratchDirectory.h"

namespace {

constexpr SWavFormat kMono{48000, 16, 1};

using CTexts = std::vector<std::string>;  // by ETag

// The last year is odd in length, the artist even: chunks are padded.
const CTexts kTexts = {"Gr\u00fc\u00dfe aus \u6771\u4eac \U0001D11E", "An Artist", "An Album", "1999-05-03", "Rock"};

CTexts TagsOf(const std::string& path) {
    const SSource source(path);
    const auto info = CComPtr<IInfoReader>::Query(source.m_stream.Get(), IID_IInfoReader);
    EXPECT_TRUE(info) << path;
    if (!info) return {};
    return {info->GetTitle(), info->GetArtist(), info->GetAlbum(), info->GetYear(), info->GetGenre()};
}

// Writes the voice with those of `texts` that the format has a place for, and returns them.
CTexts WriteTagged(const std::string& path, const std::string& extension, const CTexts& texts) {
    const STarget target(path, extension);
    CTexts written;
    for (const ETag tag : {TAG_TITLE, TAG_ARTIST, TAG_ALBUM, TAG_YEAR, TAG_GENRE}) {
        const bool has = target.m_tags->HasTag(tag);
        written.push_back(has ? texts[tag] : "");
        EXPECT_EQ(target.m_tags->SetTag(tag, texts[tag].c_str(), nullptr), has);
    }
    SSink(target, kMono).WriteAll(Decoded(kVoice));
    return written;
}

// "TITLE=..." and so on in capitals, as ffprobe finds them.
std::string ProbedTags(const CScratchDirectory& scratch, const std::string& path) {
    RunTool("ffprobe -v error -show_entries format_tags:stream_tags -of default=noprint_wrappers=1 " + path +
            " | sed 's/^TAG://; s/^[^=]*=/\\U&/' > " + scratch / "tags");
    return "\n" + Content(scratch / "tags");
}

std::string TagRefusal(const STarget& target, ETag tag, const std::string& text) {
    return ReasonOf([&](IStatus** status) { return target.m_tags->SetTag(tag, text.c_str(), status); });
}

class CTaggedFile : public testing::TestWithParam<const char*> {};

}  // namespace

TEST_P(CTaggedFile, IsReadBackWithItsTags) {
    const CScratchDirectory scratch;
    const std::string path = scratch / (std::string("x.") + GetParam());
    const CTexts written = WriteTagged(path, GetParam(), kTexts);
    EXPECT_EQ(TagsOf(path), written);
    const std::string probed = ProbedTags(scratch, path);
    // AIFF's own name for it is author.
    const char* const artist = std::string(GetParam()) == "aiff" ? "AUTHOR" : "ARTIST";
    const char* const names[] = {"TITLE", artist, "ALBUM", "DATE", "GENRE"};
    for (std::size_t i = 0; i < written.size(); ++i) {
        if (written[i].empty()) continue;
        EXPECT_NE(probed.find("\n" + std::string(names[i]) + "=" + written[i] + "\n"), std::string::npos)
            << names[i] << probed;
    }
    EXPECT_EQ(Decoded(path).size(), Decoded(kVoice).size());
}

INSTANTIATE_TEST_SUITE_P(SndfileEncoder, CTaggedFile,
                         testing::Values("wav", "rf64", "w64", "aiff", "caf", "au", "flac", "ogg", "opus", "mp3"),
                         [](const auto& parameter) { return std::string(parameter.param); });

TEST(SndfileEncoder, WritesTagsThatTheFormatsOwnToolsRead) {
    const CScratchDirectory scratch;
    for (const char* const extension : {"flac", "ogg", "opus"}) {
        WriteTagged(scratch / (std::string("x.") + extension), extension, kTexts);
    }
    RunTool("LC_ALL=C.UTF-8 metaflac --export-tags-to=" + scratch / "flac" + " " + scratch / "x.flac");
    RunTool("LC_ALL=C.UTF-8 vorbiscomment -l " + scratch / "x.ogg" + " > " + scratch / "ogg");
    RunTool("LC_ALL=C.UTF-8 opusinfo " + scratch / "x.opus" + " | sed 's/^\t//' > " + scratch / "opus");
    for (const char* const extension : {"flac", "ogg", "opus"}) {
        RunTool("sed -i 's/^[^=]*=/\\U&/' " + scratch / extension);
        const std::string tags = "\n" + Content(scratch / extension);
        for (const std::string& expected : {"TITLE=" + kTexts[0], "ARTIST=" + kTexts[1], "ALBUM=" + kTexts[2],
                                            "DATE=" + kTexts[3], "GENRE=" + kTexts[4]}) {
            EXPECT_NE(tags.find("\n" + expected + "\n"), std::string::npos) << extension << expected << tags;
        }
    }
}

TEST(SndfileEncoder, SaysWhichTagsAFormatHasAPlaceFor) {
    const std::vector<std::pair<std::string, std::string>> table = {
        {"wav", "11111"}, {"rf64", "11111"}, {"w64", "00000"}, {"aiff", "11000"}, {"aif", "11000"},  {"caf", "11111"},
        {"au", "00000"},  {"flac", "11111"}, {"ogg", "11111"}, {"oga", "11111"},  {"opus", "11111"}, {"mp3", "11111"}};
    for (const auto& row : table) {
        const STarget target("/nowhere/x", row.first);
        std::string has;
        for (unsigned int tag = 0; tag < 5; ++tag) has += target.m_tags->HasTag(static_cast<ETag>(tag)) ? '1' : '0';
        EXPECT_EQ(has, row.second) << row.first;
        EXPECT_FALSE(target.m_tags->HasTag(static_cast<ETag>(5)));
    }
}

TEST(SndfileEncoder, RefusesTagsThatCannotBeWritten) {
    const STarget wav("/nowhere/x.wav", "wav");
    EXPECT_EQ(TagRefusal(STarget("/nowhere/x.aiff", "aiff"), TAG_ALBUM, "Album"),
              "x.aiff: a .aiff file has no place for this tag");
    EXPECT_EQ(TagRefusal(wav, TAG_TITLE, "Gr\xFC\xDF"), "x.wav: a tag that is not UTF-8");
    EXPECT_EQ(TagRefusal(wav, TAG_TITLE, std::string(2001, 'x')), "x.wav: a tag of 2001 bytes; there is room for 2000");
    EXPECT_EQ(ErrorOf([&](IStatus** status) { return wav.m_tags->SetTag(TAG_TITLE, nullptr, status); }),
              AE_BAD_ARGUMENT);
}

TEST(SndfileEncoder, WritesTagsOfTheGreatestSizeToEveryFormat) {
    const CScratchDirectory scratch;
    const CTexts longest(5, std::string(2000, 'x'));
    for (const char* const extension : {"wav", "rf64", "aiff", "caf", "flac", "ogg", "opus", "mp3"}) {
        const std::string path = scratch / (std::string("x.") + extension);
        const CTexts written = WriteTagged(path, extension, longest);
        EXPECT_EQ(TagsOf(path), written) << extension;
        EXPECT_EQ(Decoded(path).size(), Decoded(kVoice).size()) << extension;
    }
}

TEST(SndfileEncoder, WritesNoTagForAnEmptyText) {
    const CScratchDirectory scratch;
    for (const char* const extension : {"wav", "aiff", "caf", "flac", "ogg", "opus", "mp3"}) {
        const STarget target(scratch / "x", extension);
        EXPECT_TRUE(target.m_tags->SetTag(TAG_TITLE, "Title", nullptr));
        EXPECT_TRUE(target.m_tags->SetTag(TAG_TITLE, "", nullptr));
        SSink(target, kMono).WriteAll(RandomBytes(20000));
        EXPECT_EQ(TagsOf(scratch / "x"), CTexts(5)) << extension;
        EXPECT_EQ(Content(scratch / "x").find("Title"), std::string::npos) << extension;
    }
}

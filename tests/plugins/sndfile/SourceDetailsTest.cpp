// Tags, cue points and the source's name.
#include "tests/plugins/sndfile/AudioFiles.h"
#include "tests/plugins/sndfile/PluginUnderTest.h"
#include "tests/support/ScratchDirectory.h"

namespace {

const SWavFormat kMono{44100, 16, 1};

struct STagTexts {
    std::string m_strTitle, m_strArtist, m_strAlbum, m_strYear, m_strGenre;
};

bool operator==(const STagTexts& left, const STagTexts& right) {
    return left.m_strTitle == right.m_strTitle && left.m_strArtist == right.m_strArtist &&
           left.m_strAlbum == right.m_strAlbum && left.m_strYear == right.m_strYear &&
           left.m_strGenre == right.m_strGenre;
}

std::ostream& operator<<(std::ostream& out, const STagTexts& tags) {
    return out << tags.m_strTitle << '|' << tags.m_strArtist << '|' << tags.m_strAlbum << '|' << tags.m_strYear << '|'
               << tags.m_strGenre;
}

STagTexts TagsOf(const std::string& path) {
    const SSource source(path);
    const auto info = CComPtr<IInfoReader>::Query(source.m_stream.Get(), IID_IInfoReader);
    EXPECT_TRUE(info) << path;
    if (!info) return {};
    return {info->GetTitle(), info->GetArtist(), info->GetAlbum(), info->GetYear(), info->GetGenre()};
}

bool Offers(const std::string& path, unsigned long identity) {
    const SSource source(path);
    void* face = nullptr;
    const int result = source.m_stream->QueryInterface(identity, &face);
    if (result == 0) source.m_stream->Release();
    return result == 0;
}

std::string ListOf(const std::vector<std::pair<std::string, std::string>>& texts) {
    std::string list = "INFO";
    for (const auto& text : texts) list += Chunk(text.first, text.second + '\0');
    return Chunk("LIST", list);
}

std::string CuesAt(const std::vector<std::uint32_t>& positions) {
    std::string cues = LittleEndian(positions.size(), 4);
    for (std::size_t i = 0; i < positions.size(); ++i) {
        cues += LittleEndian(i + 1, 4) + LittleEndian(positions[i], 4) + "data" + LittleEndian(0, 4) +
                LittleEndian(0, 4) + LittleEndian(positions[i], 4);
    }
    return Chunk("cue ", cues);
}

}  // namespace

TEST(SndfileTags, OfFlacMp3OpusAndVorbisAreRead) {
    CScratchDirectory scratch;
    const STagTexts expected{"Gr\u00fc\u00dfe", "An Artist", "An Album", "1999", "Rock"};
    RunTool(
        "flac -s -f --tag='TITLE=Gr\u00fc\u00dfe' --tag='ARTIST=An Artist' --tag='ALBUM=An Album' --tag=DATE=1999 "
        "--tag=GENRE=Rock -o " +
        scratch / "x.flac" + " " + kVoice);
    EXPECT_EQ(TagsOf(scratch / "x.flac"), expected);
    RunTool(
        "LC_ALL=C.UTF-8 lame --quiet --id3v2-utf16 --tt 'Gr\u00fc\u00dfe' --ta 'An Artist' --tl 'An Album' --ty 1999 "
        "--tg Rock " +
        kVoice + " " + scratch / "x.mp3");
    EXPECT_EQ(TagsOf(scratch / "x.mp3"), expected);
    RunTool("LC_ALL=C.UTF-8 oggenc -Q -t 'Gr\u00fc\u00dfe' -a 'An Artist' -l 'An Album' -d 1999 -G Rock -o " +
            scratch / "x.ogg" + " " + kVoice);
    EXPECT_EQ(TagsOf(scratch / "x.ogg"), expected);
    RunTool(
        "LC_ALL=C.UTF-8 opusenc --quiet --title 'Gr\u00fc\u00dfe' --artist 'An Artist' --album 'An Album' "
        "--date 1999 --genre Rock " +
        kVoice + " " + scratch / "x.opus");
    EXPECT_EQ(TagsOf(scratch / "x.opus"), expected);
}

TEST(SndfileTags, ThatAreMissingAreEmpty) {
    CScratchDirectory scratch;
    RunTool("flac -s -f --tag=ARTIST=Solo -o " + scratch / "x.flac" + " " + kVoice);
    EXPECT_EQ(TagsOf(scratch / "x.flac"), (STagTexts{"", "Solo", "", "", ""}));
}

TEST(SndfileTags, OfWavFilesComeOutAsUtf8) {
    CScratchDirectory scratch;
    const std::string samples = RandomBytes(200);
    const std::vector<std::pair<std::string, std::string>> table = {
        {"Plain", "Plain"},
        {"Caf\xE9", "Caf\u00e9"},
        {"Caf\u00e9 \u20ac \U0001D11E", "Caf\u00e9 \u20ac \U0001D11E"},
        {"\xE2\x82", "\u00e2\u0082"},
        {"\xC0\x80", "\u00c0\u0080"},
        {"\xED\xA0\x80", "\u00ed\u00a0\u0080"},
        {"\xF4\x90\x80\x80", "\u00f4\u0090\u0080\u0080"},
        {"\xF0\x8F\xBF\xBF", "\u00f0\u008f\u00bf\u00bf"},
    };
    for (const auto& row : table) {
        const std::string path = scratch.Write("x.wav", WavFile(kMono, samples, 1, ListOf({{"INAM", row.first}})));
        EXPECT_EQ(TagsOf(path).m_strTitle, row.second);
    }
}

TEST(SndfileTags, OfAnotherKindLeaveTheTextsEmpty) {
    CScratchDirectory scratch;
    const std::string list = ListOf({{"ICMT", "recorded in the kitchen"}});
    const std::string path = scratch.Write("x.wav", WavFile(kMono, RandomBytes(200), 1, list));
    EXPECT_EQ(TagsOf(path), (STagTexts{}));
}

TEST(SndfileTags, AreEmptyTextsInAFileWithoutAny) {
    CScratchDirectory scratch;
    EXPECT_EQ(TagsOf(scratch.Write("x.wav", WavFile(kMono, RandomBytes(200)))), (STagTexts{}));
    EXPECT_EQ(TagsOf(kVoice), (STagTexts{}));
}

TEST(SndfileCues, OfAWavFileAreIndexPointsInAscendingOrder) {
    CScratchDirectory scratch;
    const std::string path =
        scratch.Write("x.wav", WavFile(kMono, RandomBytes(20000), 1, CuesAt({4000, 0, 9999, 123})));
    const SSource source(path);
    const auto index = CComPtr<IIndexArray>::Query(source.m_stream.Get(), IID_IIndexArray);
    ASSERT_TRUE(index);
    ASSERT_EQ(index->GetIndexNumber(), 4);
    EXPECT_EQ(index->GetIndex(0), 0u);
    EXPECT_EQ(index->GetIndex(1), 123u);
    EXPECT_EQ(index->GetIndex(2), 4000u);
    EXPECT_EQ(index->GetIndex(3), 9999u);
    EXPECT_EQ(index->GetIndex(-1), kNoIndexPoint);
    EXPECT_EQ(index->GetIndex(4), kNoIndexPoint);
}

TEST(SndfileCues, AtTheEndOrBehindItAreLeftOut) {
    CScratchDirectory scratch;
    const std::string whole = WavFile(kMono, RandomBytes(20000), 1, CuesAt({10000, 9999, 4294967295, 10001, 3}));
    const SSource source(scratch.Write("x.wav", whole));
    const auto index = CComPtr<IIndexArray>::Query(source.m_stream.Get(), IID_IIndexArray);
    ASSERT_TRUE(index);
    ASSERT_EQ(index->GetIndexNumber(), 2);
    EXPECT_EQ(index->GetIndex(0), 3u);
    EXPECT_EQ(index->GetIndex(1), 9999u);
    EXPECT_FALSE(
        Offers(scratch.Write("y.wav", WavFile(kMono, RandomBytes(20000), 1, CuesAt({10000}))), IID_IIndexArray));
}

TEST(SndfileCues, MayBeMoreThanTheCodecsRecordHolds) {
    CScratchDirectory scratch;
    std::vector<std::uint32_t> positions;
    for (std::uint32_t i = 0; i < 250; ++i) positions.push_back(i * 30);
    const SSource source(scratch.Write("x.wav", WavFile(kMono, RandomBytes(20000), 1, CuesAt(positions))));
    const auto index = CComPtr<IIndexArray>::Query(source.m_stream.Get(), IID_IIndexArray);
    ASSERT_TRUE(index);
    ASSERT_EQ(index->GetIndexNumber(), 250);
    for (int i = 0; i < 250; ++i) EXPECT_EQ(index->GetIndex(i), positions[static_cast<std::size_t>(i)]);
}

TEST(SndfileCues, OfAnAiffFileAreItsMarkers) {
    CScratchDirectory scratch;
    RunTool("sox -D " + kVoice + " " + scratch / "x.aiff");
    const std::string file = Content(scratch / "x.aiff");
    // AIFF 1.3, 6: the count; of each its number, position and name, which is counted and padded.
    const std::string markers("\0\2\0\1\0\0\x12\x34\3one\0\2\0\0\x10\0\5three", 24);
    std::string marked = file + "MARK" + std::string("\0\0\0\x18", 4) + markers;
    const std::size_t size = marked.size() - 8;
    for (int i = 0; i < 4; ++i) marked[4 + static_cast<std::size_t>(i)] = static_cast<char>(size >> (24 - 8 * i));
    const SSource source(scratch.Write("y.aiff", marked));
    const auto index = CComPtr<IIndexArray>::Query(source.m_stream.Get(), IID_IIndexArray);
    ASSERT_TRUE(index);
    ASSERT_EQ(index->GetIndexNumber(), 2);
    EXPECT_EQ(index->GetIndex(0), 0x1000u);
    EXPECT_EQ(index->GetIndex(1), 0x1234u);
}

TEST(SndfileCues, AreNotOfferedByAFileWithoutAny) { EXPECT_FALSE(Offers(kVoice, IID_IIndexArray)); }

TEST(SndfileSourceName, IsThePathThatWasOpened) {
    const SSource source(kBell);
    const auto name = CComPtr<ISourceName>::Query(source.m_stream.Get(), IID_ISourceName);
    ASSERT_TRUE(name);
    EXPECT_EQ(name->GetSourceName(), kBell);
}

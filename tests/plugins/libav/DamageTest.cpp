// Files that are cut short or damaged: what is there is delivered, then the reason.
#include <algorithm>

#include "tests/plugins/libav/DecoderUnderTest.h"
#include "tests/plugins/libav/MediaTable.h"
#include "tests/plugins/libav/WrittenFiles.h"
#include "tests/support/ScratchDirectory.h"

namespace {

struct SDamagedFile {
    const char* m_strName;
    const char* m_strReason;  // a part of it
};

void PrintTo(const SDamagedFile& file, std::ostream* out) { *out << file.m_strName; }

class LibavDamage : public testing::Test {
protected:
    std::string Cut(const std::string& name, double part) {
        const std::string whole = Content(Media(name));
        return m_scratch.Write(name,
                               whole.substr(0, static_cast<std::size_t>(static_cast<double>(whole.size()) * part)));
    }

    std::string Scratched(const std::string& name) {
        std::string content = Content(Media(name));
        for (std::size_t i = 0; i < 40; ++i) content[content.size() / 2 + 3 * i] ^= static_cast<char>(0xA5 + i);
        return m_scratch.Write(name, content);
    }

    // Opens and reads the file: some of the samples of the whole one, then the reason.
    void ExpectAPart(const std::string& path, const std::string& name, const std::string& reason) {
        SSource source(path);
        const std::string samples = source.ReadOn();
        EXPECT_THAT(source.m_strFailure, testing::StartsWith(name + ": "));
        EXPECT_THAT(source.m_strFailure, testing::HasSubstr(reason));
        SSource whole(Media(name));
        EXPECT_GT(samples.size(), 100000u);
        EXPECT_TRUE(samples == whole.ReadOn(samples.size()));
        // The reason stays until a seek.
        const std::string failure = source.m_strFailure;
        EXPECT_EQ(source.ReadOn(), "");
        EXPECT_EQ(source.m_strFailure, failure);
        ASSERT_TRUE(source.m_seekable->Seek(0, nullptr));
        EXPECT_TRUE(source.ReadOn(48000) == samples.substr(0, 48000));
        EXPECT_EQ(source.m_strFailure, "");
    }

    CScratchDirectory m_scratch;
};

class CutShort : public LibavDamage, public testing::WithParamInterface<SDamagedFile> {};
class Scratch : public LibavDamage, public testing::WithParamInterface<SDamagedFile> {};

TEST_P(CutShort, DeliversWhatIsThereAndThenTheReason) {
    ExpectAPart(Cut(GetParam().m_strName, 0.617), GetParam().m_strName, GetParam().m_strReason);
}

TEST_P(Scratch, DeliversWhatIsBeforeAndThenTheReason) {
    ExpectAPart(Scratched(GetParam().m_strName), GetParam().m_strName, GetParam().m_strReason);
}

const SDamagedFile kCutFiles[] = {
    {"source.tta", "damaged TTA (True Audio) audio (tta) after frame "},
    {"deep.wv", "damaged WavPack audio (wavpack) after frame "},
    {"adts.aac", "damaged raw ADTS AAC (Advanced Audio Coding) audio (aac) after frame "},
    {"one.ac3", "lost samples are hidden"},
    {"aac.mka", "cut short: the end is missing, "},
    {"vorbis.webm", "cut short: the end is missing, "},
    {"video.avi", "cut short: the end is missing, "},
    {"fragments.mp4", "a packet is not whole"},
    {"two.wma", "damaged ASF "},
    {"aac.flv", "damaged FLV (Flash Video) audio (aac) after frame "},
};

const SDamagedFile kScratchedFiles[] = {
    {"alac.m4a", "damaged QuickTime / MOV audio (alac) after frame "},
    {"source.tta", "damaged TTA (True Audio) audio (tta) after frame "},
    {"deep.wv", "damaged WavPack audio (wavpack) after frame "},
    {"deep.thd", "damaged raw TrueHD audio (truehd) after frame "},
    {"flac.mka", "damaged Matroska / WebM audio (flac) after frame "},
    {"aac.m4a", "damaged QuickTime / MOV audio (aac) after frame "},
    {"adts.aac", "Invalid data found when processing input"},
    {"one.ac3", "damaged raw AC-3 audio (ac3) after frame "},
};

std::string NameOf(const testing::TestParamInfo<SDamagedFile>& parameter) {
    return TestNameOf(parameter.param.m_strName);
}

INSTANTIATE_TEST_SUITE_P(Libav, CutShort, testing::ValuesIn(kCutFiles), NameOf);
INSTANTIATE_TEST_SUITE_P(Libav, Scratch, testing::ValuesIn(kScratchedFiles), NameOf);

TEST_F(LibavDamage, IsSteppedOverByASeek) {
    SSource source(Scratched("alac.m4a"));
    SSource whole(Media("alac.m4a"));
    const std::string samples = whole.ReadOn();
    source.ReadOn();
    ASSERT_NE(source.m_strFailure, "");
    ASSERT_TRUE(source.m_seekable->Seek(140000, nullptr));
    EXPECT_TRUE(source.ReadOn() == samples.substr(140000 * 4));
    EXPECT_EQ(source.m_strFailure, "");
}

TEST_F(LibavDamage, SoundThatPromisesMoreFramesThanItHasIsCutShort) {
    const std::string content = Content(Media("source.wv"));
    std::size_t end = 0;
    for (int block = 0; block < 4; ++block) end += BlockSize(content, end);
    SSource source(m_scratch.Write("x.wv", content.substr(0, end)));
    EXPECT_EQ(source.m_blocks->GetDataLength(), 176401u);
    const std::string samples = source.ReadOn();
    EXPECT_EQ(source.m_strFailure,
              "x.wv: cut short: " + std::to_string(samples.size() / 4) + " of 176401 frames are there");
}

TEST_F(LibavDamage, SoundThatLacksABlockInTheMiddleIsCutShort) {
    const std::string path = m_scratch / "x.wv";
    RunTool("wavpack -q --blocksize=4096 '" + Media("source.wav") + "' -o " + path);
    const std::string content = Content(path);
    for (const int block : {2, 20}) {
        SSource source(m_scratch.Write("x.wv", WithoutPieces(content, BlockSize, block)));
        EXPECT_EQ(source.m_blocks->GetDataLength(), 176401u) << block;
        const std::string samples = source.ReadOn();
        EXPECT_EQ(source.m_strFailure, "x.wv: cut short: 172305 of 176401 frames are there") << block;
        ASSERT_TRUE(source.m_seekable->Seek(100000, nullptr)) << block;
        EXPECT_TRUE(source.ReadOn() == samples.substr(100000 * 4)) << block;
    }
}

TEST_F(LibavDamage, SoundThatLacksPagesInTheMiddleIsCutShort) {
    const std::string content = Content(Media("speech.spx"));
    SSource whole(Media("speech.spx"));
    const std::uint64_t length = whole.m_blocks->GetDataLength();
    for (const int page : {3, 4}) {
        SSource source(m_scratch.Write("x.spx", WithoutPieces(content, PageSize, page)));
        EXPECT_EQ(source.m_blocks->GetDataLength(), length) << page;
        EXPECT_LT(source.ReadOn().size() / 2, length) << page;
        EXPECT_THAT(source.m_strFailure, testing::StartsWith("x.spx: cut short: ")) << page;
    }
}

// A broadcast has no beginning and no end of its own.
TEST_F(LibavDamage, PieceOutOfABroadcastIsNotDamaged) {
    const std::string whole = Content(Media("video.ts"));
    SSource source(m_scratch.Write("x.ts", whole.substr(188 * 301, 188 * 701 + 94)));
    EXPECT_GT(source.ReadOn().size(), 100000u);
    EXPECT_EQ(source.m_strFailure, "");
}

TEST_F(LibavDamage, SoundThatChangesItsFormatSaysSo) {
    RunTool("ffmpeg -i '" + Media("source.wav") + "' -t 0.4 -ar 48000 -ac 1 -c:a ac3 " + m_scratch / "b.ac3");
    SSource source(m_scratch.Write("x.ac3", Content(Media("one.ac3")) + Content(m_scratch / "b.ac3")));
    EXPECT_GE(source.ReadOn().size(), 176640u * 4);
    EXPECT_THAT(source.m_strFailure, testing::EndsWith("the sound changes from 44100 Hz with 2 channels to 48000 Hz "
                                                       "with 1 channels"));
}

}  // namespace

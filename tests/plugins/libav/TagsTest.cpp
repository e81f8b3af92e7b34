// Tags and chapters.
#include "tests/plugins/libav/DecoderUnderTest.h"
#include "tests/support/ScratchDirectory.h"

namespace {

std::string TagsOf(const std::string& path) {
    SSource source(path);
    IInfoReader& info = *source.m_info;
    return std::string(info.GetTitle()) + "|" + info.GetArtist() + "|" + info.GetAlbum() + "|" + info.GetYear() + "|" +
           info.GetGenre();
}

// Positions of the index points, the last one being where GetIndex knows no more.
std::vector<std::uint64_t> IndexOf(const std::string& path) {
    SSource source(path);
    std::vector<std::uint64_t> points;
    if (!source.m_index) return points;
    for (int i = 0; i <= source.m_index->GetIndexNumber(); ++i) points.push_back(source.m_index->GetIndex(i));
    return points;
}

constexpr const char* kTags =
    " -metadata title='Größe 大' -metadata artist=Künstler -metadata album=Платье -metadata date=2004-05-06 "
    "-metadata genre=Jazz ";

class LibavTags : public testing::TestWithParam<const char*> {
protected:
    CScratchDirectory m_scratch;
};

TEST_P(LibavTags, AreReadAsUtf8) {
    const std::string path = m_scratch / GetParam();
    RunTool("ffmpeg -i '" + Media("source.wav") + "' -t 0.3" + kTags + path);
    EXPECT_EQ(TagsOf(path), "Größe 大|Künstler|Платье|2004|Jazz");
}

INSTANTIATE_TEST_SUITE_P(Libav, LibavTags,
                         testing::Values("x.m4a", "x.wma", "x.mka", "x.tta", "x.wv", "x.mov", "x.spx"),
                         [](const auto& parameter) { return std::string(parameter.param + 2); });

TEST(LibavTag, SetsThatNameNoCharacterSetAreLatin1UnlessTheyAreUtf8) {
    CScratchDirectory scratch;
    RunTool("ffmpeg -i '" + Media("video.avi") + "' -t 0.5 -c copy -metadata title=Cafe.! " + scratch / "x.avi");
    std::string content = Content(scratch / "x.avi");
    content.replace(content.find("Cafe.!"), 5, "Caf\xE9.");
    EXPECT_EQ(TagsOf(scratch.Write("y.avi", content)), "Café.!||||");
    content.replace(content.find("Caf\xE9.!"), 6, "Caf\xC3\xA9!");
    EXPECT_EQ(TagsOf(scratch.Write("z.avi", content)), "Café!||||");
}

TEST(LibavTag, YearThatIsNoDateStaysAsItIs) {
    CScratchDirectory scratch;
    for (const char* const year : {"1999", "c. 1850", "199-"}) {
        RunTool("ffmpeg -y -i '" + Media("source.wav") + "' -t 0.3 -metadata date='" + year + "' " + scratch / "x.mka");
        EXPECT_EQ(TagsOf(scratch / "x.mka"), std::string("|||") + year + "|");
    }
}

TEST(LibavTag, FileWithoutTagsHasEmptyOnes) { EXPECT_EQ(TagsOf(Media("adts.aac")), "||||"); }

TEST(LibavTag, PictureOfTheCoverIsNoSoundTrack) {
    CScratchDirectory scratch;
    RunTool("ffmpeg -f lavfi -i testsrc=size=64x64 -frames:v 1 " + scratch / "x.png");
    RunTool("ffmpeg -i '" + Media("alac.m4a") + "' -i " + scratch / "x.png" +
            " -map 0 -map 1 -c copy -disposition:v attached_pic " + scratch / "x.m4a");
    SSource source(scratch / "x.m4a");
    EXPECT_TRUE(source.ReadOn() == Content(Media("source.pcm")));
}

TEST(LibavChapters, BecomeIndexPoints) {
    CScratchDirectory scratch;
    const std::string chapters = scratch.Write("chapters",
                                               ";FFMETADATA1\n[CHAPTER]\nTIMEBASE=1/1000\nSTART=0\nEND=1000\n"
                                               "[CHAPTER]\nTIMEBASE=1/1000\nSTART=1000\nEND=2500\n"
                                               "[CHAPTER]\nTIMEBASE=1/1000\nSTART=2500\nEND=4000\n");
    for (const char* const name : {"x.m4a", "x.mka"}) {
        RunTool("ffmpeg -i '" + Media("source.wav") + "' -i " + chapters + " -map_chapters 1 -c:a alac " +
                scratch / name);
        EXPECT_EQ(IndexOf(scratch / name), (std::vector<std::uint64_t>{0, 44100, 110250, kNoIndexPoint})) << name;
    }
}

TEST(LibavChapters, AreCountedFromTheBeginningOfTheSound) {
    CScratchDirectory scratch;
    const std::string chapters = scratch.Write("chapters",
                                               ";FFMETADATA1\n[CHAPTER]\nTIMEBASE=1/1000\nSTART=500\nEND=1000\n"
                                               "[CHAPTER]\nTIMEBASE=1/1000\nSTART=1000\nEND=2500\n");
    RunTool("ffmpeg -itsoffset 0.5 -i '" + Media("source.wav") + "' -i " + chapters + " -map_chapters 1 -c:a flac " +
            scratch / "x.mka");
    EXPECT_EQ(IndexOf(scratch / "x.mka"), (std::vector<std::uint64_t>{0, 22050, kNoIndexPoint}));
}

TEST(LibavChapters, OneAtTheEndOfTheSoundIsLeftOut) {
    CScratchDirectory scratch;
    const std::string chapters = scratch.Write("chapters",
                                               ";FFMETADATA1\n[CHAPTER]\nTIMEBASE=1/44100\nSTART=0\nEND=1000\n"
                                               "[CHAPTER]\nTIMEBASE=1/44100\nSTART=88200\nEND=90000\n");
    RunTool("ffmpeg -t 2 -i '" + Media("source.wav") + "' -i " + chapters + " -map_chapters 1 -c:a flac " +
            scratch / "x.mka");
    EXPECT_EQ(IndexOf(scratch / "x.mka"), (std::vector<std::uint64_t>{0, kNoIndexPoint}));
}

TEST(LibavChapters, FileWithoutThemHasNoIndex) { EXPECT_TRUE(IndexOf(Media("alac.m4a")).empty()); }

TEST(LibavTrack, OneThatIsMeantForEverybodyIsChosen) {
    CScratchDirectory scratch;
    RunTool("ffmpeg -i '" + Media("narrow.wav") + "' -i '" + Media("source.wav") +
            "' -map 0 -map 1 -c:a flac -disposition:0 visual_impaired -disposition:1 default " + scratch / "x.mka");
    SSource source(scratch / "x.mka");
    EXPECT_TRUE(source.ReadOn() == Content(Media("source.pcm")));
}

}  // namespace

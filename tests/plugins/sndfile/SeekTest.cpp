// Seeking, compared with one linear read.
#include <filesystem>

#include "tests/plugins/sndfile/AudioFiles.h"
#include "tests/plugins/sndfile/PluginUnderTest.h"
#include "tests/support/ScratchDirectory.h"

namespace {

void MakeFile(const CScratchDirectory& scratch, const std::string& name) {
    const std::string wav = scratch / "source.wav";
    RunTool("sox -R -M " + kVoice + " " + kNoise + " -b 16 " + wav + " repeat 2");
    const std::string path = scratch / name;
    const std::string extension = name.substr(name.find('.') + 1);
    if (extension == "ogg") return RunTool("oggenc -Q -o " + path + " " + wav);
    if (extension == "opus") return RunTool("opusenc --quiet " + wav + " " + path);
    if (name == "bare.mp3") return RunTool("lame --quiet -V2 -t " + wav + " " + path);
    if (name == "tagged.mp3") return RunTool("lame --quiet -V2 -t --add-id3v2 --tt Title " + wav + " " + path);
    if (extension == "mp3") return RunTool("lame --quiet " + wav + " " + path);
    const std::string options = name == "deep.wav" ? "-b 24 " : name == "law.au" ? "-e u-law " : "";
    RunTool("sox -D " + wav + " " + options + path);
}

class CSeek : public testing::TestWithParam<const char*> {
protected:
    CSeek() { MakeFile(m_scratch, GetParam()); }

    std::string Path() const { return m_scratch / GetParam(); }

    CScratchDirectory m_scratch;
};

}  // namespace

TEST_P(CSeek, LandsExactlyWhereALinearReadWouldBe) {
    SSource source(Path());
    ASSERT_TRUE(source.m_process->Start(nullptr));
    const std::string linear = ReadOn(source, 65536);
    const auto block = static_cast<std::uint64_t>(source.m_blocks->GetBlockSize());
    const std::uint64_t length = source.m_blocks->GetDataLength();
    ASSERT_EQ(linear.size(), length * block);

    // An Opus decoder that starts in the middle comes within a rounding of the linear one.
    const int tolerance = std::string(GetParam()) == "x.opus" ? 1 : 0;
    std::mt19937_64 random(7);
    std::vector<std::uint64_t> targets = {0, length - 1, 1, length, length / 2, length / 2 + 1, length / 2 - 1, 0};
    for (int i = 0; i < 60; ++i) targets.push_back(random() % length);
    for (const std::uint64_t target : targets) {
        ASSERT_TRUE(source.m_seekable->Seek(target, nullptr)) << target;
        EXPECT_EQ(source.m_blocks->GetPos(), target);
        const std::string samples = ReadOn(source, static_cast<int>(3000 * block), 3000 * block);
        const std::string expected = linear.substr(target * block, 3000 * block);
        ASSERT_EQ(samples.size(), expected.size()) << target;
        if (tolerance == 0) {
            ASSERT_TRUE(samples == expected) << target;
        } else {
            ASSERT_LE(GreatestDifference(samples, expected), tolerance) << target;
        }
        EXPECT_EQ(source.m_blocks->GetPos(), target + samples.size() / block);
    }
}

TEST_P(CSeek, BeyondTheEndIsRefusedAndChangesNothing) {
    SSource source(Path());
    ASSERT_TRUE(source.m_process->Start(nullptr));
    const std::uint64_t length = source.m_blocks->GetDataLength();
    ASSERT_TRUE(source.m_seekable->Seek(1000, nullptr));
    for (const std::uint64_t target : {length + 1, ~std::uint64_t{0}}) {
        const std::string expected = std::string(GetParam()) + ": frame " + std::to_string(target) +
                                     " is beyond the end (" + std::to_string(length) + " frames)";
        EXPECT_EQ(ReasonOf([&](IStatus** status) { return source.m_seekable->Seek(target, status); }), expected);
    }
    EXPECT_EQ(source.m_blocks->GetPos(), 1000u);
}

TEST_P(CSeek, ToTheEndMakesTheNextReadTheEnd) {
    SSource source(Path());
    ASSERT_TRUE(source.m_process->Start(nullptr));
    ASSERT_TRUE(source.m_seekable->Seek(source.m_blocks->GetDataLength(), nullptr));
    EXPECT_EQ(ReadOn(source), "");
    ASSERT_TRUE(source.m_seekable->Seek(0, nullptr));
    EXPECT_NE(ReadOn(source, 4096, 4096), "");
}

INSTANTIATE_TEST_SUITE_P(SndfileSeek, CSeek,
                         testing::Values("x.wav", "deep.wav", "x.aiff", "law.au", "x.caf", "x.w64", "x.flac", "x.ogg",
                                         "x.opus", "x.mp3", "bare.mp3", "tagged.mp3"),
                         [](const auto& parameter) {
                             std::string name = parameter.param;
                             return name.replace(name.find('.'), 1, "_");
                         });

// Near the end, near where the last read stopped, and anywhere.
TEST(SndfileSeek, IsExactInVorbisOfAnyLength) {
    std::mt19937_64 random(11);
    for (const auto& entry : std::filesystem::directory_iterator("/usr/share/sounds/freedesktop/stereo")) {
        SSource source(entry.path().string());
        ASSERT_TRUE(source.m_process->Start(nullptr));
        const std::string linear = ReadOn(source, 65536);
        const auto block = static_cast<std::uint64_t>(source.m_blocks->GetBlockSize());
        const std::uint64_t length = source.m_blocks->GetDataLength();
        for (int i = 0; i < 24; ++i) {
            const std::uint64_t range = i % 3 == 0 ? length : std::min<std::uint64_t>(length, 9000);
            const std::uint64_t back = random() % range;
            const std::uint64_t target =
                i % 3 == 1 ? length - back : std::min(length, source.m_blocks->GetPos() + back);
            ASSERT_TRUE(source.m_seekable->Seek(target, nullptr)) << entry.path() << target;
            const std::string samples = ReadOn(source, 8000, 8000);
            ASSERT_TRUE(samples == linear.substr(target * block, 8000)) << entry.path() << target;
            ASSERT_TRUE(i % 3 != 2 || source.m_seekable->Seek(random() % length, nullptr));
        }
    }
}

TEST(SndfileSeek, BeforeStartIsRefused) {
    SSource source(kVoice);
    EXPECT_EQ(ReasonOf([&](IStatus** status) { return source.m_seekable->Seek(5, status); }),
              "Front_Center.wav: seek before start");
}

TEST(SndfileSeek, InAFileOfUnknownLengthFindsTheFrames) {
    CScratchDirectory scratch;
    RunTool("sox " + kVoice +
            " -t raw - | flac -s --force-raw-format --endian=little --channels=1 --bps=16 "
            "--sample-rate=48000 --sign=signed - -c > " +
            scratch / "x.flac");
    SSource source(scratch / "x.flac");
    ASSERT_TRUE(source.m_process->Start(nullptr));
    ASSERT_TRUE(source.m_seekable->Seek(30000, nullptr));
    EXPECT_TRUE(ReadOn(source) == Decoded(kVoice).substr(60000));
}

// MPEG audio that does not tell its length, or tells a wrong one, is delivered to its last frame.
#include <sndfile.h>

#include "tests/plugins/sndfile/AudioFiles.h"
#include "tests/plugins/sndfile/PluginUnderTest.h"
#include "tests/support/ScratchDirectory.h"

namespace {

// The bit rate of the first frames says nothing about the rest: noise takes the highest, a tone hardly any.
void MakeSound(const CScratchDirectory& scratch, bool loudFirst) {
    RunTool("sox -R -n -r 44100 -c 2 -b 16 " + scratch / "noise.wav" + " synth 2 whitenoise");
    RunTool("sox -R -n -r 44100 -c 2 -b 16 " + scratch / "tone.wav" + " synth 5 sine 440 vol 0.3");
    RunTool("sox " + scratch / (loudFirst ? "noise.wav" : "tone.wav") + " " +
            scratch / (loudFirst ? "tone.wav" : "noise.wav") + " " + scratch / "x.wav");
}

void MakeMp3(const CScratchDirectory& scratch, const std::string& options, const std::string& name = "x.mp3") {
    RunTool("lame --quiet " + options + " " + scratch / "x.wav" + " " + scratch / name);
}

std::string DecodedByMpg123(const CScratchDirectory& scratch, const std::string& path) {
    RunTool("mpg123 -q -e s16 -O " + scratch / "mpg123.raw" + " " + path);
    return Content(scratch / "mpg123.raw");
}

// Delivers what mpg123 delivers, and knew how much it would be.
void ExpectAsMpg123(const CScratchDirectory& scratch, const std::string& path, const std::string& what) {
    const std::string expected = DecodedByMpg123(scratch, path);
    SSource source(path);
    const std::uint64_t length = source.m_reader->GetRawLen();
    ASSERT_TRUE(source.m_process->Start(nullptr));
    const std::string decoded = ReadOn(source);
    EXPECT_GT(expected.size(), 0u) << what;
    EXPECT_EQ(length, expected.size()) << what;
    EXPECT_EQ(decoded.size(), expected.size()) << what;
    EXPECT_LE(GreatestDifference(decoded, expected), 1) << what;
}

// Of a read that fails.
std::string ReasonOfRead(SSource& source) {
    unsigned char buffer[4096];
    int count = -1;
    EAudioRawState state = ARS_MORE;
    const std::string reason = ReasonOf(
        [&](IStatus** status) { return source.m_reader->RawRead(buffer, sizeof buffer, &count, state, status); });
    EXPECT_EQ(count, 0);
    return reason;
}

struct SRow {
    const char* m_strName;
    const char* m_strOptions;
};

class CMpegLength : public testing::TestWithParam<std::tuple<SRow, bool>> {};

// Frames of Layer II without any sound, at 44100 Hz: the first of 384 kbit/s, the others of 32 kbit/s.
std::string SilentLayerII(int frames, int first) {
    std::string file;
    for (int i = 0; i < frames; ++i) {
        const bool high = i < first;
        std::string frame = high ? std::string("\xFF\xFD\xE0\x00", 4) : std::string("\xFF\xFD\x10\x00", 4);
        frame.resize(high ? 1253 : 104, '\0');
        file += frame;
    }
    return file;
}

// The two numbers behind "Xing" and its flags, of frames and of bytes.
std::string WithInfo(std::string file, std::uint32_t moreFrames, std::uint32_t moreBytes) {
    for (const auto& [offset, more] : {std::pair(8u, moreFrames), std::pair(12u, moreBytes)}) {
        unsigned char* const field = reinterpret_cast<unsigned char*>(file.data()) + file.find("Xing") + offset;
        const std::uint32_t value =
            (std::uint32_t{field[0]} << 24 | std::uint32_t{field[1]} << 16 | std::uint32_t{field[2]} << 8 | field[3]) +
            more;
        for (int i = 0; i < 4; ++i) field[i] = static_cast<unsigned char>(value >> (24 - 8 * i));
    }
    return file;
}

// Samples of 16 bits whose bytes, whichever comes first, hold the header of a frame that reaches over their end.
std::string SamplesLikeAFrame() {
    std::string samples(4000, '\0');
    samples.replace(3800, 4, std::string("\xFF\xFB\x90\x00", 4));
    return samples.replace(3900, 4, std::string("\xFB\xFF\x00\x90", 4));
}

// As the codec itself writes it.
void WriteMono16(const std::string& path, int container, const std::string& samples) {
    SF_INFO info = {};
    info.samplerate = 44100;
    info.channels = 1;
    info.format = container | SF_FORMAT_PCM_16;
    SNDFILE* const file = sf_open(path.c_str(), SFM_WRITE, &info);
    ASSERT_NE(file, nullptr) << sf_strerror(nullptr);
    const auto frames = static_cast<sf_count_t>(samples.size() / 2);
    EXPECT_EQ(sf_writef_short(file, reinterpret_cast<const short*>(samples.data()), frames), frames);
    EXPECT_EQ(sf_close(file), 0);
}

}  // namespace

TEST_P(CMpegLength, IsThatOfAllFramesWithoutAnInfoFrame) {
    const auto& [row, loudFirst] = GetParam();
    CScratchDirectory scratch;
    MakeSound(scratch, loudFirst);
    MakeMp3(scratch, row.m_strOptions);
    ExpectAsMpg123(scratch, scratch / "x.mp3", row.m_strOptions);
}

INSTANTIATE_TEST_SUITE_P(
    SndfileDecoder, CMpegLength,
    testing::Combine(testing::Values(SRow{"Vbr", "-V2 -t"}, SRow{"VbrWithCrc", "-V2 -t -p"},
                                     SRow{"VbrWithId3v2", "-V2 -t --add-id3v2 --pad-id3v2-size 3000 --tt Title"},
                                     SRow{"VbrWithId3v1", "-V2 -t --id3v1-only --tt Title"},
                                     SRow{"VbrMono", "-V4 -t -m m"}, SRow{"VbrMpeg2", "-V4 -t --resample 22.05"},
                                     SRow{"VbrMpeg2Mono", "-V4 -t -m m --resample 24"},
                                     SRow{"VbrMpeg25", "-V4 -t --resample 11.025"},
                                     SRow{"Vbr32kHz", "-V4 -t --resample 32"}, SRow{"Vbr48kHz", "-V4 -t --resample 48"},
                                     SRow{"Abr", "--abr 150 -t"}, SRow{"Cbr", "-b 192 -t"}),
                     testing::Bool()),
    [](const auto& parameter) {
        return std::string(std::get<0>(parameter.param).m_strName) +
               (std::get<1>(parameter.param) ? "LoudToQuiet" : "QuietToLoud");
    });

TEST(SndfileMpegLength, OfARecordingWithoutAnInfoFrameIsWhole) {
    CScratchDirectory scratch;
    RunTool("lame --quiet -V4 -t " + kVoice + " " + scratch / "x.mp3");
    ExpectAsMpg123(scratch, scratch / "x.mp3", "-V4");
}

// Frames of free format do not tell their size; they are all of one, so that an estimate is near.
TEST(SndfileMpegLength, OfFreeFormatIsEstimatedAndNothingIsLost) {
    CScratchDirectory scratch;
    MakeSound(scratch, true);
    MakeMp3(scratch, "--freeformat -b 200 -t");
    SSource source(scratch / "x.mp3");
    const std::uint64_t estimate = source.m_reader->GetRawLen();
    ASSERT_TRUE(source.m_process->Start(nullptr));
    const std::string decoded = ReadOn(source);
    const std::string expected = DecodedByMpg123(scratch, scratch / "x.mp3");
    EXPECT_EQ(decoded.size(), expected.size());
    EXPECT_LE(GreatestDifference(decoded, expected), 1);
    EXPECT_NE(estimate, decoded.size());
    EXPECT_EQ(source.m_reader->GetRawLen(), decoded.size());
    EXPECT_EQ(source.m_blocks->GetPos(), source.m_blocks->GetDataLength());
}

TEST(SndfileMpegLength, OfAFewFramesIsWhole) {
    CScratchDirectory scratch;
    for (const std::string samples : {"1", "577", "1152", "3000"}) {
        RunTool("sox -D " + kVoice + " " + scratch / "x.wav" + " trim 0 " + samples + "s");
        for (const std::string options : {"-V2 -t", "-t", "-V2", ""}) {
            MakeMp3(scratch, options);
            ExpectAsMpg123(scratch, scratch / "x.mp3", samples + " " + options);
        }
    }
}

TEST(SndfileMpegLength, DoesNotCountWhatFollowsTheLastFrame) {
    CScratchDirectory scratch;
    MakeSound(scratch, true);
    MakeMp3(scratch, "-V2 -t");
    const std::string whole = Content(scratch / "x.mp3");
    const std::string expected = DecodedByMpg123(scratch, scratch / "x.mp3");
    for (const std::string& tail : {std::string(500, '\0'), "APETAGEX" + RandomBytes(70000), RandomBytes(900)}) {
        const std::string decoded = Decoded(scratch.Write("tail.mp3", whole + tail));
        EXPECT_EQ(decoded.size(), expected.size()) << tail.size();
        EXPECT_LE(GreatestDifference(decoded, expected), 1);
    }
}

TEST(SndfileMpegLength, CountsFramesBehindOtherBytes) {
    CScratchDirectory scratch;
    MakeSound(scratch, true);
    MakeMp3(scratch, "-V2 -t");
    MakeMp3(scratch, "-V2 -t --add-id3v2 --tt Title", "tagged.mp3");
    const std::string path = scratch.Write("both.mp3", Content(scratch / "x.mp3") + Content(scratch / "tagged.mp3"));
    ExpectAsMpg123(scratch, path, "a tag between two files");
}

TEST(SndfileMpegLength, CountsFramesBehindThoseThatTheInfoFrameDeclares) {
    CScratchDirectory scratch;
    MakeSound(scratch, false);
    MakeMp3(scratch, "-V2");
    MakeMp3(scratch, "-V2 -t", "bare.mp3");
    const std::string path = scratch.Write("both.mp3", Content(scratch / "x.mp3") + Content(scratch / "bare.mp3"));
    SSource source(path);
    const std::uint64_t length = source.m_reader->GetRawLen();
    ASSERT_TRUE(source.m_process->Start(nullptr));
    const std::string decoded = ReadOn(source);
    EXPECT_EQ(decoded.size(), length);
    const std::string first = DecodedByMpg123(scratch, scratch / "x.mp3");
    const std::string second = DecodedByMpg123(scratch, scratch / "bare.mp3");
    // The padding of the first file stays in between.
    ASSERT_GE(decoded.size(), first.size() + second.size());
    EXPECT_LT(decoded.size(), first.size() + second.size() + 4 * 2304);
    EXPECT_LE(GreatestDifference(decoded, first), 1);
    // The first frames of the second file still overlap with the first.
    const std::size_t overlap = 4 * 2304;
    EXPECT_LE(GreatestDifference(decoded.substr(decoded.size() - second.size() + overlap), second.substr(overlap)), 1);
}

TEST(SndfileMpegLength, OfAFileWithAnInfoFrameIsWithoutDelayAndPadding) {
    CScratchDirectory scratch;
    MakeSound(scratch, true);
    for (const std::string options : {"-V2", "-V2 --id3v1-only --tt Title", "-b 128 --add-id3v2 --tt Title"}) {
        MakeMp3(scratch, options);
        ExpectAsMpg123(scratch, scratch / "x.mp3", options);
        EXPECT_EQ(Decoded(scratch / "x.mp3").size(), Decoded(scratch / "x.wav").size()) << options;
    }
}

// Some encoders count the Info frame among the others, some leave the size out.
TEST(SndfileMpegLength, BelievesAnInfoFrameThatCountsItself) {
    CScratchDirectory scratch;
    MakeSound(scratch, true);
    MakeMp3(scratch, "-V2");
    const std::string whole = Content(scratch / "x.mp3");
    const std::string expected = Decoded(scratch / "x.mp3");
    EXPECT_TRUE(Decoded(scratch.Write("size.mp3", WithInfo(whole, 0, 77))) == expected);
    EXPECT_EQ(Decoded(scratch.Write("self.mp3", WithInfo(whole, 1, 77))).size(), expected.size());

    SSource source(scratch.Write("more.mp3", WithInfo(whole, 2, 77)));
    ASSERT_TRUE(source.m_process->Start(nullptr));
    const std::uint64_t there = source.m_blocks->GetDataLength();
    EXPECT_EQ(ReadOn(source, 4096, there * 4).size(), there * 4);
    EXPECT_EQ(ReasonOfRead(source), "more.mp3: cut short: " + std::to_string(there) + " of " +
                                        std::to_string(expected.size() / 4 + 2 * 1152) + " frames are there");
}

TEST(SndfileMpegLength, OfLayerIIIsReckonedFromItsConstantBitRate) {
    CScratchDirectory scratch;
    for (const int frames : {3, 10, 500}) {
        EXPECT_EQ(Decoded(scratch.Write("x.mp2", SilentLayerII(frames, 0))).size(),
                  4 * 1152 * static_cast<std::size_t>(frames));
    }
}

// Layer II has no Info frame by which the codec could know better.
TEST(SndfileMpegLength, OfLayerIIThatTheCodecTakesForShorterRefusesTheFile) {
    CScratchDirectory scratch;
    const std::string reason = RefusalOf(scratch.Write("x.mp2", SilentLayerII(300, 100)));
    EXPECT_EQ(reason.rfind("x.mp2: not readable as MPEG audio: the codec would deliver ", 0), 0u) << reason;
    EXPECT_NE(reason.find(" of 345600 frames"), std::string::npos) << reason;
}

TEST(SndfileMpegLength, ThatTheCodecDoesNotReachFailsTheLastRead) {
    CScratchDirectory scratch;
    RunTool("sox -R -n -r 44100 -c 2 -b 16 " + scratch / "x.wav" + " synth 2 sine 440");
    MakeMp3(scratch, "-t", "first.mp3");
    MakeMp3(scratch, "-t --resample 48", "second.mp3");
    SSource source(scratch.Write("x.mp3", Content(scratch / "first.mp3") + Content(scratch / "second.mp3")));
    ASSERT_TRUE(source.m_process->Start(nullptr));
    const std::size_t frames = DecodedByMpg123(scratch, scratch / "first.mp3").size() / 4;
    EXPECT_EQ(ReadOn(source, 4096, 4 * frames).size(), 4 * frames);
    const std::string reason = ReasonOfRead(source);
    EXPECT_EQ(reason.rfind("x.mp3: only " + std::to_string(frames) + " of ", 0), 0u) << reason;
}

TEST(SndfileMpegLength, OfNothingButAnInfoFrameRefusesTheFile) {
    CScratchDirectory scratch;
    MakeSound(scratch, true);
    MakeMp3(scratch, "-b 128");
    const std::string path = scratch.Write("cut.mp3", Content(scratch / "x.mp3").substr(0, 500));
    EXPECT_EQ(RefusalOf(path), "cut.mp3: not readable as audio: no whole frame is there");
}

TEST(SndfileMpegLength, IsNotLookedForInFilesOfOtherFormats) {
    CScratchDirectory scratch;
    const std::string samples = SamplesLikeAFrame();
    for (const int container : {SF_FORMAT_IRCAM, SF_FORMAT_HTK, SF_FORMAT_MAT4, SF_FORMAT_MPC2K}) {
        WriteMono16(scratch / "x.bin", container, samples);
        EXPECT_TRUE(Decoded(scratch / "x.bin") == samples) << std::hex << container;
    }
}

TEST(SndfileMpegLength, IsNotLookedForInOtherFormatsBehindATag) {
    CScratchDirectory scratch;
    const std::string samples = SamplesLikeAFrame();
    const std::string tag("ID3\3\0\0\0\0\0\20ABCDEFGHIJKLMNOP", 26);
    const std::string wav = WavFile({44100, 16, 1}, samples);
    EXPECT_TRUE(Decoded(scratch.Write("x.wav", tag + wav)) == samples);
    RunTool("flac -s -f -o " + scratch / "x.flac" + " " + scratch.Write("x.wav", wav));
    EXPECT_TRUE(Decoded(scratch.Write("tagged.flac", tag + Content(scratch / "x.flac"))) == samples);
}

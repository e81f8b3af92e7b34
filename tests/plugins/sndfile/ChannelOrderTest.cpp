// Channels of files whose format has an order of its own.
#include <cmath>

#include "tests/plugins/sndfile/AudioFiles.h"
#include "tests/plugins/sndfile/OtherDecoder.h"
#include "tests/plugins/sndfile/SinkUnderTest.h"
#include "tests/support/ExpectedLeaks.h"
#include "tests/support/ScratchDirectory.h"

namespace {

// Hz. The fourth channel is often the one of low frequencies, which keeps no others.
int Tone(int channel) { return channel == 3 ? 60 : 300 + 150 * channel; }

// A sound of 16 bits with a tone of its own in each channel.
std::string Chord(const CScratchDirectory& scratch, int channels) {
    std::string tones;
    for (int channel = 0; channel < channels; ++channel) tones += " sine " + std::to_string(Tone(channel));
    RunTool("sox -R -n -r 48000 -c " + std::to_string(channels) + " -b 16 " + scratch / "chord.wav" + " synth 1" +
            tones + " gain -6");
    return Decoded(scratch / "chord.wav");
}

// Which of the chord's tones is the loudest in a channel (Goertzel's algorithm).
int ToneIn(const std::string& samples, int channels, int channel) {
    int loudest = -1;
    double most = 0;
    for (int tone = 0; tone < channels; ++tone) {
        const double step = 2 * std::cos(2 * std::acos(-1.0) * Tone(tone) / 48000);
        double before = 0;
        double last = 0;
        for (std::size_t frame = 4800; frame < 24000; ++frame) {
            const std::size_t at = frame * static_cast<std::size_t>(channels) + static_cast<std::size_t>(channel);
            const double next = Sample16(samples, at) + step * last - before;
            before = last;
            last = next;
        }
        const double power = before * before + last * last - step * before * last;
        if (power > most) loudest = tone;
        most = std::max(most, power);
    }
    return loudest;
}

void ExpectTonesInOrder(const std::string& samples, int channels, const std::string& name) {
    ASSERT_GT(samples.size(), 48000u) << name;
    for (int channel = 0; channel < channels; ++channel) {
        EXPECT_EQ(ToneIn(samples, channels, channel), channel) << name << ' ' << channels;
    }
}

}  // namespace

TEST(SndfileChannelOrder, IsThatOfWavInWhatIsWritten) {
    const CExpectedLeaks leaks;  // libvorbisenc keeps a little of each stream of six channels
    const CScratchDirectory scratch;
    std::vector<std::string> paths;
    const std::vector<int> counts = {3, 4, 5, 6, 7, 8};
    for (const char* const extension : {"ogg", "opus", "flac", "caf"}) {
        paths.clear();
        for (const int channels : counts) {
            paths.push_back(scratch / (std::to_string(channels) + "." + extension));
            WriteSound(paths.back(), extension, {48000, 16, channels}, Chord(scratch, channels));
            ExpectTonesInOrder(Decoded(paths.back()), channels, extension);
        }
        const std::vector<std::string> decoded = DecodedByFfmpeg(scratch, paths, 16);
        for (std::size_t i = 0; i < counts.size(); ++i) ExpectTonesInOrder(decoded[i], counts[i], extension);
    }
}

TEST(SndfileChannelOrder, IsThatOfWavInWhatOthersHaveWritten) {
    const CScratchDirectory scratch;
    for (const int channels : {3, 5, 6, 7, 8}) {
        Chord(scratch, channels);
        const std::string wav = scratch / "chord.wav";
        RunTool("oggenc -Q -o " + scratch / "x.ogg" + " " + wav);
        RunTool("opusenc --quiet " + wav + " " + scratch / "x.opus");
        for (const char* const name : {"x.ogg", "x.opus"}) {
            ExpectTonesInOrder(Decoded(scratch / name), channels, name);
        }
    }
}

// RFC 7845, 5.1.1.3: channels of no meaning.
TEST(SndfileChannelOrder, OfOpusWithoutSpeakersIsKept) {
    const CScratchDirectory scratch;
    Chord(scratch, 6);
    RunTool("ffmpeg -y -v error -i " + scratch / "chord.wav" + " -c:a libopus -mapping_family 255 -b:a 512k " +
            scratch / "x.opus");
    ExpectTonesInOrder(Decoded(scratch / "x.opus"), 6, "x.opus");
}

// A layout of centre, left, right, left and right surround, low frequencies: kAudioChannelLayoutTag_MPEG_5_1_D.
TEST(SndfileChannelOrder, FollowsTheLayoutThatACafFileTells) {
    const CScratchDirectory scratch;
    const SWavFormat format{48000, 24, 6};
    std::string asStored;
    std::string expected;
    for (int frame = 0; frame < 1000; ++frame) {
        const auto sample = [frame](int speaker) {
            return LittleEndian(static_cast<unsigned>(frame * 8 + speaker), 3);
        };
        for (const int speaker : {2, 0, 1, 4, 5, 3}) asStored += sample(speaker);
        for (const int speaker : {0, 1, 2, 3, 4, 5}) expected += sample(speaker);
    }
    WriteSound(scratch / "x.caf", "caf", format, asStored);
    const std::string file = Content(scratch / "x.caf");
    const std::string layout = std::string("chan\0\0\0\0\0\0\0\x0C\0\x7C\0\x06", 16) + std::string(8, '\0');
    // Behind the file's header and the description.
    const std::string path = scratch.Write("y.caf", file.substr(0, 52) + layout + file.substr(52));
    EXPECT_TRUE(Decoded(path) == expected);
    EXPECT_TRUE(Decoded(scratch / "x.caf") == asStored);
}

TEST(SndfileChannelOrder, HoldsAfterASeekToo) {
    const CExpectedLeaks leaks;  // libvorbisenc keeps a little of each stream of six channels
    const CScratchDirectory scratch;
    WriteSound(scratch / "x.ogg", "ogg", {48000, 16, 6}, Chord(scratch, 6));
    SSource source(scratch / "x.ogg");
    ASSERT_TRUE(source.m_process->Start(nullptr) && source.m_seekable->Seek(10000, nullptr));
    EXPECT_TRUE(ReadOn(source) == Decoded(scratch / "x.ogg").substr(10000 * 12));
}

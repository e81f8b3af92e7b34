// Decoded samples against hand-made files and against the codecs' own tools.
#include <sndfile.h>

#include <cmath>

#include "tests/plugins/sndfile/AudioFiles.h"
#include "tests/plugins/sndfile/PluginUnderTest.h"
#include "tests/support/ScratchDirectory.h"

namespace {

// Two channels of real sound at 44100 Hz: the voice beside noise, with a melody.
void MakeMusic(const std::string& path, const std::string& options = "-b 16") {
    RunTool("sox -R -M " + kVoice + " " + kNoise + " " + options + " " + path + " rate 44100");
}

void ExpectFormat(const std::string& path, const SWavFormat& expected) {
    const SSource source(path);
    const SWavFormat format = source.m_reader->GetRawFormat();
    EXPECT_EQ(format.nSampleRate, expected.nSampleRate) << path;
    EXPECT_EQ(format.nBitsPerSample, expected.nBitsPerSample) << path;
    EXPECT_EQ(format.nChannels, expected.nChannels) << path;
}

// A sample of packed PCM at the top of an integer.
int Widened(const std::string& sample) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < sample.size(); ++i) {
        value |= static_cast<std::uint32_t>(static_cast<unsigned char>(sample[i])) << (8 * (4 - sample.size() + i));
    }
    return static_cast<int>(sample.size() == 1 ? value ^ 0x80000000u : value);
}

class CWidth : public testing::TestWithParam<int> {};

}  // namespace

TEST_P(CWidth, OfAWavFileIsKeptAndTheBytesComeOutUnchanged) {
    CScratchDirectory scratch;
    for (const int channels : {1, 2, 6}) {
        const SWavFormat format{48000, GetParam(), channels};
        const std::string samples = RandomBytes(static_cast<std::size_t>(BlockSizeOf(format)) * 40000);
        const std::string path = scratch.Write("x.wav", WavFile(format, samples));
        ExpectFormat(path, format);
        EXPECT_TRUE(Decoded(path) == samples) << channels;
    }
}

INSTANTIATE_TEST_SUITE_P(SndfileDecoder, CWidth, testing::Values(8, 16, 24, 32), testing::PrintToStringParamName());

TEST(SndfileDecoder, DeliversSigned8BitSourcesUnsigned) {
    CScratchDirectory scratch;
    const SWavFormat format{8000, 8, 1};
    std::string samples;
    for (int i = 0; i < 256; ++i) samples += static_cast<char>(i);
    const std::string wav = scratch.Write("x.wav", WavFile(format, samples));
    for (const char* const name : {"x.aiff", "x.au", "x.flac", "x.caf"}) {
        RunTool("sox -D " + wav + " " + scratch / name);
        ExpectFormat(scratch / name, format);
        EXPECT_EQ(Decoded(scratch / name), samples) << name;
    }
}

TEST(SndfileDecoder, RoundsAndClipsFloatSourcesTo16Bits) {
    CScratchDirectory scratch;
    const float unit = 1.0f / 32768.0f;
    const std::vector<std::pair<float, int>> table = {{0.0f, 0},
                                                      {unit, 1},
                                                      {-unit, -1},
                                                      {0.4f * unit, 0},
                                                      {0.6f * unit, 1},
                                                      {1.5f * unit, 2},
                                                      {-1.6f * unit, -2},
                                                      {0.5f, 16384},
                                                      {1.0f, 32767},
                                                      {-1.0f, -32768},
                                                      {1.7f, 32767},
                                                      {-1.7f, -32768},
                                                      {32766.6f * unit, 32767},
                                                      {-32767.6f * unit, -32768},
                                                      {INFINITY, 32767},
                                                      {-INFINITY, -32768},
                                                      {NAN, 0}};
    std::string samples;
    for (const auto& row : table) samples.append(reinterpret_cast<const char*>(&row.first), 4);
    const std::string path = scratch.Write("x.wav", WavFile({44100, 32, 1}, samples, 3));
    ExpectFormat(path, {44100, 16, 1});
    const std::string decoded = Decoded(path);
    ASSERT_EQ(decoded.size(), 2 * table.size());
    for (std::size_t i = 0; i < table.size(); ++i) EXPECT_EQ(Sample16(decoded, i), table[i].second) << table[i].first;
}

TEST(SndfileDecoder, DeliversDoubleSourcesAt16Bits) {
    CScratchDirectory scratch;
    MakeMusic(scratch / "x.wav");
    RunTool("sox -D " + scratch / "x.wav" + " -e float -b 64 " + scratch / "d.wav");
    ExpectFormat(scratch / "d.wav", {44100, 16, 2});
    EXPECT_TRUE(Decoded(scratch / "d.wav") == Decoded(scratch / "x.wav"));
}

TEST(SndfileDecoder, DecodesTelephoneAndAdpcmCodingsTo16BitsAsSoxDoes) {
    CScratchDirectory scratch;
    MakeMusic(scratch / "x.wav");
    for (const std::string coding : {"u-law", "a-law", "ms-adpcm", "ima-adpcm"}) {
        const std::string path = scratch / (coding + ".wav");
        RunTool("sox -D " + scratch / "x.wav" + " -e " + coding + " " + path);
        RunTool("sox -D " + path + " -t raw -e signed -b 16 " + scratch / "sox.raw");
        ExpectFormat(path, {44100, 16, 2});
        const std::string expected = Content(scratch / "sox.raw");
        const std::string decoded = Decoded(path);
        // Sox cuts the padding of the last ADPCM block off.
        EXPECT_GE(decoded.size(), expected.size()) << coding;
        EXPECT_GT(expected.size(), 0u) << coding;
        EXPECT_EQ(GreatestDifference(decoded, expected), 0) << coding;
    }
}

TEST(SndfileDecoder, OpensAFileOfEveryExtension) {
    CScratchDirectory scratch;
    MakeMusic(scratch / "x.wav");
    const std::string wav = scratch / "x.wav";
    for (const char* const lossless : {"wave -t wav", "aif", "aiff", "aifc", "au", "snd", "caf", "w64", "flac"}) {
        const std::string name = "x." + std::string(lossless).substr(0, std::string(lossless).find(' '));
        const std::string type = std::string(lossless).find(' ') == std::string::npos ? "" : "-t wav ";
        RunTool("sox -D " + wav + " " + type + scratch / name);
        ExpectFormat(scratch / name, {44100, 16, 2});
        EXPECT_TRUE(Decoded(scratch / name) == Decoded(wav)) << name;
    }
    RunTool("oggenc -Q -o " + scratch / "x.ogg" + " " + wav + " && cp " + scratch / "x.ogg" + " " + scratch / "x.oga");
    RunTool("opusenc --quiet " + wav + " " + scratch / "x.opus");
    RunTool("lame --quiet " + wav + " " + scratch / "x.mp3");
    ExpectFormat(scratch / "x.ogg", {44100, 16, 2});
    ExpectFormat(scratch / "x.oga", {44100, 16, 2});
    ExpectFormat(scratch / "x.opus", {48000, 16, 2});
    ExpectFormat(scratch / "x.mp3", {44100, 16, 2});
}

// Formats that few programs write, by sox's name for them.
TEST(SndfileDecoder, OpensFilesOfSeldomExtensions) {
    struct SRow {
        const char* m_strName;
        const char* m_strOptions;
        int m_nBits;
    };
    CScratchDirectory scratch;
    RunTool("sox -D " + kVoice + " -r 8000 -b 8 " + scratch / "8.wav");
    RunTool("sox -D " + kVoice + " -r 8000 -b 16 " + scratch / "16.wav");
    for (const SRow& row : {SRow{"x.bwf", "-t wav", 16},  SRow{"x.amb", "", 16},        SRow{"x.avr", "", 16},
                            SRow{"x.fap", "", 16},        SRow{"x.paf", "-t paf", 16},  SRow{"x.htk", "", 16},
                            SRow{"x.mat", "-t mat4", 16}, SRow{"x.mat", "-t mat5", 16}, SRow{"x.pvf", "", 16},
                            SRow{"x.sds", "", 16},        SRow{"x.sf", "", 16},         SRow{"x.ircam", "", 16},
                            SRow{"x.sph", "", 16},        SRow{"x.nist", "", 16},       SRow{"x.voc", "", 16},
                            SRow{"x.w64", "", 16},        SRow{"x.8svx", "", 8},        SRow{"x.iff", "-t 8svx", 8},
                            SRow{"x.svx", "-t 8svx", 8},  SRow{"x.voc", "-b 8", 8}}) {
        const std::string source = scratch / (std::to_string(row.m_nBits) + ".wav");
        RunTool("sox -D " + source + " " + row.m_strOptions + " " + scratch / row.m_strName);
        ExpectFormat(scratch / row.m_strName, {8000, row.m_nBits, 1});
        const std::string decoded = Decoded(scratch / row.m_strName);
        EXPECT_EQ(decoded.size(), Decoded(source).size()) << row.m_strName << row.m_strOptions;
        // The codec's own writer stores -1 as 0 in this one.
        const int tolerance = std::string(row.m_strName) == "x.sds" ? 1 : 0;
        EXPECT_LE(GreatestDifference(decoded, Decoded(source)), tolerance) << row.m_strName << row.m_strOptions;
    }
    // Differences of samples, at a rate of its own.
    RunTool("sox -D " + scratch / "16.wav" + " " + scratch / "x.xi");
    ExpectFormat(scratch / "x.xi", {44100, 16, 1});
    EXPECT_TRUE(Decoded(scratch / "x.xi") == Decoded(scratch / "16.wav"));
    // A-law.
    RunTool("sox -D " + scratch / "16.wav" + " " + scratch / "x.wve");
    RunTool("sox -D " + scratch / "16.wav" + " -e a-law " + scratch / "law.wav");
    EXPECT_TRUE(Decoded(scratch / "x.wve") == Decoded(scratch / "law.wav"));
}

TEST(SndfileDecoder, DecodesLayerIIAsMpg123Does) {
    CScratchDirectory scratch;
    MakeMusic(scratch / "x.wav");
    RunTool("ffmpeg -y -v error -i " + scratch / "x.wav" + " -c:a mp2 -b:a 192k " + scratch / "x.mp2");
    RunTool("mpg123 -q -e s16 -O " + scratch / "x.raw" + " " + scratch / "x.mp2");
    ExpectFormat(scratch / "x.mp2", {44100, 16, 2});
    const std::string expected = Content(scratch / "x.raw");
    const std::string decoded = Decoded(scratch / "x.mp2");
    EXPECT_GT(expected.size(), 0u);
    EXPECT_EQ(decoded.size(), expected.size());
    EXPECT_LE(GreatestDifference(decoded, expected), 1);
}

// Codings that no other tool at hand writes.
TEST(SndfileDecoder, KeepsTheWidthOfAlacAndOfDifferences) {
    CScratchDirectory scratch;
    struct SRow {
        int m_nFormat;
        int m_nBits;
    };
    for (const SRow& row : {SRow{SF_FORMAT_CAF | SF_FORMAT_ALAC_16, 16}, SRow{SF_FORMAT_CAF | SF_FORMAT_ALAC_24, 24},
                            SRow{SF_FORMAT_XI | SF_FORMAT_DPCM_8, 8}, SRow{SF_FORMAT_XI | SF_FORMAT_DPCM_16, 16},
                            SRow{SF_FORMAT_SVX | SF_FORMAT_PCM_16, 16}, SRow{SF_FORMAT_MPC2K | SF_FORMAT_PCM_16, 16}}) {
        const SWavFormat format{44100, row.m_nBits, 1};
        const std::string samples = RandomBytes(static_cast<std::size_t>(BlockSizeOf(format)) * 5000);
        SF_INFO info = {};
        info.samplerate = 44100;
        info.channels = 1;
        info.format = row.m_nFormat;
        SNDFILE* const file = sf_open((scratch / "x").c_str(), SFM_WRITE, &info);
        for (std::size_t at = 0; at < samples.size(); at += static_cast<std::size_t>(row.m_nBits) / 8) {
            const int sample = Widened(samples.substr(at, static_cast<std::size_t>(row.m_nBits) / 8));
            ASSERT_EQ(sf_write_int(file, &sample, 1), 1);
        }
        ASSERT_EQ(sf_close(file), 0);
        ExpectFormat(scratch / "x", format);
        EXPECT_TRUE(Decoded(scratch / "x") == samples) << std::hex << row.m_nFormat;
    }
}

TEST(SndfileDecoder, DecodesFlacToTheBitAsFlacDoes) {
    CScratchDirectory scratch;
    for (const std::string bits : {"16", "24"}) {
        MakeMusic(scratch / "x.wav", "-b " + bits);
        RunTool("flac -s -f -o " + scratch / "x.flac" + " " + scratch / "x.wav");
        RunTool("flac -s -f -d --force-raw-format --endian=little --sign=signed -o " + scratch / "x.raw" + " " +
                scratch / "x.flac");
        ExpectFormat(scratch / "x.flac", {44100, std::stoi(bits), 2});
        const std::string expected = Content(scratch / "x.raw");
        EXPECT_GT(expected.size(), 0u);
        EXPECT_TRUE(Decoded(scratch / "x.flac") == expected) << bits;
    }
}

// Vorbis tells its length to the frame: no padding on either side.
TEST(SndfileDecoder, DecodesVorbisAsOggdecDoes) {
    CScratchDirectory scratch;
    for (const std::string& path : {kBell, kAlarm}) {
        RunTool("oggdec -Q -R -b 16 -e 0 -s 1 -o " + scratch / "x.raw" + " " + path);
        const std::string expected = Content(scratch / "x.raw");
        const std::string decoded = Decoded(path);
        EXPECT_EQ(decoded.size(), expected.size());
        EXPECT_LE(GreatestDifference(decoded, expected), 1);
    }
}

// Both decoders drop the pre-skip and the padding of the last packet, so that the length is the source's.
TEST(SndfileDecoder, DecodesOpusAsOpusdecDoes) {
    CScratchDirectory scratch;
    RunTool("opusenc --quiet " + kVoice + " " + scratch / "x.opus");
    RunTool("opusdec --quiet --no-dither --rate 48000 " + scratch / "x.opus" + " " + scratch / "x.raw");
    const std::string expected = Content(scratch / "x.raw");
    const std::string decoded = Decoded(scratch / "x.opus");
    EXPECT_EQ(decoded.size(), Decoded(kVoice).size());
    EXPECT_EQ(decoded.size(), expected.size());
    EXPECT_LE(GreatestDifference(decoded, expected), 2);
}

// With the LAME header, encoder delay and padding are dropped; without it both decoders keep the 529 + 576 frames of
// delay and fill whole MPEG frames of 1152.
TEST(SndfileDecoder, DecodesMp3AsMpg123Does) {
    CScratchDirectory scratch;
    MakeMusic(scratch / "x.wav");
    for (const std::string options : {"", "-t", "-V2", "-m m"}) {
        RunTool("lame --quiet " + options + " " + scratch / "x.wav" + " " + scratch / "x.mp3");
        RunTool("mpg123 -q -e s16 -O " + scratch / "x.raw" + " " + scratch / "x.mp3");
        const std::string expected = Content(scratch / "x.raw");
        const std::string decoded = Decoded(scratch / "x.mp3");
        EXPECT_GT(expected.size(), 0u);
        EXPECT_EQ(decoded.size(), expected.size()) << options;
        EXPECT_LE(GreatestDifference(decoded, expected), 1) << options;
    }
}

TEST(SndfileDecoder, DecodesALacedMp3ToTheLengthOfItsSource) {
    CScratchDirectory scratch;
    MakeMusic(scratch / "x.wav");
    RunTool("lame --quiet " + scratch / "x.wav" + " " + scratch / "x.mp3");
    EXPECT_EQ(Decoded(scratch / "x.mp3").size(), Decoded(scratch / "x.wav").size());
}

TEST(SndfileDecoder, DecodesEveryRecordingOfTheSystem) {
    for (const std::string& path : {kVoice, kNoise, kBell, kAlarm}) {
        SSource source(path);
        ASSERT_TRUE(source.m_process->Start(nullptr));
        const std::string samples = ReadOn(source);
        EXPECT_GT(samples.size(), 4096u);
        EXPECT_EQ(samples.size(), source.m_reader->GetRawLen());
    }
}

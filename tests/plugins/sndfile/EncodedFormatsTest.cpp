// Files of every format that is written, decoded by other tools.
#include <cmath>

#include "tests/plugins/sndfile/AudioFiles.h"
#include "tests/plugins/sndfile/OtherDecoder.h"
#include "tests/plugins/sndfile/SinkUnderTest.h"
#include "tests/support/ScratchDirectory.h"

namespace {

struct SCase {
    const char* m_strExtension;
    int m_nBits;
};

std::ostream& operator<<(std::ostream& out, const SCase& entry) { return out << entry.m_strExtension << entry.m_nBits; }

class CLosslessFile : public testing::TestWithParam<SCase> {};

class CLossyFile : public testing::TestWithParam<const char*> {};

// Real sound of 16 bits in stereo: the voice beside noise.
std::string Music(const CScratchDirectory& scratch, int sampleRate) {
    RunTool("sox -R -M " + kVoice + " " + kNoise + " -b 16 " + scratch / "music.wav" + " rate " +
            std::to_string(sampleRate) + " gain -3");
    return Decoded(scratch / "music.wav");
}

// Ratio of the sound to its difference from the decoded one, in decibels.
double SignalToNoise(const std::string& sound, const std::string& decoded) {
    double signal = 0;
    double noise = 0;
    for (std::size_t i = 0; i < std::min(sound.size(), decoded.size()) / 2; ++i) {
        const double sample = Sample16(sound, i);
        const double error = sample - Sample16(decoded, i);
        signal += sample * sample;
        noise += error * error;
    }
    return 10 * std::log10(signal / noise);
}

}  // namespace

TEST_P(CLosslessFile, IsExactToTheBitForThisPluginAndForOthers) {
    const CScratchDirectory scratch;
    std::vector<std::string> paths;
    std::vector<std::string> sounds;
    for (const int channels : {1, 2, 6}) {
        const SWavFormat format{48000, GetParam().m_nBits, channels};
        // An odd number of bytes with 8 and 24 bits in mono: chunks are padded.
        sounds.push_back(RandomBytes(static_cast<std::size_t>(BlockSizeOf(format)) * 20001));
        paths.push_back(scratch / (std::to_string(channels) + "." + GetParam().m_strExtension));
        WriteSound(paths.back(), GetParam().m_strExtension, format, sounds.back());
        const SWavFormat written = SSource(paths.back()).m_reader->GetRawFormat();
        EXPECT_EQ(written.nBitsPerSample, format.nBitsPerSample);
        EXPECT_EQ(written.nSampleRate, format.nSampleRate);
        EXPECT_EQ(written.nChannels, format.nChannels);
        EXPECT_TRUE(Decoded(paths.back()) == sounds.back()) << channels;
    }
    EXPECT_TRUE(DecodedByFfmpeg(scratch, paths, GetParam().m_nBits) == sounds);
}

INSTANTIATE_TEST_SUITE_P(SndfileEncoder, CLosslessFile,
                         testing::Values(SCase{"wav", 8}, SCase{"wav", 16}, SCase{"wav", 24}, SCase{"wav", 32},
                                         SCase{"rf64", 8}, SCase{"rf64", 16}, SCase{"rf64", 24}, SCase{"rf64", 32},
                                         SCase{"w64", 8}, SCase{"w64", 16}, SCase{"w64", 24}, SCase{"w64", 32},
                                         SCase{"aiff", 8}, SCase{"aif", 16}, SCase{"aiff", 24}, SCase{"aiff", 32},
                                         SCase{"caf", 8}, SCase{"caf", 16}, SCase{"caf", 24}, SCase{"caf", 32},
                                         SCase{"au", 8}, SCase{"au", 16}, SCase{"au", 24}, SCase{"au", 32},
                                         SCase{"flac", 16}, SCase{"flac", 24}),
                         testing::PrintToStringParamName());

TEST_P(CLossyFile, HasTheLengthOfTheSoundAndSoundsLikeIt) {
    const CScratchDirectory scratch;
    const std::string extension = GetParam();
    const std::string samples = Music(scratch, 48000);
    const std::string path = scratch / ("x." + extension);
    WriteSound(path, extension, {48000, 16, 2}, samples, {{"quality", "9"}});
    const std::string decoded = Decoded(path);
    const std::string byOthers = DecodedByFfmpeg(scratch, {path}, 16)[0];
    EXPECT_EQ(decoded.size(), samples.size());
    EXPECT_EQ(byOthers.size(), samples.size());
    EXPECT_LE(GreatestDifference(decoded, byOthers), 2);
    EXPECT_GT(SignalToNoise(samples, decoded), 15);
    EXPECT_LT(Content(path).size(), samples.size() / 2);
}

INSTANTIATE_TEST_SUITE_P(SndfileEncoder, CLossyFile, testing::Values("ogg", "oga", "opus", "mp3"),
                         [](const auto& parameter) { return std::string(parameter.param); });

TEST(SndfileEncoder, WritesASoundWithoutAnyFrame) {
    const CScratchDirectory scratch;
    for (const char* const extension : {"wav", "rf64", "w64", "aiff", "caf", "au", "flac", "ogg", "mp3"}) {
        const std::string path = scratch / (std::string("x.") + extension);
        WriteSound(path, extension, {48000, 16, 2}, "");
        EXPECT_EQ(Decoded(path), "") << extension;
    }
    SSink opus(scratch / "x.opus", "opus", {48000, 16, 2});
    ASSERT_TRUE(opus.m_process->Start(nullptr));
    EXPECT_EQ(ReasonOf([&](IStatus** status) { return opus.m_process->End(status); }),
              "x.opus: not written completely: Opus has no sounds without a frame");
}

TEST(SndfileEncoder, WritesOneFrame) {
    const CScratchDirectory scratch;
    for (const char* const extension : {"wav", "rf64", "w64", "aiff", "caf", "au", "flac", "ogg", "opus", "mp3"}) {
        const std::string path = scratch / (std::string("x.") + extension);
        WriteSound(path, extension, {48000, 16, 2}, std::string(4, '\0'));
        EXPECT_EQ(Decoded(path), std::string(4, '\0')) << extension;
    }
}

TEST(SndfileEncoder, KeepsTheLengthOfEverySoundAtEveryRate) {
    const CScratchDirectory scratch;
    const std::vector<std::pair<std::string, std::vector<int>>> table = {
        {"ogg", {8000, 11025, 44100, 96000, 192000}},
        {"opus", {8000, 12000, 16000, 24000, 48000}},
        {"mp3", {8000, 11025, 12000, 16000, 22050, 24000, 32000, 44100, 48000}},
        {"flac", {8000, 44100, 96000, 192000}}};
    for (const auto& row : table) {
        for (const int rate : row.second) {
            for (const std::size_t frames : {1u, 2u, 575u, 576u, 1105u, 1152u, 4097u, 30011u}) {
                const SWavFormat format{rate, 16, 1};
                WriteSound(scratch / "x", row.first, format, std::string(2 * frames, '\0'));
                const SSource source(scratch / "x");
                EXPECT_EQ(source.m_reader->GetRawFormat().nSampleRate, rate) << row.first;
                EXPECT_EQ(source.m_blocks->GetDataLength(), frames) << row.first << ' ' << rate;
                EXPECT_EQ(Decoded(scratch / "x").size(), 2 * frames) << row.first << ' ' << rate;
            }
        }
    }
}

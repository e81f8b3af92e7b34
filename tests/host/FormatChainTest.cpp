// Every input format through the whole chain, compared with the decoders of the programs that made the files.
#include <algorithm>

#include "tests/host/KeloAudio.h"
#include "tests/host/SoundTools.h"

namespace {

class FormatChain : public CKeloAudio {
protected:
    // A mono sound of 48 kHz and a stereo one of 44.1 kHz, as WAV.
    std::vector<std::string> Sounds() const {
        const std::string stereo = m_scratch / "stereo.wav";
        RunTool({"oggdec", "-Q", "-o", stereo, kComplete});
        return {kFrontCenter, stereo};
    }

    std::string ConvertedSamples(const std::string& input, int bits) const {
        ExpectConverted(Run({"convert", input, "out.wav"}), "out.wav: ");
        return SoxSamples(InWork("out.wav"), bits);
    }

    void ExpectSameLengthAndRate(const std::string& reference) const {
        for (const std::string question : {"-s", "-r", "-c"}) {
            EXPECT_EQ(AskSoxi(question, InWork("out.wav")), AskSoxi(question, reference)) << question;
        }
    }

    void ExpectLossless(const std::string& extension, int bits) const {
        for (const std::string& sound : Sounds()) {
            SCOPED_TRACE(sound + " as " + extension + " of " + std::to_string(bits) + " bits");
            const std::string input = m_scratch / ("in." + extension);
            RunTool({"sox", "-D", sound, "-b", std::to_string(bits), input, "vol", "0.7"});
            const std::string expected = SoxSamples(input, bits);
            ASSERT_FALSE(IsSilent(expected));
            EXPECT_TRUE(ConvertedSamples(input, bits) == expected);
            ExpectSameLengthAndRate(input);
            EXPECT_EQ(AskSoxi("-b", InWork("out.wav")), std::to_string(bits));
        }
    }

    // `reference` is the WAV file that the format's own decoder made.
    void ExpectNearly(const std::string& input, const std::string& reference) const {
        const std::string expected = SoxSamples(reference, 16);
        ASSERT_FALSE(IsSilent(expected));
        const std::string samples = ConvertedSamples(input, 16);
        EXPECT_EQ(samples.size(), expected.size());
        EXPECT_LE(LargestDifference(samples, expected), 2);
        ExpectSameLengthAndRate(reference);
    }

private:
    static bool IsSilent(const std::string& samples) {
        return std::all_of(samples.begin(), samples.end(), [](char byte) { return byte == 0; });
    }
};

}  // namespace

TEST_F(FormatChain, Aiff) {
    ExpectLossless("aiff", 16);
    ExpectLossless("aiff", 24);
}

TEST_F(FormatChain, Au) {
    ExpectLossless("au", 16);
    ExpectLossless("au", 24);
}

TEST_F(FormatChain, Caf) {
    ExpectLossless("caf", 16);
    ExpectLossless("caf", 24);
}

TEST_F(FormatChain, W64) {
    ExpectLossless("w64", 16);
    ExpectLossless("w64", 24);
}

TEST_F(FormatChain, Wav) {
    for (const int bits : {16, 24, 32}) ExpectLossless("wav", bits);
}

TEST_F(FormatChain, Flac) {
    ExpectLossless("flac", 16);
    ExpectLossless("flac", 24);
}

TEST_F(FormatChain, FlacAgreesWithItsOwnDecoder) {
    for (const std::string& sound : Sounds()) {
        SCOPED_TRACE(sound);
        const std::string input = m_scratch / "in.flac";
        RunTool({"flac", "-s", "-f", "-o", input, sound});
        const std::string expected = FlacSamples(input);
        ASSERT_FALSE(expected.empty());
        EXPECT_TRUE(ConvertedSamples(input, 16) == expected);
    }
}

TEST_F(FormatChain, Mp3AgreesWithLame) {
    for (const std::string& sound : Sounds()) {
        SCOPED_TRACE(sound);
        const std::string input = m_scratch / "in.mp3";
        RunTool({"lame", "--quiet", "-b", "192", sound, input});
        RunTool({"lame", "--quiet", "--decode", input, m_scratch / "reference.wav"});
        ExpectNearly(input, m_scratch / "reference.wav");
    }
}

TEST_F(FormatChain, OpusAgreesWithOpusdec) {
    for (const std::string& sound : Sounds()) {
        SCOPED_TRACE(sound);
        const std::string input = m_scratch / "in.opus";
        RunTool({"opusenc", "--quiet", sound, input});
        RunTool({"opusdec", "--quiet", "--no-dither", "--rate", "48000", input, m_scratch / "reference.wav"});
        ExpectNearly(input, m_scratch / "reference.wav");
    }
}

TEST_F(FormatChain, OggVorbisAgreesWithOggdec) { ExpectNearly(kComplete, Sounds().back()); }

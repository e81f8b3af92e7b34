// keloaudio info.
#include <nlohmann/json.hpp>

#include "tests/host/KeloAudio.h"
#include "tests/host/SoundTools.h"

namespace {

class Info : public CKeloAudio {
protected:
    nlohmann::json Describe(const std::string& input) const {
        const SRunResult result = Run({"info", input, "--json"});
        EXPECT_EQ(result.m_nExit, 0) << result.m_strErr;
        return nlohmann::json::parse(result.m_strOut).at("sources").at(0);
    }

    static void ExpectFormat(const nlohmann::json& format, int rate, int bits, int channels, bool isFloat) {
        EXPECT_EQ(format.at("sampleRate"), rate);
        EXPECT_EQ(format.at("bits"), bits);
        EXPECT_EQ(format.at("channels"), channels);
        EXPECT_EQ(format.at("float"), isFloat);
    }
};

}  // namespace

TEST_F(Info, TellsFormatLengthAndDecoder) {
    EXPECT_EQ(Run({"info", kFrontCenter}).m_strOut, std::string(kFrontCenter) +
                                                        "\n"
                                                        "    format    48000 Hz, 16 bits, 1 channel\n"
                                                        "    length    68545 frames, 1.428 s\n"
                                                        "    decoder   libsndfile Decoder (sndfile.so)\n");
}

TEST_F(Info, JsonTellsTheSame) {
    const nlohmann::json source = Describe(kFrontCenter);
    EXPECT_EQ(source.at("input"), kFrontCenter);
    ExpectFormat(source.at("format"), 48000, 16, 1, false);
    ExpectFormat(source.at("realFormat"), 48000, 16, 1, false);
    EXPECT_EQ(source.at("frames"), 68545);
    EXPECT_NEAR(source.at("seconds").get<double>(), 68545.0 / 48000, 1e-9);
    EXPECT_EQ(source.at("decoder"), "libsndfile Decoder");
    EXPECT_EQ(source.at("plugin"), "sndfile.so");
    EXPECT_TRUE(source.at("tags").empty());
}

TEST_F(Info, LossySourcesAreFloat) {
    ExpectFormat(Describe(kComplete).at("realFormat"), 44100, 32, 2, true);
    EXPECT_NE(Run({"info", kComplete}).m_strOut.find("44100 Hz, 32-bit float, 2 channels"), std::string::npos);
}

TEST_F(Info, ControlCharactersOfTagsDoNotReachTheTerminal) {
    RunTool(
        {"flac", "-s", "--no-utf8-convert", "-T", "TITLE=a\033[2Jb\u009bc\nd", "-o", InWork("in.flac"), kFrontCenter});
    EXPECT_NE(Run({"info", "in.flac"}).m_strOut.find("\n    title     a?[2Jb?c?d\n"), std::string::npos);
    EXPECT_EQ(Describe("in.flac").at("tags").at("title"), "a\033[2Jb\u009bc\nd");
}

TEST_F(Info, TagsAreToldAndNoneAreMadeUp) {
    RunTool({"flac", "-s", "-T", "TITLE=Mitte", "-T", "ARTIST=Vorn", "-T", "DATE=1999", "-o", InWork("a - b.flac"),
             kFrontCenter});
    const nlohmann::json expected = {{"title", "Mitte"}, {"artist", "Vorn"}, {"year", "1999"}};
    EXPECT_EQ(Describe("a - b.flac").at("tags"), expected);
    const std::string text = Run({"info", "a - b.flac"}).m_strOut;
    EXPECT_NE(text.find("\n    title     Mitte\n    artist    Vorn\n    year      1999\n"), std::string::npos) << text;
    RunTool({"flac", "-s", "-o", InWork("c - d.flac"), kFrontCenter});
    EXPECT_TRUE(Describe("c - d.flac").at("tags").empty());
}

TEST_F(Info, IndexPointsAreTold) {
    // A canonical WAV file with a cue chunk of two points (RIFF MCI, "cue-ck").
    std::string wav = ReadWholeFile(kFrontCenter);
    const auto word = [](unsigned value) {
        return std::string{static_cast<char>(value), static_cast<char>(value >> 8), static_cast<char>(value >> 16),
                           static_cast<char>(value >> 24)};
    };
    std::string cue = "cue " + word(4 + 2 * 24) + word(2);
    for (const unsigned position : {4800u, 24000u}) {
        cue += word(position) + word(position) + "data" + word(0) + word(0) + word(position);
    }
    wav += cue;
    wav.replace(4, 4, word(static_cast<unsigned>(wav.size() - 8)));
    m_scratch.Write("work/cue.wav", wav);
    EXPECT_EQ(Describe("cue.wav").at("indexPoints"), nlohmann::json::array({4800, 24000}));
    EXPECT_NE(Run({"info", "cue.wav"}).m_strOut.find("\n    index     0.100 s, 0.500 s\n"), std::string::npos);
}

TEST_F(Info, FailedSourceDoesNotStopTheOthers) {
    const SRunResult result = Run({"info", "missing.wav", kFrontCenter});
    EXPECT_EQ(result.m_nExit, 1);
    EXPECT_EQ(result.m_strErr, "keloaudio: missing.wav: No such file or directory\n");
    EXPECT_NE(result.m_strOut.find("68545 frames"), std::string::npos);
    const SRunResult json = Run({"info", "missing.wav", kFrontCenter, "--json"});
    EXPECT_EQ(json.m_nExit, 1);
    const nlohmann::json sources = nlohmann::json::parse(json.m_strOut).at("sources");
    EXPECT_EQ(sources.at(0).at("failure"), "missing.wav: No such file or directory");
    EXPECT_EQ(sources.at(1).at("frames"), 68545);
}

TEST_F(Info, NamesThatAreNoTextStayJson) {
    std::filesystem::copy_file(kFrontCenter, InWork("\xff.wav"));
    EXPECT_EQ(Describe("\xff.wav").at("input"), "\xef\xbf\xbd.wav");
}

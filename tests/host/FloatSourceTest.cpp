// Float samples, which lossy and float sources have, on their way to integers.
#include <cmath>
#include <cstdint>
#include <cstring>
#include <map>
#include <nlohmann/json.hpp>

#include "tests/host/KeloAudio.h"
#include "tests/host/SoundTools.h"

namespace {

class FloatSource : public CKeloAudio {
protected:
    static std::string Word(std::uint32_t value) {
        std::string bytes(sizeof(value), '\0');
        std::memcpy(bytes.data(), &value, sizeof(value));
        return bytes;
    }

    // A mono WAV file of 48 kHz with WAVE_FORMAT_IEEE_FLOAT samples.
    void WriteFloatWav(const std::string& name, const std::vector<float>& samples) const {
        const auto bytes = static_cast<std::uint32_t>(samples.size() * sizeof(float));
        std::string file = "RIFF" + Word(36 + bytes) + "WAVEfmt " + Word(16) + Word(3 | 1 << 16) + Word(48000) +
                           Word(192000) + Word(4 | 32 << 16) + "data" + Word(bytes);
        file.append(reinterpret_cast<const char*>(samples.data()), bytes);
        m_scratch.Write("work/" + name, file);
    }

    // Steps that 24 bits tell apart and 16 bits do not.
    static std::vector<float> FineSteps() {
        std::vector<float> samples;
        for (int i = 0; i < 1000; ++i) samples.push_back(static_cast<float>(i - 500) / 8388608.0F);
        return samples;
    }
};

}  // namespace

TEST_F(FloatSource, FloatPcmFillsTheTwentyFourBitsOfFlac) {
    WriteFloatWav("in.wav", FineSteps());
    ExpectConverted(Run({"convert", "in.wav", "out.flac"}), "out.flac: 48000 Hz, 24 bits, 1 channel, 1000 frames");
    const std::string samples = FlacSamples(InWork("out.flac"));
    ASSERT_EQ(samples.size(), 3000u);
    for (int i = 0; i < 1000; ++i) {
        const std::string expected = Word(static_cast<std::uint32_t>(i - 500)).substr(0, 3);
        ASSERT_EQ(samples.substr(static_cast<std::size_t>(i) * 3, 3), expected) << i;
    }
}

TEST_F(FloatSource, FloatPcmBecomesThirtyTwoBitsInWav) {
    WriteFloatWav("in.wav", FineSteps());
    ExpectConverted(Run({"convert", "in.wav", "out.wav"}), "in.wav: 48000 Hz, 32-bit float, 1 channel, 1000 frames");
    EXPECT_EQ(AskSoxi("-b", InWork("out.wav")), "32");
}

TEST_F(FloatSource, LossySourcesBecomeSixteenBits) {
    RunTool({"lame", "--quiet", kFrontCenter, InWork("in.mp3")});
    RunTool({"opusenc", "--quiet", kFrontCenter, InWork("in.opus")});
    for (const std::string input : {"in.mp3", "in.opus", kComplete}) {
        SCOPED_TRACE(input);
        ExpectConverted(Run({"convert", input, "out.flac"}), "32-bit float");
        EXPECT_EQ(AskSoxi("-b", InWork("out.flac")), "16");
    }
}

TEST_F(FloatSource, ExtensionTellsWhetherASourceIsLossy) {
    // The decoder goes by the content, which is Vorbis in all of them.
    const std::map<std::string, int> bits = {{"a.oga", 16}, {"b.OGA", 16}, {"c.m4a", 16}, {"d.Aac", 16},
                                             {"e.mp3", 16}, {"f.caf", 24}, {"g.MOV", 24}, {"h.wav", 24}};
    std::vector<std::string> arguments = {"convert", "--to", "flac", "--out-dir", "out", "--json"};
    for (const auto& entry : bits) {
        std::filesystem::copy_file(kComplete, InWork(entry.first));
        arguments.push_back(entry.first);
    }
    const nlohmann::json report = nlohmann::json::parse(Run(arguments).m_strOut);
    ASSERT_EQ(report.at("converted"), bits.size()) << report;
    for (const nlohmann::json& file : report.at("files")) {
        EXPECT_EQ(file.at("target").at("bits"), bits.at(file.at("input"))) << file;
    }
}

TEST_F(FloatSource, LossySourcesStayFineInLossyOutputs) {
    for (const std::string output : {"out.ogg", "out.OPUS", "out.Mp3"}) {
        const nlohmann::json report = nlohmann::json::parse(Run({"convert", kComplete, output, "--json"}).m_strOut);
        EXPECT_EQ(report.at("target").at("bits"), 32) << report;
    }
}

TEST_F(FloatSource, LossySourcesKeepTheirFinenessForWhoAsks) {
    ExpectConverted(Run({"convert", kComplete, "out.flac", "--bits", "24"}), "out.flac: 44100 Hz, 24 bits");
    // Sixteen bits and nothing below would leave the lowest byte of every sample 0.
    const std::string samples = FlacSamples(InWork("out.flac"));
    std::size_t fine = 0;
    for (std::size_t i = 0; i < samples.size(); i += 3) fine += samples[i] != 0 ? 1 : 0;
    EXPECT_GT(fine, samples.size() / 3 / 2);
}

TEST_F(FloatSource, DitherIsAChoice) {
    const auto convert = [&](const std::string& dither, const std::string& output) {
        ExpectConverted(Run({"convert", kComplete, output, "--dither", dither}), output);
        return SoxSamples(InWork(output), 16);
    };
    const std::string plain = convert("none", "none.wav");
    const std::string dithered = convert("triangular", "triangular.wav");
    EXPECT_FALSE(plain == dithered);
    EXPECT_LE(LargestDifference(plain, dithered), 2);
    ExpectFailure(Run({"convert", kComplete, "out.wav", "--dither", "loud"}), {"--dither loud: ", "triangular"});
}

TEST_F(FloatSource, QualityIsAChoice) {
    const auto convert = [&](const std::string& quality) {
        ExpectConverted(
            Run({"convert", kFrontCenter, "out.wav", "--bits", "24", "--rate", "44100", "--quality", quality}),
            "44100 Hz");
        return SoxSamples(InWork("out.wav"), 24);
    };
    const std::string quick = convert("quick");
    const std::string high = convert("high");
    EXPECT_EQ(quick.size(), high.size());
    EXPECT_FALSE(quick == high);
    EXPECT_FALSE(high == convert("very-high"));
    ExpectFailure(Run({"convert", kFrontCenter, "out.wav", "--quality", "best"}), {"--quality"}, 2);
}

TEST_F(FloatSource, ConvertorWithoutSuchASettingIsTold) {
    UsePlugin(KELO_PLUGINS, "sndfile.so");
    ExpectFailure(RunWithChosen({"convert", kFrontCenter, "out.wav", "--quality", "high"}),
                  {"--quality high: no plug-in's convertor has this setting (plug-ins from " + PluginDirectory()});
}

TEST_F(FloatSource, WithoutAConvertorDecodersDeliverIntegers) {
    UsePlugin(KELO_PLUGINS, "sndfile.so");
    ExpectConverted(RunWithChosen({"convert", kComplete, "out.wav"}), "complete.oga: 44100 Hz, 16 bits, 2 channels");
}

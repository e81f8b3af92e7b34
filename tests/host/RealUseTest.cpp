// A folder of real sounds in twelve formats, converted to FLAC in one run and to WAV in another, compared sample by
// sample with the decoders of the programs that the formats come from.
#include <functional>
#include <map>
#include <nlohmann/json.hpp>

#include "tests/host/KeloAudio.h"
#include "tests/host/LongTest.h"
#include "tests/host/SoundTools.h"

namespace {

constexpr std::size_t kFewestFiles = 60;

struct SFormat {
    // Makes a file of this format from a 16-bit WAV file.
    std::function<void(const std::string& wav, const std::string& file)> m_make;

    // Its samples as 16-bit little-endian bytes.
    std::function<std::string(const std::string& file)> m_decode;

    // Between those samples and ours.
    int m_nLargestDifference;
};

std::string FfmpegSamples(const std::string& file) {
    return RunTool({"ffmpeg", "-loglevel", "error", "-i", file, "-f", "s16le", "-c:a", "pcm_s16le", "-"});
}

SFormat Lossless(const std::vector<std::string>& command) {
    const auto make = [command](const std::string& wav, const std::string& file) {
        std::vector<std::string> words = command;
        std::replace(words.begin(), words.end(), std::string("IN"), wav);
        std::replace(words.begin(), words.end(), std::string("OUT"), file);
        RunTool(words);
    };
    return {make, FfmpegSamples, 0};
}

SFormat Lossy(const std::vector<std::string>& command, std::function<std::string(const std::string&)> decode) {
    return {Lossless(command).m_make, std::move(decode), 1};
}

// By extension.
std::map<std::string, SFormat> Formats(const CScratchDirectory& scratch) {
    const std::string raw = scratch / "reference.raw";
    const std::string wav = scratch / "reference.wav";
    const auto oggdec = [raw](const std::string& file) {
        RunTool({"oggdec", "-Q", "-R", "-o", raw, file});
        return ReadWholeFile(raw);
    };
    const auto opusdec = [wav](const std::string& file) {
        RunTool({"opusdec", "--quiet", "--no-dither", "--rate", "48000", file, wav});
        return FfmpegSamples(wav);
    };
    const auto mpg123 = [](const std::string& file) { return RunTool({"mpg123", "-q", "-s", "-e", "s16", file}); };
    std::map<std::string, SFormat> formats;
    for (const std::string extension : {"wav", "aiff", "au", "caf", "w64", "sph"}) {
        formats[extension] = Lossless({"sox", "-D", "IN", "OUT"});
    }
    formats["rf64"] = Lossless({"ffmpeg", "-loglevel", "error", "-i", "IN", "-rf64", "always", "-f", "wav", "OUT"});
    formats["flac"] = Lossless({"flac", "-s", "-o", "OUT", "IN"});
    formats["flac"].m_decode = FlacSamples;
    formats["ogg"] = Lossy({"oggenc", "-Q", "-o", "OUT", "IN"}, oggdec);
    formats["opus"] = Lossy({"opusenc", "--quiet", "IN", "OUT"}, opusdec);
    formats["mp3"] = Lossy({"lame", "--quiet", "-b", "192", "IN", "OUT"}, mpg123);
    formats["mp2"] = Lossy({"ffmpeg", "-loglevel", "error", "-i", "IN", "-b:a", "192k", "OUT"}, mpg123);
    return formats;
}

class RealUse : public CKeloAudio {
protected:
    // Voices, noise and chimes, mono and stereo, as 16-bit WAV.
    std::vector<std::string> Sounds() const {
        std::vector<std::string> sounds;
        for (const std::string name : {"Front_Center", "Noise", "Side_Left"}) {
            sounds.push_back("/usr/share/sounds/alsa/" + name + ".wav");
        }
        for (const std::string name : {"complete", "bell", "phone-incoming-call"}) {
            sounds.push_back(m_scratch / (name + ".wav"));
            RunTool({"oggdec", "-Q", "-o", sounds.back(), "/usr/share/sounds/freedesktop/stereo/" + name + ".oga"});
        }
        return sounds;
    }

    nlohmann::json ConvertFolder(const std::string& from, const std::string& extension, const std::string& to) const {
        const SRunResult result =
            Run({"convert", "-r", from, "--to", extension, "--out-dir", to, "--dither", "none", "--json"});
        EXPECT_EQ(result.m_nExit, 0);
        EXPECT_EQ(result.m_strErr, "");
        return nlohmann::json::parse(result.m_strOut);
    }
};

}  // namespace

TEST_F(RealUse, TwelveFormatsBecomeFlacAndWavWithEverySample) {
    KELO_LONG_TEST();
    const std::map<std::string, SFormat> formats = Formats(m_scratch);
    EXPECT_EQ(formats.size(), 12u);
    for (const auto& [extension, format] : formats) {
        std::filesystem::create_directories(InWork("in/" + extension));
        for (const std::string& sound : Sounds()) {
            const std::string name = std::filesystem::path(sound).stem().string() + "." + extension;
            format.m_make(sound, InWork("in/" + extension + "/" + name));
        }
    }
    const nlohmann::json there = ConvertFolder("in", "flac", "flac");
    const nlohmann::json back = ConvertFolder("flac", "wav", "wav");
    ASSERT_GE(there.at("files").size(), kFewestFiles);
    EXPECT_EQ(there.at("converted"), there.at("files").size());
    EXPECT_EQ(back.at("converted"), there.at("files").size());
    for (const nlohmann::json& file : there.at("files")) {
        const std::string input = file.at("input");
        SCOPED_TRACE(input);
        const SFormat& format = formats.at(std::filesystem::path(input).extension().string().substr(1));
        const std::string expected = format.m_decode(InWork(input));
        const std::string samples = FlacSamples(InWork(file.at("output")));
        ASSERT_FALSE(expected.empty());
        EXPECT_EQ(samples.size(), expected.size());
        EXPECT_LE(LargestDifference(samples, expected), format.m_nLargestDifference);
    }
    for (const nlohmann::json& file : back.at("files")) {
        EXPECT_TRUE(SoxSamples(InWork(file.at("output")), 16) == FlacSamples(InWork(file.at("input")))) << file;
    }
}

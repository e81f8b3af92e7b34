// Samples beyond full scale are counted.
#include <nlohmann/json.hpp>

#include "tests/host/KeloAudio.h"
#include "tests/host/SoundTools.h"

namespace {

class Clipping : public CKeloAudio {
protected:
    // 1000 mono samples of half of full scale, `loud` of them of twice full scale.
    void WriteSound(const std::string& name, int loud) const {
        std::string raw;
        for (int i = 0; i < 1000; ++i) {
            // 0.5 and 2.0 as IEEE 754 binary32.
            raw += std::string("\0\0\0", 3) + (i < loud ? '\x40' : '\x3f');
        }
        const std::string path = m_scratch.Write("raw.f32", raw);
        RunTool({"ffmpeg", "-loglevel", "error", "-f", "f32le", "-ar", "48000", "-ac", "1", "-i", path, "-c:a",
                 "pcm_f32le", "-y", InWork(name)});
    }

    // All that the run says on standard error.
    void ExpectSays(const std::vector<std::string>& arguments, const std::string& text) const {
        const SRunResult result = Run(arguments);
        EXPECT_EQ(result.m_nExit, 0);
        EXPECT_EQ(result.m_strErr, text);
    }
};

}  // namespace

TEST_F(Clipping, IsToldInTheLineOfTheOutput) {
    WriteSound("in.wav", 12);
    ExpectConverted(Run({"convert", "in.wav", "out.flac"}), "1000 frames, 0.020 s, 12 samples clipped\n");
    WriteSound("in.wav", 1);
    ExpectConverted(Run({"convert", "in.wav", "out.flac"}), "1000 frames, 0.020 s, 1 sample clipped\n");
    WriteSound("in.wav", 0);
    ExpectConverted(Run({"convert", "in.wav", "out.flac"}), "1000 frames, 0.020 s\n");
}

TEST_F(Clipping, IsToldOnStandardErrorWhereThereIsNoLine) {
    WriteSound("in.wav", 12);
    for (const std::vector<std::string>& form : {std::vector<std::string>{"convert", "in.wav", "out.flac", "--quiet"},
                                                 {"convert", "in.wav", "--to", "flac", "--quiet"},
                                                 {"convert", "in.wav", "--to", "flac", "--stdout"},
                                                 {"convert", "in.wav", "--to", "flac", "--stdout", "--quiet"}}) {
        ExpectSays(form, "keloaudio: in.wav: 12 samples clipped\n");
    }
    WriteSound("in.wav", 0);
    ExpectSays({"convert", "in.wav", "out.flac", "--quiet"}, "");
    ExpectSays({"convert", "in.wav", "--to", "flac", "--stdout"}, "");
}

TEST_F(Clipping, IsToldInJsonAndNotAgain) {
    WriteSound("in.wav", 12);
    ExpectSays({"convert", "in.wav", "out.flac", "--quiet", "--json"}, "");
    ExpectSays({"convert", "in.wav", "--to", "flac", "--quiet", "--json"}, "");
}

TEST_F(Clipping, SharesItsLineWithOtherLosses) {
    WriteSound("in.wav", 12);
    RunTool({"ffmpeg", "-loglevel", "error", "-i", InWork("in.wav"), "-c:a", "copy", "-metadata",
             "title=" + std::string(5000, 'x'), InWork("titled.caf")});
    const std::string losses = Run({"convert", "titled.caf", "out.ogg", "--quiet"}).m_strErr;
    EXPECT_EQ(losses.rfind("keloaudio: titled.caf: the title is left out: ", 0), 0u) << losses;
    EXPECT_NE(losses.find("; 12 samples clipped\n"), std::string::npos) << losses;
    EXPECT_TRUE(IsOneLine(losses)) << losses;
}

TEST_F(Clipping, IsCountedForEachFileOfABatchAlone) {
    for (int i = 0; i < 8; ++i) WriteSound("in" + std::to_string(i) + ".wav", i * 10);
    const SRunResult result =
        Run({"convert", ".", "-r", "--to", "flac", "--out-dir", m_scratch / "out", "--jobs", "8", "--json"});
    EXPECT_EQ(result.m_nExit, 0) << result.m_strErr;
    const nlohmann::json files = nlohmann::json::parse(result.m_strOut).at("files");
    ASSERT_EQ(files.size(), 8u);
    for (int i = 0; i < 8; ++i) EXPECT_EQ(files.at(static_cast<std::size_t>(i)).at("clippedSamples"), i * 10);
}

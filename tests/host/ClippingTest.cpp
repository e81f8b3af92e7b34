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

TEST_F(Clipping, IsCountedForEachFileOfABatchAlone) {
    for (int i = 0; i < 8; ++i) WriteSound("in" + std::to_string(i) + ".wav", i * 10);
    const SRunResult result =
        Run({"convert", ".", "-r", "--to", "flac", "--out-dir", m_scratch / "out", "--jobs", "8", "--json"});
    EXPECT_EQ(result.m_nExit, 0) << result.m_strErr;
    const nlohmann::json files = nlohmann::json::parse(result.m_strOut).at("files");
    ASSERT_EQ(files.size(), 8u);
    for (int i = 0; i < 8; ++i) EXPECT_EQ(files.at(static_cast<std::size_t>(i)).at("clippedSamples"), i * 10);
}

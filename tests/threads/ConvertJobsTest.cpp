// keloaudio converts many files on many threads.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/host/RunProgram.h"
#include "tests/plugins/sndfile/AudioFiles.h"

namespace {

constexpr int kFiles = 40;

// A twentieth of a second, another one for each number.
std::string NumberedSound(int number) {
    const SWavFormat format{44100, 16, 1 + number % 2};
    std::string samples;
    for (int i = 0; i < 2205 * format.nChannels; ++i) {
        samples += LittleEndian(static_cast<std::uint64_t>(i * (number + 3) % 20000), 2);
    }
    return WavFile(format, samples);
}

class ConvertJobs : public testing::Test {
protected:
    ConvertJobs() {
        for (const char* const name : {"in", "plugins"}) std::filesystem::create_directory(m_scratch / name);
        for (int i = 0; i < kFiles; ++i) m_scratch.Write("in/" + std::to_string(i) + ".wav", NumberedSound(i));
        for (const std::filesystem::path plugin : {KELO_SNDFILE_PLUGIN, KELO_SOXR_PLUGIN}) {
            std::filesystem::create_symlink(plugin, m_scratch.Path() / "plugins" / plugin.filename());
        }
    }

    void Convert(const std::string& jobs, const std::string& outputs) const {
        const SRunResult result =
            RunProgram({KELOAUDIO, "convert", "--recursive", "in", "--to", "flac", "--rate", "48000", "--jobs", jobs,
                        "--out-dir", outputs, "--plugins", m_scratch / "plugins"},
                       m_scratch.Path());
        EXPECT_EQ(result.m_nExit, 0);
        EXPECT_EQ(result.m_strErr, "");
    }

    CScratchDirectory m_scratch;
};

TEST_F(ConvertJobs, MakeOnEightThreadsWhatOneMakes) {
    Convert("8", "many");
    Convert("1", "one");
    for (int i = 0; i < kFiles; ++i) {
        const std::string name = "/" + std::to_string(i) + ".flac";
        const std::string alone = Content(m_scratch / ("one" + name));
        EXPECT_GT(alone.size(), 500U) << name;
        EXPECT_TRUE(Content(m_scratch / ("many" + name)) == alone) << name;
    }
}

}  // namespace

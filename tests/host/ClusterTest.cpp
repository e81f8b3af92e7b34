// The job script of doc/cluster.md on a real Slurm: cancelled half-way and submitted again.
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <map>
#include <thread>

#include "tests/host/KeloAudio.h"
#include "tests/host/LongTest.h"
#include "tests/host/Slurm.h"
#include "tests/host/SoundTools.h"

namespace {

constexpr int kSounds = 24;
constexpr int kEnoughOutputs = 4;

class Cluster : public CKeloAudio {
protected:
    // Noise of a third of a minute each, in folders, all different.
    void MakeArchive() const {
        for (int i = 0; i < kSounds; ++i) {
            const std::string folder = InWork("archive/" + std::to_string(i % 4));
            std::filesystem::create_directories(folder);
            RunTool({"sox", "-R", "-n", "-r", "44100", "-c", "2", "-b", "16", folder + "/" + std::to_string(i) + ".wav",
                     "synth", "20", "pinknoise", "vol", std::to_string(0.2 + i * 0.01)});
        }
    }

    // The first bash block of the document, with the program under test in the place of an installed one.
    std::string WriteScript() const {
        const std::string text = ReadWholeFile(KELO_SOURCE_DIR "/doc/cluster.md");
        const std::string opening = "```bash\n";
        const std::size_t begin = text.find(opening) + opening.size();
        std::string script = text.substr(begin, text.find("```", begin) - begin);
        const std::size_t end = script.find("exec keloaudio");
        EXPECT_NE(end, std::string::npos);
        script.insert(
            end, "export KELO_AUDIO_PLUGINS=" + SoundPluginDirectory() + "\nPATH=$(dirname " KELOAUDIO "):$PATH\n");
        return m_scratch.Write("convert-archive.sh", script);
    }

    void Submit(const CSlurm& slurm, const std::string& script) const {
        slurm.Ask({"sbatch", script, InWork("archive"), InWork("flac")}, WorkDirectory());
    }

    // Every finished output with its inode.
    std::map<std::string, ino_t> Outputs() const {
        std::map<std::string, ino_t> outputs;
        std::error_code changing;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(InWork("flac"), changing)) {
            struct stat status = {};
            if (entry.path().extension() != ".flac" || stat(entry.path().c_str(), &status) != 0) continue;
            outputs.emplace(entry.path(), status.st_ino);
        }
        return outputs;
    }

    int CountTemporaries() const {
        int count = 0;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(InWork("flac"))) {
            count += entry.path().extension() == ".part" ? 1 : 0;
        }
        return count;
    }

    // How often the logs of all tasks say that this output was converted.
    int CountConverted(const std::string& output) const {
        int count = 0;
        for (const std::string& name : NamesIn(WorkDirectory())) {
            if (name.rfind("convert-archive-", 0) != 0) continue;
            const std::string log = ReadWholeFile(InWork(name));
            const std::string line = " -> " + output + ": 44100 Hz";
            for (std::size_t at = 0; (at = log.find(line, at)) != std::string::npos; at += line.size()) ++count;
        }
        return count;
    }
};

}  // namespace

TEST_F(Cluster, ArchiveIsConvertedOnceThoughTheArrayIsCancelledHalfWay) {
    KELO_LONG_TEST();
    if (geteuid() != 0) GTEST_SKIP() << "only root starts Slurm's daemons";
    MakeArchive();
    const CSlurm slurm;
    const std::string script = WriteScript();
    Submit(slurm, script);
    for (int i = 0; i < 600 && Outputs().size() < kEnoughOutputs; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    slurm.Ask({"scancel", "--name=convert-archive"});
    slurm.WaitForJobs();
    const std::map<std::string, ino_t> before = Outputs();
    ASSERT_GE(before.size(), static_cast<std::size_t>(kEnoughOutputs));
    ASSERT_LT(before.size(), static_cast<std::size_t>(kSounds)) << "cancelled too late";
    EXPECT_EQ(CountTemporaries(), 0);

    Submit(slurm, script);
    slurm.WaitForJobs();
    const std::map<std::string, ino_t> after = Outputs();
    EXPECT_EQ(after.size(), static_cast<std::size_t>(kSounds));
    EXPECT_EQ(CountTemporaries(), 0);
    for (const auto& [output, inode] : before) EXPECT_EQ(after.at(output), inode) << output;
    for (const auto& [output, inode] : after) {
        EXPECT_EQ(CountConverted(output), 1) << output;
        const std::filesystem::path name = std::filesystem::path(output).lexically_relative(InWork("flac"));
        const std::filesystem::path source = std::filesystem::path(InWork("archive")) / name;
        EXPECT_TRUE(FlacSamples(output) == SoxSamples(std::filesystem::path(source).replace_extension("wav"), 16));
    }
}

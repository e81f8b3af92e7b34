// Outputs that a later run may trust are on the disk before they have their names.
#include <algorithm>
#include <sstream>

#include "tests/host/KeloAudio.h"

namespace {

class SyncedOutput : public CKeloAudio {
protected:
    // With the calls written down; `variables` come before the command.
    SRunResult RunNoted(const std::string& arguments, const std::string& variables = "") const {
        const std::string command = variables + " KELO_NOTES=" + NotesFile() +
                                    " LD_LIBRARY_PATH='" KELO_FIXTURES
                                    "' LD_PRELOAD=NotedCalls.so${LD_PRELOAD:+:$LD_PRELOAD} exec '" KELOAUDIO
                                    "' convert " +
                                    kFrontCenter + " " + arguments + " --plugins " + SoundPluginDirectory();
        return RunProgram({"bash", "-c", command}, WorkDirectory());
    }

    // In their order; paths from the working directory, and the temporary file by its ending alone.
    std::vector<std::string> TakeNotes() const {
        std::vector<std::string> notes;
        std::istringstream text(ReadWholeFile(NotesFile()));
        std::filesystem::remove(NotesFile());
        for (std::string call, path; text >> call >> path;) {
            const std::filesystem::path file(path);
            notes.push_back(
                call + " " +
                (file.extension() == ".part" ? file.extension() : file.lexically_relative(WorkDirectory())).string());
        }
        return notes;
    }

private:
    std::string NotesFile() const { return m_scratch / "notes"; }
};

}  // namespace

TEST_F(SyncedOutput, IsOnTheDiskBeforeItsNameIsAndItsNameAfterwards) {
    for (const std::string arguments :
         {"--to flac --out-dir out --skip-existing", "--to flac --out-dir out --shard 0/2",
          "out/Front_Center.flac --skip-existing"}) {
        SCOPED_TRACE(arguments);
        const SRunResult result = RunNoted(arguments);
        EXPECT_EQ(result.m_nExit, 0) << result.m_strErr;
        EXPECT_EQ(TakeNotes(), (std::vector<std::string>{"sync .part", "rename out/Front_Center.flac", "sync out"}));
        std::filesystem::remove(InWork("out/Front_Center.flac"));
    }
}

TEST_F(SyncedOutput, NobodyWaitsForTheDiskOtherwise) {
    EXPECT_EQ(RunNoted("--to flac --out-dir out").m_nExit, 0);
    EXPECT_EQ(TakeNotes(), std::vector<std::string>{"rename out/Front_Center.flac"});
    EXPECT_EQ(RunNoted("out.flac").m_nExit, 0);
    EXPECT_EQ(TakeNotes(), std::vector<std::string>{"rename out.flac"});
}

TEST_F(SyncedOutput, ThatDoesNotGetToTheDiskLeavesTheOldOne) {
    std::filesystem::create_directory(InWork("out"));
    m_scratch.Write("work/out/Front_Center.flac", "the old content");
    const SRunResult result = RunNoted("--to flac --out-dir out --shard 0/2", "KELO_SYNC_FAILS=1");
    EXPECT_EQ(result.m_nExit, 1);
    EXPECT_EQ(result.m_strErr.rfind("keloaudio: out/Front_Center.flac: Input/output error\n", 0), 0u)
        << result.m_strErr;
    EXPECT_EQ(TakeNotes(), std::vector<std::string>{"sync .part"});
    EXPECT_EQ(ReadWholeFile(InWork("out/Front_Center.flac")), "the old content");
    EXPECT_EQ(NamesIn(InWork("out")), std::vector<std::string>{"Front_Center.flac"});
}

// Outputs that would overwrite each other or an input are refused before anything is written.
#include "tests/host/KeloAudio.h"

namespace {

class BatchClash : public CKeloAudio {
protected:
    void CopyTo(const std::string& name) const {
        std::filesystem::create_directories(std::filesystem::path(InWork(name)).parent_path());
        std::filesystem::copy_file(kFrontCenter, InWork(name));
    }

    // Fails with these words and leaves everything as it was.
    void ExpectRefused(const std::vector<std::string>& arguments, const std::vector<std::string>& words,
                       int status = 1) const {
        const auto names = [&] {
            std::vector<std::string> all;
            for (const auto& entry : std::filesystem::recursive_directory_iterator(WorkDirectory())) {
                all.push_back(entry.path());
            }
            std::sort(all.begin(), all.end());
            return all;
        };
        const std::vector<std::string> before = names();
        std::vector<std::string> command = {"convert"};
        command.insert(command.end(), arguments.begin(), arguments.end());
        ExpectFailure(Run(command), words, status);
        EXPECT_EQ(names(), before);
    }
};

}  // namespace

TEST_F(BatchClash, TwoInputsOfOneNameAreBothNamed) {
    CopyTo("in/a.wav");
    CopyTo("in/a.aiff");
    CopyTo("in/b.wav");
    ExpectRefused({"-r", "in", "--to", "flac", "--out-dir", "out"},
                  {"out/a.flac: two inputs would become it, in/a.aiff and in/a.wav"});
    ExpectRefused({"in/a.wav", "in/a.aiff", "--to", "flac"}, {"in/a.flac: two inputs would become it"});
}

TEST_F(BatchClash, EveryShardRefusesTheSame) {
    for (const std::string name : {"in/a.wav", "in/b.wav", "in/c.aiff", "in/c.wav"}) CopyTo(name);
    for (const std::string shard : {"0/4", "1/4", "3/4"}) {
        ExpectRefused({"-r", "in", "--to", "flac", "--out-dir", "out", "--shard", shard}, {"in/c.aiff and in/c.wav"});
    }
}

TEST_F(BatchClash, InputsOfTwoDirectoriesMeetInOneOutputDirectory) {
    CopyTo("one/deep/a.wav");
    CopyTo("two/deep/a.wav");
    ExpectRefused({"-r", "one", "two", "--to", "flac", "--out-dir", "out"},
                  {"out/deep/a.flac: ", "one/deep/a.wav and two/deep/a.wav"});
    EXPECT_EQ(Run({"convert", "-r", "one", "two", "--to", "flac"}).m_nExit, 0);
}

TEST_F(BatchClash, InputGivenTwiceIsRefused) {
    CopyTo("a.wav");
    ExpectRefused({"a.wav", "./a.wav", "--to", "flac"}, {"two inputs would become it"});
}

TEST_F(BatchClash, LinksBetweenOutputsAreSeen) {
    CopyTo("in/a.wav");
    CopyTo("in/b.wav");
    std::filesystem::create_directory(InWork("out"));
    std::filesystem::create_symlink("b.flac", InWork("out/a.flac"));
    ExpectRefused({"-r", "in", "--to", "flac", "--out-dir", "out"}, {"in/a.wav and in/b.wav"});
}

TEST_F(BatchClash, OutputThatIsACircleOfLinksFailsAlone) {
    CopyTo("a.wav");
    CopyTo("b.wav");
    std::filesystem::create_directory(InWork("out"));
    std::filesystem::create_symlink("a.flac", InWork("out/a.flac"));
    const SRunResult result = Run({"convert", "a.wav", "b.wav", "--to", "flac", "--out-dir", "out"});
    EXPECT_EQ(result.m_nExit, 1);
    EXPECT_EQ(result.m_strErr,
              "keloaudio: out/a.flac: Too many levels of symbolic links\n"
              "keloaudio: 1 of 2 files failed: 1 Too many levels of symbolic links\n");
    EXPECT_TRUE(std::filesystem::exists(InWork("out/b.flac")));
}

TEST_F(BatchClash, OutputsOfOneNameBelowDirectoriesThatLeadNowhereDoNotMeet) {
    for (const std::string name : {"in/x/a.wav", "in/y/a.wav", "in/b.wav"}) CopyTo(name);
    std::filesystem::create_directory(InWork("out"));
    for (const std::string name : {"x", "y"}) std::filesystem::create_symlink(name, InWork("out/" + name));
    const SRunResult result = Run({"convert", "-r", "in", "--to", "flac", "--out-dir", "out"});
    EXPECT_EQ(result.m_nExit, 1);
    for (const std::string words : {"out/x", "out/y", "2 of 3 files failed"}) {
        EXPECT_NE(result.m_strErr.find(words), std::string::npos) << result.m_strErr;
    }
    EXPECT_TRUE(std::filesystem::exists(InWork("out/b.flac")));
}

TEST_F(BatchClash, OutputThatIsItsInputIsRefused) {
    CopyTo("a.wav");
    ExpectRefused({"a.wav", "--to", "wav"}, {"a.wav: the output of a.wav is one of the inputs"});
}

TEST_F(BatchClash, OutputThatIsAnotherInputIsRefused) {
    CopyTo("in/a.aiff");
    CopyTo("out/a.wav");
    ExpectRefused({"in/a.aiff", "out/a.wav", "--to", "wav", "--out-dir", "out"}, {"out/a.wav: "});
    std::filesystem::create_directory(InWork("other"));
    std::filesystem::create_hard_link(InWork("out/a.wav"), InWork("other/b.wav"));
    CopyTo("in/b.aiff");
    ExpectRefused({"in/b.aiff", "out/a.wav", "--to", "wav", "--out-dir", "other"},
                  {"other/b.wav: the output of in/b.aiff is one of the inputs"});
}

TEST_F(BatchClash, OriginalInTheTargetFormatIsNotReplacedByItsNamesake) {
    CopyTo("in/a.wav");
    CopyTo("in/a.aiff");
    ExpectRefused({"-r", "in", "--to", "wav"}, {"in/a.wav: the output of in/a.aiff is there and may be an original"});
    const std::string original = ReadWholeFile(InWork("in/a.wav"));
    const SRunResult skipped = Run({"convert", "-r", "in", "--to", "wav", "--skip-existing"});
    EXPECT_EQ(skipped.m_nExit, 0) << skipped.m_strErr;
    EXPECT_TRUE(ReadWholeFile(InWork("in/a.wav")) == original);
}

TEST_F(BatchClash, ExtensionOrDirectoryOfAnEmptyVariableIsRefused) {
    CopyTo("a.wav");
    CopyTo("music/b.wav");
    std::filesystem::resize_file(InWork("music/b.wav"), 40000);
    const std::string original = ReadWholeFile(InWork("music/b.wav"));
    for (const std::vector<std::string>& option :
         {std::vector<std::string>{"--to", "."}, {"--to=."}, {"--to", ""}, {"--to="}}) {
        std::vector<std::string> arguments = option;
        arguments.insert(arguments.end(), {"a.wav", "music/b.wav"});
        ExpectRefused(arguments, {"keloaudio: --to: "}, 2);
        EXPECT_TRUE(ReadWholeFile(InWork("music/b.wav")) == original);
    }
    ExpectRefused({"--out-dir=", "music", "a.wav", "--to", "wav"}, {"keloaudio: --out-dir: an empty name"}, 2);
    ExpectRefused({"--out-dir", "", "music", "a.wav", "--to", "wav"}, {"keloaudio: --out-dir: an empty name"}, 2);
}

TEST_F(BatchClash, FormsThatDoNotGoTogetherAreWrongUsage) {
    ExpectFailure(Run({"convert", "a.wav", "b.wav", "c.wav"}), {"--to EXTENSION: is required"}, 2);
    ExpectFailure(Run({"convert", "a.wav", "b.wav", "--out-dir", "out"}), {"--out-dir: goes with --to EXTENSION"}, 2);
    ExpectFailure(Run({"convert", "a.wav", "b.wav", "--recursive"}), {"--recursive: goes with --to"}, 2);
    ExpectFailure(Run({"convert", "a.wav", "b.wav", "--shard", "0/2"}), {"--shard: goes with --to"}, 2);
}

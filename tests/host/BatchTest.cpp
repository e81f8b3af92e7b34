// Many files in one run.
#include <unistd.h>

#include <nlohmann/json.hpp>

#include "tests/host/KeloAudio.h"
#include "tests/host/SoundTools.h"
#include "tests/support/Sanitizers.h"

namespace {

class Batch : public CKeloAudio {
protected:
    // in/front.wav, in/deep/er/noise.wav and in/deep/bell.oga, beside files that are no sounds.
    Batch() {
        std::filesystem::create_directories(InWork("in/deep/er"));
        std::filesystem::copy_file(kFrontCenter, InWork("in/front.wav"));
        std::filesystem::copy_file("/usr/share/sounds/alsa/Noise.wav", InWork("in/deep/er/noise.WAV"));
        std::filesystem::copy_file("/usr/share/sounds/freedesktop/stereo/bell.oga", InWork("in/deep/bell.oga"));
        m_scratch.Write("work/in/cover.jpg", "x");
        m_scratch.Write("work/in/deep/notes", "x");
    }

    SRunResult ConvertAll(const std::vector<std::string>& options = {}) const {
        std::vector<std::string> arguments = {"convert", "--recursive", "in", "--to", "flac", "--out-dir", "out"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        return Run(arguments);
    }

    // The files below a directory of the working directory, by their path from there, sorted.
    std::vector<std::string> FilesBelow(const std::string& directory) const {
        std::vector<std::string> files;
        if (!std::filesystem::exists(InWork(directory))) return files;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(InWork(directory))) {
            if (!entry.is_directory()) files.push_back(entry.path().lexically_relative(InWork(directory)));
        }
        std::sort(files.begin(), files.end());
        return files;
    }

    static void ExpectHolds(const std::string& text, const std::string& part) {
        EXPECT_NE(text.find(part), std::string::npos) << part << " is not in " << text;
    }
};

const std::vector<std::string> kOutputs = {"deep/bell.flac", "deep/er/noise.flac", "front.flac"};

}  // namespace

TEST_F(Batch, DirectoryKeepsItsFoldersBelowTheOutputDirectory) {
    const SRunResult result = ConvertAll();
    EXPECT_EQ(result.m_nExit, 0);
    EXPECT_EQ(result.m_strErr, "");
    EXPECT_EQ(FilesBelow("out"), kOutputs);
    EXPECT_TRUE(FlacSamples(InWork("out/front.flac")) == SoxSamples(kFrontCenter, 16));
    ExpectHolds(result.m_strOut,
                "in/front.wav -> out/front.flac: 48000 Hz, 16 bits, 1 channel, 68545 frames, 1.428 s\n");
    ExpectHolds(result.m_strOut, "\n3 files converted in 0:0");
    ExpectHolds(result.m_strOut, "x real time, 2 other files left out\n");
}

TEST_F(Batch, OneJobAndManyMakeTheSameFiles) {
    EXPECT_EQ(ConvertAll({"--jobs", "8", "--rate", "32000"}).m_nExit, 0);
    std::filesystem::rename(InWork("out"), InWork("many"));
    EXPECT_EQ(ConvertAll({"--jobs", "1", "--rate", "32000"}).m_nExit, 0);
    for (const std::string& name : kOutputs) {
        EXPECT_TRUE(ReadWholeFile(InWork("out/" + name)) == ReadWholeFile(InWork("many/" + name))) << name;
    }
}

TEST_F(Batch, NamedFilesGoIntoTheOutputDirectoryItself) {
    const SRunResult result =
        Run({"convert", "in/front.wav", "in/deep/er/noise.WAV", "--to", ".flac", "--out-dir", "deep/out"});
    EXPECT_EQ(result.m_nExit, 0) << result.m_strErr;
    EXPECT_EQ(FilesBelow("deep/out"), (std::vector<std::string>{"front.flac", "noise.flac"}));
}

TEST_F(Batch, OutputsGoBesideTheInputsWithoutADirectory) {
    EXPECT_EQ(Run({"convert", "-r", "in", "--to", "flac"}).m_nExit, 0);
    EXPECT_TRUE(std::filesystem::exists(InWork("in/deep/er/noise.flac")));
    const SRunResult again = Run({"convert", "-r", "in", "--to", "flac", "--skip-existing"});
    EXPECT_EQ(again.m_nExit, 0) << again.m_strErr;
    ExpectHolds(again.m_strOut, "0 files converted, 3 skipped, 3 already .flac, 2 other files left out\n");
}

TEST_F(Batch, OutputDirectoryThatIsTheInputMeansBesideTheInputs) {
    const SRunResult result = Run({"convert", "-r", "in", "--to", "flac", "--out-dir", "in"});
    EXPECT_EQ(result.m_nExit, 0) << result.m_strErr;
    EXPECT_TRUE(std::filesystem::exists(InWork("in/deep/er/noise.flac")));
    const SRunResult again = Run({"convert", "-r", "in", "--to", "flac", "--out-dir", "in/.", "--skip-existing"});
    ExpectHolds(again.m_strOut, "0 files converted, 3 skipped, 3 already .flac, 2 other files left out\n");
}

TEST_F(Batch, NamesInSquareBracketsAreNames) {
    std::filesystem::rename(InWork("in"), InWork("[in, 1994]"));
    std::filesystem::copy_file(kFrontCenter, InWork("[a].wav"));
    const SRunResult result = Run({"convert", "-r", "[in, 1994]", "[a].wav", "--to", "flac", "--out-dir", "[out]"});
    EXPECT_EQ(result.m_nExit, 0) << result.m_strErr;
    EXPECT_EQ(FilesBelow("[out]"),
              (std::vector<std::string>{"[a].flac", "deep/bell.flac", "deep/er/noise.flac", "front.flac"}));
}

TEST_F(Batch, GoesOnWithTheThreadsThatTheSystemGives) {
    if (support::kSanitized) GTEST_SKIP() << "the sanitizer needs more address space than the limit leaves";
    // A thread takes a stack of the limit's size: of the twenty there is room for a few.
    const std::string command = std::string("ulimit -s 1000000; ulimit -v 3500000; exec '") + KELOAUDIO +
                                "' convert -r in --to flac --out-dir out --jobs 20 --plugins " + SoundPluginDirectory();
    for (int i = 0; i < 20; ++i) {
        std::filesystem::copy_file(kFrontCenter, InWork("in/" + std::to_string(i) + ".wav"));
    }
    const SRunResult result = RunProgram({"bash", "-c", command}, WorkDirectory());
    EXPECT_EQ(result.m_nExit, 0) << result.m_strErr;
    EXPECT_EQ(FilesBelow("out").size(), 23u);
}

TEST_F(Batch, DryRunTellsInputsThatAreNotThere) {
    const SRunResult result = Run({"convert", "none.wav", "in/front.wav", "--to", "flac", "--dry-run"});
    EXPECT_EQ(result.m_nExit, 1);
    EXPECT_EQ(result.m_strOut, "in/front.wav -> in/front.flac\n1 file to convert\n");
    ExpectHolds(result.m_strErr, "keloaudio: none.wav: No such file or directory\n");
    ExpectFailure(Run({"convert", "none.wav", "out.flac", "--dry-run"}), {"none.wav: No such file or directory"});
}

TEST_F(Batch, DirectoryWithoutTheOptionIsRefused) {
    ExpectFailure(Run({"convert", "in", "--to", "flac"}), {"in: is a directory (--recursive converts what it holds)"});
}

TEST_F(Batch, FailedFilesDoNotStopTheOthers) {
    m_scratch.Write("work/in/empty.wav", "");
    m_scratch.Write("work/in/void.wav", "");
    m_scratch.Write("work/in/text.wav", "These are words, not samples.\n");
    for (const std::string jobs : {"1", "8"}) {
        const SRunResult result = ConvertAll({"--jobs", jobs});
        EXPECT_EQ(result.m_nExit, 1);
        EXPECT_EQ(FilesBelow("out"), kOutputs);
        ExpectHolds(result.m_strErr, "keloaudio: in/empty.wav: the file is empty\n");
        ExpectHolds(result.m_strErr, "keloaudio: in/text.wav: ");
        ExpectHolds(result.m_strErr, "\nkeloaudio: 3 of 6 files failed: 2 the file is empty, 1 ");
        ExpectHolds(result.m_strOut, "\n3 files converted in ");
    }
}

TEST_F(Batch, ExistingOutputsAreSkippedOnRequest) {
    m_scratch.Write("work/out-front", "");
    std::filesystem::create_directories(InWork("out"));
    m_scratch.Write("work/out/front.flac", "mine");
    const SRunResult result = ConvertAll({"--skip-existing"});
    EXPECT_EQ(result.m_nExit, 0) << result.m_strErr;
    EXPECT_EQ(FilesBelow("out"), kOutputs);
    EXPECT_EQ(ReadWholeFile(InWork("out/front.flac")), "mine");
    ExpectHolds(result.m_strOut, "in/front.wav -> out/front.flac: skipped, it is there\n");
    ExpectHolds(result.m_strOut, "real time, 1 skipped, 2 other files left out\n");
    ConvertAll();
    EXPECT_EQ(ReadWholeFile(InWork("out/front.flac")).substr(0, 4), "fLaC");
}

TEST_F(Batch, DryRunOnlySaysWhatWouldBeDone) {
    const SRunResult result = ConvertAll({"--dry-run"});
    EXPECT_EQ(result.m_nExit, 0) << result.m_strErr;
    EXPECT_EQ(result.m_strOut,
              "in/deep/bell.oga -> out/deep/bell.flac\n"
              "in/deep/er/noise.WAV -> out/deep/er/noise.flac\n"
              "in/front.wav -> out/front.flac\n"
              "3 files to convert, 2 other files left out\n");
    EXPECT_FALSE(std::filesystem::exists(InWork("out")));
    EXPECT_EQ(Run({"convert", kFrontCenter, "x.wav", "--dry-run"}).m_strOut, std::string(kFrontCenter) + " -> x.wav\n");
    EXPECT_FALSE(std::filesystem::exists(InWork("x.wav")));
}

TEST_F(Batch, QuietRunSaysOnlyWhatFails) {
    EXPECT_EQ(ConvertAll({"--quiet"}).m_strOut, "");
    m_scratch.Write("work/in/empty.wav", "");
    const SRunResult result = ConvertAll({"--quiet"});
    EXPECT_EQ(result.m_strOut, "");
    ExpectHolds(result.m_strErr, "keloaudio: in/empty.wav: the file is empty\n");
}

TEST_F(Batch, JsonTellsEveryFileInOrder) {
    m_scratch.Write("work/in/empty.wav", "");
    const SRunResult result = ConvertAll({"--json", "--jobs", "4"});
    EXPECT_EQ(result.m_nExit, 1);
    const nlohmann::json report = nlohmann::json::parse(result.m_strOut);
    EXPECT_EQ(report.at("converted"), 3);
    EXPECT_EQ(report.at("failed"), 1);
    EXPECT_EQ(report.at("otherFiles"), 2);
    const nlohmann::json& files = report.at("files");
    ASSERT_EQ(files.size(), 4u);
    EXPECT_EQ(files.at(0).at("input"), "in/deep/bell.oga");
    EXPECT_EQ(files.at(0).at("source").at("float"), true);
    EXPECT_EQ(files.at(0).at("target").at("bits"), 16);
    EXPECT_EQ(files.at(2).at("status"), "failed");
    EXPECT_EQ(files.at(2).at("failure"), "in/empty.wav: the file is empty");
    EXPECT_EQ(files.at(3).at("output"), "out/front.flac");
    EXPECT_EQ(files.at(3).at("status"), "converted");
    EXPECT_EQ(files.at(3).at("target").at("frames"), 68545);
}

TEST_F(Batch, CirclesOfLinksEnd) {
    std::filesystem::create_directory_symlink("..", InWork("in/deep/up"));
    std::filesystem::create_directory_symlink(".", InWork("in/self"));
    EXPECT_EQ(ConvertAll().m_nExit, 0);
    EXPECT_EQ(FilesBelow("out"), kOutputs);
}

TEST_F(Batch, NamedLinkToADirectoryAndLinkedFilesAreFollowed) {
    std::filesystem::create_directory_symlink("in", InWork("link"));
    std::filesystem::create_symlink(kFrontCenter, InWork("in/linked.wav"));
    const SRunResult result = Run({"convert", "-r", "link", "--to", "flac", "--out-dir", "out"});
    EXPECT_EQ(result.m_nExit, 0) << result.m_strErr;
    EXPECT_EQ(FilesBelow("out"),
              (std::vector<std::string>{"deep/bell.flac", "deep/er/noise.flac", "front.flac", "linked.flac"}));
}

TEST_F(Batch, OutputDirectoryInsideTheInputIsNoInput) {
    for (int i = 0; i < 2; ++i) {
        const SRunResult result = Run({"convert", "-r", "in", "--to", "wav", "--out-dir", "in/converted"});
        EXPECT_EQ(result.m_nExit, 0) << result.m_strErr;
        EXPECT_EQ(FilesBelow("in/converted"),
                  (std::vector<std::string>{"deep/bell.wav", "deep/er/noise.wav", "front.wav"}));
    }
}

TEST_F(Batch, DirectoryThatCannotBeReadIsAFailureOfItsOwn) {
    std::filesystem::create_directory(InWork("in/locked"));
    std::filesystem::permissions(InWork("in/locked"), std::filesystem::perms::none);
    std::vector<std::string> command = {"setpriv", "--bounding-set", "-all", "--inh-caps", "-all",
                                        KELOAUDIO, "convert",        "-r",   "in",         "--to",
                                        "flac",    "--out-dir",      "out",  "--plugins",  SoundPluginDirectory()};
    if (geteuid() != 0) command.erase(command.begin(), command.begin() + 5);
    const SRunResult result = RunProgram(command, WorkDirectory());
    std::filesystem::permissions(InWork("in/locked"), std::filesystem::perms::owner_all);
    EXPECT_EQ(result.m_nExit, 1);
    ExpectHolds(result.m_strErr, "keloaudio: in/locked: Permission denied\n");
    ExpectHolds(result.m_strErr, "1 of 4 files failed: 1 Permission denied\n");
    EXPECT_EQ(FilesBelow("out"), kOutputs);
}

TEST_F(Batch, NothingToConvertIsNoFailure) {
    std::filesystem::create_directory(InWork("none"));
    const SRunResult result = Run({"convert", "-r", "none", "--to", "flac"});
    EXPECT_EQ(result.m_nExit, 0) << result.m_strErr;
    EXPECT_EQ(result.m_strOut, "0 files converted\n");
}

TEST_F(Batch, LinesThatNobodyGetsEndTheRun) {
    const std::string command = std::string("exec '") + KELOAUDIO +
                                "' convert -r in --to flac --out-dir out --plugins " + SoundPluginDirectory() +
                                " >/dev/full";
    ExpectFailure(RunProgram({"bash", "-c", command}, WorkDirectory()), {"standard output: No space left on device"});
    for (const std::string& name : FilesBelow("out")) {
        EXPECT_EQ(std::filesystem::path(name).extension(), ".flac") << name;
    }
}

TEST_F(Batch, ShardsTakeEveryFileOnce) {
    std::vector<std::string> taken;
    for (const std::string shard : {"0/2", "1/2"}) {
        const nlohmann::json report = nlohmann::json::parse(ConvertAll({"--shard", shard, "--json"}).m_strOut);
        for (const nlohmann::json& file : report.at("files")) {
            EXPECT_EQ(file.at("status"), "converted");
            taken.push_back(file.at("input"));
        }
    }
    EXPECT_EQ(taken, (std::vector<std::string>{"in/deep/bell.oga", "in/front.wav", "in/deep/er/noise.WAV"}));
    EXPECT_EQ(FilesBelow("out"), kOutputs);
}

TEST_F(Batch, WhatIsNoShardIsWrongUsage) {
    for (const std::string text : {"", "1", "2/2", "-1/2", "0/0", "a/b", "0/2/3", "1.5/2"}) {
        SCOPED_TRACE(text);
        ExpectFailure(ConvertAll({"--shard=" + text}), {"--shard"}, 2);
    }
}

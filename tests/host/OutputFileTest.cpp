// What becomes of the output's name: links, modes, directories, reports that nobody gets.
#include <sys/stat.h>
#include <unistd.h>

#include "tests/host/KeloAudio.h"

namespace {

class OutputFile : public CKeloAudio {
protected:
    SRunResult ConvertTo(const std::string& output) const { return Run({"convert", kFrontCenter, output}); }

    SRunResult ConvertWithStandardOutput(const std::string& redirection, const std::string& output) const {
        const std::string command = std::string("exec '") + KELOAUDIO + "' convert " + kFrontCenter + " " + output +
                                    " --plugins " + SoundPluginDirectory() + " " + redirection;
        return RunProgram({"bash", "-c", command}, WorkDirectory());
    }

    // Root may write everywhere; without its capabilities it may not.
    SRunResult ConvertWithoutCapabilities(const std::string& output,
                                          const std::vector<std::string>& options = {}) const {
        std::vector<std::string> command = {KELOAUDIO, "convert",   kFrontCenter,
                                            output,    "--plugins", SoundPluginDirectory()};
        command.insert(command.end(), options.begin(), options.end());
        if (geteuid() == 0) {
            command.insert(command.begin(), {"setpriv", "--bounding-set", "-all", "--inh-caps", "-all"});
        }
        return RunProgram(command, WorkDirectory());
    }

    unsigned int ModeOf(const std::string& name) const {
        struct stat entry = {};
        EXPECT_EQ(stat(InWork(name).c_str(), &entry), 0) << name;
        return entry.st_mode & 07777U;
    }

    bool IsSound(const std::string& name) const {
        return std::filesystem::is_regular_file(std::filesystem::symlink_status(InWork(name))) &&
               ReadWholeFile(InWork(name)).substr(0, 4) == "RIFF";
    }
};

}  // namespace

TEST_F(OutputFile, LinkToNothingStaysALinkAndItsTargetIsMade) {
    std::filesystem::create_directory(InWork("folder"));
    std::filesystem::create_symlink("folder/real.wav", InWork("out.wav"));
    ExpectConverted(ConvertTo("out.wav"), "out.wav: ");
    EXPECT_TRUE(std::filesystem::is_symlink(InWork("out.wav")));
    EXPECT_TRUE(IsSound("folder/real.wav"));
    EXPECT_EQ(NamesIn(WorkDirectory()), (std::vector<std::string>{"folder", "out.wav"}));
    EXPECT_EQ(NamesIn(InWork("folder")), std::vector<std::string>{"real.wav"});
}

TEST_F(OutputFile, LinksAreFollowedFromTheirOwnDirectories) {
    std::filesystem::create_directory(InWork("folder"));
    std::filesystem::create_symlink("folder/second.wav", InWork("first.wav"));
    std::filesystem::create_symlink("third.wav", InWork("folder/second.wav"));
    std::filesystem::create_symlink(InWork("real.wav"), InWork("folder/third.wav"));
    ExpectConverted(ConvertTo("first.wav"), "first.wav: ");
    EXPECT_TRUE(std::filesystem::is_symlink(InWork("folder/second.wav")));
    EXPECT_TRUE(std::filesystem::is_symlink(InWork("folder/third.wav")));
    EXPECT_TRUE(IsSound("real.wav"));
}

TEST_F(OutputFile, LinkIntoAMissingDirectoryIsRefused) {
    std::filesystem::create_symlink("nowhere/real.wav", InWork("out.wav"));
    ExpectFailure(ConvertTo("out.wav"), {"out.wav: no file can be made in ", "nowhere: No such file or directory"});
    EXPECT_TRUE(std::filesystem::is_symlink(InWork("out.wav")));
}

TEST_F(OutputFile, LinksInACircleAreRefused) {
    std::filesystem::create_symlink("other.wav", InWork("out.wav"));
    std::filesystem::create_symlink("out.wav", InWork("other.wav"));
    ExpectFailure(ConvertTo("out.wav"), {"out.wav: Too many levels of symbolic links"});
    EXPECT_TRUE(std::filesystem::is_symlink(InWork("out.wav")));
    EXPECT_EQ(NamesIn(WorkDirectory()), (std::vector<std::string>{"other.wav", "out.wav"}));
}

TEST_F(OutputFile, FailureLeavesALinkToNothingAsItWas) {
    std::filesystem::create_symlink("real.wav", InWork("out.wav"));
    m_scratch.Write("work/text.wav", "These are words, not samples.\n");
    ExpectFailure(Run({"convert", "text.wav", "out.wav"}), {"text.wav: "});
    EXPECT_EQ(NamesIn(WorkDirectory()), (std::vector<std::string>{"out.wav", "text.wav"}));
    EXPECT_TRUE(std::filesystem::is_symlink(InWork("out.wav")));
}

TEST_F(OutputFile, ReplacedFileKeepsItsMode) {
    for (const mode_t mode : {0600U, 0664U, 0755U, 0200U}) {
        SCOPED_TRACE(mode);
        m_scratch.Write("work/out.wav", "the old content");
        ASSERT_EQ(chmod(InWork("out.wav").c_str(), mode), 0);
        ExpectConverted(ConvertTo("out.wav"), "out.wav: ");
        EXPECT_EQ(ModeOf("out.wav"), mode);
        chmod(InWork("out.wav").c_str(), 0600);
        EXPECT_TRUE(IsSound("out.wav"));
    }
}

TEST_F(OutputFile, DirectoryThatMayNotBeWrittenIsRefused) {
    const std::string folder = InWork("folder");
    std::filesystem::create_directory(folder);
    ASSERT_EQ(chmod(folder.c_str(), 0555), 0);
    const SRunResult result = ConvertWithoutCapabilities(folder + "/out.wav");
    ExpectFailure(result, {"/out.wav: no file can be made in " + folder + ": Permission denied"});
    EXPECT_EQ(NamesIn(folder), std::vector<std::string>{});
}

TEST_F(OutputFile, DirectoryThatMayNotBeWrittenIsRefusedThoughTheOutputInItMay) {
    const std::string folder = InWork("folder");
    std::filesystem::create_directory(folder);
    const std::string output = m_scratch.Write("work/folder/out.wav", "the old content");
    ASSERT_EQ(chmod(folder.c_str(), 0555), 0);
    const SRunResult result = ConvertWithoutCapabilities(output);
    ExpectFailure(result, {"/out.wav: no file can be made in " + folder + ": Permission denied"});
    EXPECT_EQ(ReadWholeFile(output), "the old content");
    chmod(folder.c_str(), 0755);  // it can be removed again
}

TEST_F(OutputFile, FileThatMayNotBeWrittenIsRefused) {
    m_scratch.Write("work/out.wav", "the old content");
    ASSERT_EQ(chmod(InWork("out.wav").c_str(), 0444), 0);
    ExpectFailure(ConvertWithoutCapabilities("out.wav"), {"out.wav: Permission denied"});
    EXPECT_EQ(ReadWholeFile(InWork("out.wav")), "the old content");
}

TEST_F(OutputFile, FileOfAnotherInAStickyDirectoryIsRefusedBeforeItIsReported) {
    if (geteuid() != 0) GTEST_SKIP() << "only root can give files away";
    constexpr uid_t kOther = 65534;
    const std::string folder = InWork("folder");
    std::filesystem::create_directory(folder);
    const std::string output = m_scratch.Write("work/folder/out.wav", "the old content");
    ASSERT_EQ(chmod(folder.c_str(), 01777), 0);
    ASSERT_EQ(chmod(output.c_str(), 0666), 0);
    for (const std::string& path : {folder, output}) ASSERT_EQ(chown(path.c_str(), kOther, kOther), 0);
    for (const std::string option : {"--json", "--jobs=1"}) {
        SCOPED_TRACE(option);
        const SRunResult result = ConvertWithoutCapabilities(output, {option});
        EXPECT_EQ(result.m_nExit, 1);
        EXPECT_EQ(result.m_strErr, "keloaudio: " + output + ": Operation not permitted\n");
        EXPECT_EQ(result.m_strOut.find("16 bits"), std::string::npos) << result.m_strOut;
        EXPECT_EQ(result.m_strOut.find("converted"), std::string::npos) << result.m_strOut;
        EXPECT_EQ(ReadWholeFile(output), "the old content");
        EXPECT_EQ(NamesIn(folder), std::vector<std::string>{"out.wav"});
    }
}

TEST_F(OutputFile, ReportThatNobodyGetsLeavesNoOutput) {
    for (const std::string redirection : {">/dev/full", ">&-"}) {
        SCOPED_TRACE(redirection);
        ExpectFailure(ConvertWithStandardOutput(redirection, "out.wav"), {"keloaudio: standard output: "});
        EXPECT_EQ(NamesIn(WorkDirectory()), std::vector<std::string>{});
    }
    m_scratch.Write("work/out.wav", "the old content");
    ExpectFailure(ConvertWithStandardOutput(">/dev/full", "out.wav"), {"standard output: No space left on device"});
    EXPECT_EQ(ReadWholeFile(InWork("out.wav")), "the old content");
}

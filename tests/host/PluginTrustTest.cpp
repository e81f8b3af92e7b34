// Plug-in directories that others may write to.
#include <sys/stat.h>
#include <unistd.h>

#include "tests/host/KeloAudio.h"

namespace {

constexpr uid_t kNobody = 65534;

class PluginTrust : public CKeloAudio {
protected:
    PluginTrust() { std::filesystem::copy_file(KELO_PLUGINS "/sndfile.so", Plugin()); }

    std::string Plugin() const { return PluginDirectory() + "/sndfile.so"; }

    void ExpectRefused(const std::string& path, const std::string& reason) const {
        ExpectFailure(RunWithChosen({"list"}), {"keloaudio: " + path + ": plug-ins are not safe there: " + reason,
                                                " (--trust-plugins loads them all the same)"});
        EXPECT_EQ(RunWithChosen({"list", "--trust-plugins"}).m_nExit, 0);
    }

    void ExpectTrusted() const {
        const SRunResult result = RunWithChosen({"list"});
        EXPECT_EQ(result.m_nExit, 0) << result.m_strErr;
    }

    static void SetMode(const std::string& path, mode_t mode) { ASSERT_EQ(chmod(path.c_str(), mode), 0) << path; }
    static void SetOwner(const std::string& path, uid_t user, gid_t group) {
        ASSERT_EQ(chown(path.c_str(), user, group), 0) << path;
    }
};

}  // namespace

TEST_F(PluginTrust, DirectoryOfTheUserAlone) { ExpectTrusted(); }

TEST_F(PluginTrust, DirectoryThatEverybodyWrites) {
    SetMode(PluginDirectory(), 0777);
    ExpectRefused(PluginDirectory(), "everybody may write to it");
}

TEST_F(PluginTrust, StickyDirectoryStillTakesNewPlugins) {
    SetMode(PluginDirectory(), 01777);
    ExpectRefused(PluginDirectory(), "everybody may write to it");
}

TEST_F(PluginTrust, PluginThatEverybodyWrites) {
    SetMode(Plugin(), 0666);
    ExpectRefused(Plugin(), "everybody may write to it");
}

TEST_F(PluginTrust, GroupThatWrites) {
    if (geteuid() != 0) GTEST_SKIP() << "only root gives files to other groups";
    SetOwner(PluginDirectory(), 0, kNobody);
    SetMode(PluginDirectory(), 0775);
    ExpectRefused(PluginDirectory(), "its group may write to it");
    SetOwner(PluginDirectory(), 0, 0);
    ExpectTrusted();
}

TEST_F(PluginTrust, OwnerWhoIsSomebodyElse) {
    if (geteuid() != 0) GTEST_SKIP() << "only root gives files away";
    SetOwner(Plugin(), kNobody, 0);
    ExpectRefused(Plugin(), "it belongs to nobody");
    SetOwner(Plugin(), 0, 0);
    SetOwner(PluginDirectory(), kNobody, 0);
    ExpectRefused(PluginDirectory(), "it belongs to nobody");
}

TEST_F(PluginTrust, DirectoryAboveThatEverybodyWrites) {
    SetMode(m_scratch.Path(), 0777);
    ExpectRefused(m_scratch.Path(), "everybody may write to it");
}

TEST_F(PluginTrust, StickyDirectoryAboveIsLikeTheTemporaryOne) {
    SetMode(m_scratch.Path(), 01777);
    ExpectTrusted();
}

TEST_F(PluginTrust, LinkedPluginIsJudgedWhereItIs) {
    const std::string elsewhere = m_scratch / "elsewhere";
    std::filesystem::create_directory(elsewhere);
    std::filesystem::rename(Plugin(), elsewhere + "/sndfile.so");
    std::filesystem::create_symlink(elsewhere + "/sndfile.so", Plugin());
    ExpectTrusted();
    SetMode(elsewhere, 0777);
    ExpectRefused(elsewhere, "everybody may write to it");
    SetMode(elsewhere, 0755);
    SetMode(elsewhere + "/sndfile.so", 0666);
    ExpectRefused(Plugin(), "everybody may write to it");
}

TEST_F(PluginTrust, EveryLinkOnTheWayIsJudged) {
    if (geteuid() != 0) GTEST_SKIP() << "only root gives files to others";
    const std::string elsewhere = m_scratch / "elsewhere";
    std::filesystem::create_directory(elsewhere);
    std::filesystem::rename(Plugin(), m_scratch / "real.so");
    std::filesystem::create_symlink("../real.so", elsewhere + "/hop.so");
    std::filesystem::create_symlink("../elsewhere/hop.so", Plugin());
    ExpectTrusted();
    SetMode(elsewhere, 0777);
    ExpectRefused(elsewhere, "everybody may write to it");
    SetMode(elsewhere, 01777);
    ExpectTrusted();
    ASSERT_EQ(lchown((elsewhere + "/hop.so").c_str(), kNobody, 0), 0);
    ExpectRefused(elsewhere + "/hop.so", "it belongs to nobody");
}

TEST_F(PluginTrust, LinkToTheDirectoryIsJudgedWhereItIs) {
    const std::string open = m_scratch / "open";
    std::filesystem::create_directory(open);
    std::filesystem::create_directory_symlink(PluginDirectory(), open + "/link");
    EXPECT_EQ(Run({"list", "--plugins", open + "/link"}).m_nExit, 0);
    SetMode(open, 0777);
    ExpectFailure(Run({"list", "--plugins", open + "/link"}), {open + ": plug-ins are not safe there"});
}

TEST_F(PluginTrust, LinkedDirectoryIsJudgedWhereItIs) {
    const std::string link = m_scratch / "link";
    std::filesystem::create_directory_symlink(PluginDirectory(), link);
    EXPECT_EQ(Run({"list", "--plugins", link}).m_nExit, 0);
    SetMode(PluginDirectory(), 0777);
    ExpectFailure(Run({"list", "--plugins", link}), {PluginDirectory() + ": plug-ins are not safe there"});
}

TEST_F(PluginTrust, DirectoryOfTheEnvironmentIsJudgedToo) {
    const auto list = [&](const std::vector<std::string>& options) {
        std::vector<std::string> command = {"env", "KELO_AUDIO_PLUGINS=" + PluginDirectory(), KELOAUDIO, "list"};
        command.insert(command.end(), options.begin(), options.end());
        return RunProgram(command);
    };
    EXPECT_EQ(list({}).m_nExit, 0);
    SetMode(PluginDirectory(), 0777);
    ExpectFailure(list({}), {PluginDirectory() + ": plug-ins are not safe there"});
    EXPECT_EQ(list({"--trust-plugins"}).m_nExit, 0);
}

TEST_F(PluginTrust, EveryCommandThatLoadsPluginsAsks) {
    SetMode(PluginDirectory(), 0777);
    for (const std::vector<std::string>& command :
         {std::vector<std::string>{"convert", kFrontCenter, "out.wav"}, {"info", kFrontCenter}, {"settings"}}) {
        ExpectFailure(RunWithChosen(command), {"plug-ins are not safe there"});
    }
}

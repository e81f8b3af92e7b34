// Plug-in directories that others may write to.
#include <pwd.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>

#include "tests/host/KeloAudio.h"

namespace {

constexpr uid_t kNobody = 65534;

// A user of every Debian system, with a group of his own.
constexpr const char* kUserWithGroup = "games";

// One whose group is that of others.
constexpr const char* kUserOfNogroup = "sync";

// The kernel's form of an access list, linux/posix_acl_xattr.h and acl(5).
struct SAccessList {
    struct SEntry {
        std::uint16_t m_nTag;
        std::uint16_t m_nPermissions;
        std::uint32_t m_nId;
    };

    std::uint32_t m_nVersion = 2;
    SEntry m_entries[5];
};

// What "u::rwx,u:nobody:rwx,g::r-x,m::rwx,o::r-x" stands for.
constexpr SAccessList kNobodyWrites = {2, {{1, 7, ~0U}, {2, 7, kNobody}, {4, 5, ~0U}, {16, 7, ~0U}, {32, 5, ~0U}}};

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

    static SRunResult RunAs(const passwd& user, const std::vector<std::string>& command) {
        std::vector<std::string> words = {
            "setpriv",       "--reuid", std::to_string(user.pw_uid), "--regid", std::to_string(user.pw_gid),
            "--clear-groups"};
        words.insert(words.end(), command.begin(), command.end());
        return RunProgram(words);
    }
    SRunResult ListAs(const passwd& user) const {
        return RunAs(user, {KELOAUDIO, "list", "--plugins", PluginDirectory()});
    }
    bool MayRun(const passwd& user) const {
        return RunAs(user, {"test", "-x", KELOAUDIO, "-a", "-x", PluginDirectory()}).m_nExit == 0;
    }

    // False where the file system has no access lists.
    static bool LetNobodyWrite(const std::string& path) {
        if (setxattr(path.c_str(), "system.posix_acl_access", &kNobodyWrites, sizeof(kNobodyWrites), 0) == 0) {
            return true;
        }
        EXPECT_EQ(errno, ENOTSUP) << path;
        return false;
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

TEST_F(PluginTrust, AccessListThatLetsAnotherUserWrite) {
    for (const std::string& path : {PluginDirectory(), Plugin()}) {
        if (!LetNobodyWrite(path)) GTEST_SKIP() << "no access lists on the file system of " << path;
        ExpectRefused(path, "an access list may let others write to it");
        SetMode(path, 0755);  // its mask: whom the list names may only read
        ExpectTrusted();
    }
}

TEST_F(PluginTrust, GroupOfTheUserAlone) {
    const passwd* const user = getpwnam(kUserWithGroup);
    if (geteuid() != 0 || user == nullptr) GTEST_SKIP() << "only root becomes " << kUserWithGroup;
    SetMode(m_scratch.Path(), 0755);
    if (!MayRun(*user)) GTEST_SKIP() << "the program is for root alone";
    SetMode(PluginDirectory(), 0775);
    SetOwner(PluginDirectory(), user->pw_uid, user->pw_gid);
    const SRunResult trusted = ListAs(*user);
    EXPECT_EQ(trusted.m_nExit, 0) << trusted.m_strErr;
    SetOwner(PluginDirectory(), user->pw_uid, kNobody);
    ExpectFailure(ListAs(*user), {"plug-ins are not safe there: its group may write to it"});
    SetOwner(PluginDirectory(), user->pw_uid, user->pw_gid);
    if (!LetNobodyWrite(PluginDirectory())) GTEST_SKIP() << "no access lists on the file system of the scratch files";
    ExpectFailure(ListAs(*user), {"plug-ins are not safe there: an access list may let others write to it"});
}

// Others have it too.
TEST_F(PluginTrust, GroupOfTheUserThatHasAnotherName) {
    const passwd* const user = getpwnam(kUserOfNogroup);
    if (geteuid() != 0 || user == nullptr) GTEST_SKIP() << "only root becomes " << kUserOfNogroup;
    SetMode(m_scratch.Path(), 0755);
    if (!MayRun(*user)) GTEST_SKIP() << "the program is for root alone";
    SetOwner(PluginDirectory(), user->pw_uid, user->pw_gid);
    const SRunResult trusted = ListAs(*user);
    EXPECT_EQ(trusted.m_nExit, 0) << trusted.m_strErr;
    SetMode(PluginDirectory(), 0775);
    ExpectFailure(ListAs(*user), {"plug-ins are not safe there: its group may write to it"});
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

TEST_F(PluginTrust, StickyDirectoryAboveOfSomebodyElse) {
    if (geteuid() != 0) GTEST_SKIP() << "only root gives files away";
    SetMode(m_scratch.Path(), 01777);
    SetOwner(m_scratch.Path(), kNobody, 0);
    ExpectRefused(m_scratch.Path(), "it belongs to nobody");
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

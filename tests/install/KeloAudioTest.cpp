// An installed keloaudio finds what was installed with it.
#include "tests/install/Installation.h"

namespace {

class InstalledKeloAudio : public Installation {
protected:
    void ExpectInstalledPlugins() const {
        const SRunResult list = KeloAudio({"list"});
        EXPECT_EQ(list.m_nExit, 0) << list.m_strErr;
        const std::vector<std::string> plugins = NamesIn(PluginDirectory());
        EXPECT_THAT(plugins, testing::IsSupersetOf({"sndfile.so", "soxr.so"}));
        for (const std::string& plugin : plugins) EXPECT_THAT(list.m_strOut, testing::HasSubstr(" " + plugin + " "));
    }
};

}  // namespace

TEST_F(InstalledKeloAudio, FindsItsPlugins) { ExpectInstalledPlugins(); }

TEST_F(InstalledKeloAudio, FindsItsPluginsAfterAMove) {
    Move();
    ExpectInstalledPlugins();
}

TEST_F(InstalledKeloAudio, PassesOverAFolderBesideItsOwnThatABuildTreeWouldHave) {
    std::filesystem::create_directory(Prefix() + "/plugins");
    ExpectInstalledPlugins();
}

TEST_F(InstalledKeloAudio, NamesTheInstalledPlaceOfMissingPlugins) {
    std::filesystem::remove_all(PluginDirectory());
    const SRunResult list = KeloAudio({"list"});
    EXPECT_EQ(list.m_nExit, 1);
    EXPECT_THAT(list.m_strErr, testing::HasSubstr(PluginDirectory() + ": No such file or directory"));
}

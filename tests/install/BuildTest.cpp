// Somebody else's host and plug-in, built against an installation outside of this tree.
#include "tests/install/Installation.h"

namespace {

constexpr const char* kName = "Stranger's Decoder";

std::string Quoted(const std::string& text) { return "'" + text + "'"; }

// The parameter says whether the installation is moved before anything is built.
class Stranger : public Installation, public testing::WithParamInterface<bool> {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(Installation::SetUp());
        if (GetParam()) Move();
        std::filesystem::create_directories(Work() + "/plugins");
    }

    std::string Work() const { return m_scratch / "work"; }

    static void Run(const std::vector<std::string>& command) {
        const SRunResult result = RunProgram(command);
        ASSERT_EQ(result.m_nExit, 0) << result.m_strOut << result.m_strErr;
    }

    // Runs a line of the shell that finds the installation's pkg-config files.
    void RunLine(const std::string& line) const {
        Run({"/bin/bash", "-c",
             "export PKG_CONFIG_PATH=" + Quoted(LibraryDirectory() + "/pkgconfig") +
                 "; " KELO_COMPILER " " KELO_FLAGS " " + line});
    }

    void ExpectListedByBothHosts() const {
        const SRunResult own = RunProgram({Work() + "/list_host", Work() + "/plugins"});
        EXPECT_EQ(own.m_nExit, 0) << own.m_strErr;
        EXPECT_EQ(own.m_strOut, std::string(kName) + "\n");
        const SRunResult list = KeloAudio({"list", "--plugins", Work() + "/plugins"});
        EXPECT_EQ(list.m_nExit, 0) << list.m_strErr;
        EXPECT_THAT(list.m_strOut, testing::HasSubstr(kName));
    }

    // A "u" instead of a "T" would be a symbol that is unique in the process.
    void ExpectOnlyEntrySymbols() const {
        const SRunResult symbols =
            RunProgram({"/bin/bash", "-c",
                        KELO_NM " --dynamic --defined-only --format=posix " +
                            Quoted(Work() + "/plugins/strangers_decoder.so") + " | cut --delimiter=' ' --fields=1,2"});
        EXPECT_EQ(symbols.m_strOut, "KELO_PLUGIN_GetPrimaryAudioObject T\nKELO_PLUGIN_ReadyToFinish T\n");
    }
};

}  // namespace

TEST_P(Stranger, BuildsWithCMake) {
    ASSERT_NO_FATAL_FAILURE(
        Run({KELO_CMAKE, "-S", KELO_FIXTURES, "-B", Work(), "-G", KELO_GENERATOR, "-DCMAKE_PREFIX_PATH=" + Prefix(),
             "-DCMAKE_CXX_COMPILER=" KELO_COMPILER, "-DCMAKE_CXX_FLAGS=" KELO_FLAGS, "-DCMAKE_BUILD_TYPE=Debug"}));
    ASSERT_NO_FATAL_FAILURE(Run({KELO_CMAKE, "--build", Work()}));
    EXPECT_EQ(ReadWholeFile(Work() + "/plugin-directory"), PluginDirectory());
    ExpectListedByBothHosts();
    ExpectOnlyEntrySymbols();
}

TEST_P(Stranger, BuildsWithPkgConfig) {
    ASSERT_NO_FATAL_FAILURE(RunLine("-std=c++17 '" KELO_FIXTURES "/StrangersDecoder.cpp' "
                                    "$(pkg-config --cflags --libs keloaudiopluginmgr-plugin) -o " +
                                    Quoted(Work() + "/plugins/strangers_decoder.so")));
    ASSERT_NO_FATAL_FAILURE(RunLine("-std=c++14 '" KELO_FIXTURES
                                    "/ListHost.cpp' $(pkg-config --cflags --libs keloaudiopluginmgr) "
                                    "-Wl,-rpath,$(pkg-config --variable=libdir keloaudiopluginmgr) -o " +
                                    Quoted(Work() + "/list_host")));
    ExpectListedByBothHosts();
    ExpectOnlyEntrySymbols();
}

INSTANTIATE_TEST_SUITE_P(Installed, Stranger, testing::Bool(),
                         [](const auto& test) { return test.param ? "AndMoved" : "WhereItIs"; });

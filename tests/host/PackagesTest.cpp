// cmake/packages.sh with stand-ins for the package tools.
#include <gtest/gtest.h>

#include "tests/host/RunProgram.h"

namespace {

class Packages : public testing::Test {
protected:
    Packages() {
        std::filesystem::create_directory(m_scratch.Path() / "bin");
        WriteDpkgQuery("installed\\n");
        WriteTool("apt-get", "echo \"${DEBIAN_FRONTEND-} apt-get $*\" >>" + m_scratch / "calls");
        WriteTool("id", "echo 1000");
    }

    void WriteTool(const std::string& name, const std::string& body) const {
        const std::string path = m_scratch.Write("bin/" + name, "#!/bin/bash\n" + body + "\n");
        std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    }

    // Says the states, one for each architecture, of packages whose name begins with "have" and knows no others. Like
    // the real tool it prints the line breaks that its format asks for and no more.
    void WriteDpkgQuery(const std::string& states) const {
        WriteTool("dpkg-query", "[[ ${!#} == have* ]] || exit 1; states='" + states +
                                    "'; [[ \"$*\" == *'Status}\\n'* ]] || states=${states//'\\n'}; printf \"$states\"");
    }

    // Requires the packages and says "done" afterwards, with nothing but the stand-ins on the path.
    SRunResult Require(const std::string& packages) const {
        const std::string script = "unset DEBIAN_FRONTEND; set -euo pipefail; source '" KELO_SOURCE_DIR
                                   "/cmake/packages.sh'; PATH=" +
                                   m_scratch / "bin" + "; require_packages " + packages + "; echo done";
        return RunProgram({"/bin/bash", "-c", script});
    }

    std::string Calls() const { return ReadWholeFile(m_scratch / "calls"); }

    CScratchDirectory m_scratch;
};

}  // namespace

TEST_F(Packages, NothingMissingRunsNothing) {
    const SRunResult result = Require("have-one have-two");
    EXPECT_EQ(result.m_nExit, 0) << result.m_strErr;
    EXPECT_EQ(result.m_strOut, "done\n");
    EXPECT_EQ(result.m_strErr, "");
    EXPECT_EQ(Calls(), "");
}

TEST_F(Packages, OneInstalledArchitectureIsEnough) {
    for (const char* const states :
         {"installed\\ninstalled\\n", "config-files\\ninstalled\\n", "installed\\nnot-installed\\n"}) {
        SCOPED_TRACE(states);
        WriteDpkgQuery(states);
        EXPECT_EQ(Require("have-one").m_strOut, "done\n");
    }
    EXPECT_EQ(Calls(), "");
}

TEST_F(Packages, StatesThatOnlyContainTheWordAreMissing) {
    for (const char* const states : {"not-installed\\n", "half-installed\\nnot-installed\\n", "config-files\\n", ""}) {
        SCOPED_TRACE(states);
        WriteDpkgQuery(states);
        EXPECT_EQ(Require("have-one").m_nExit, 1);
    }
}

TEST_F(Packages, WithoutRootPrintsTheLineToRunAndStops) {
    const SRunResult result = Require("have-one lacks-one lacks-two");
    EXPECT_EQ(result.m_nExit, 1);
    EXPECT_EQ(result.m_strOut, "");
    const std::string line =
        "\nsudo apt-get update && sudo apt-get install -y --no-install-recommends lacks-one lacks-two\n";
    EXPECT_NE(result.m_strErr.find(line), std::string::npos) << result.m_strErr;
    EXPECT_EQ(Calls(), "");
}

TEST_F(Packages, RootInstallsWhatIsMissing) {
    WriteTool("id", "echo 0");
    const SRunResult result = Require("have-one lacks-one lacks-two");
    EXPECT_EQ(result.m_nExit, 0) << result.m_strErr;
    EXPECT_EQ(Calls(),
              " apt-get update\n"
              "noninteractive apt-get install -y --no-install-recommends lacks-one lacks-two\n");
}

TEST_F(Packages, FailedInstallationStopsTheScript) {
    WriteTool("id", "echo 0");
    WriteTool("apt-get", "exit 100");
    const SRunResult result = Require("lacks-one");
    EXPECT_EQ(result.m_nExit, 100);
    EXPECT_EQ(result.m_strOut, "");
}

TEST_F(Packages, SystemWithoutThePackageToolsIsTold) {
    std::filesystem::remove(m_scratch / "bin/dpkg-query");
    const SRunResult result = Require("lacks-one");
    EXPECT_EQ(result.m_nExit, 1);
    EXPECT_NE(result.m_strErr.find("lacks-one"), std::string::npos) << result.m_strErr;
    EXPECT_EQ(Calls(), "");
}

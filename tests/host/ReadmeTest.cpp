// The program in the README compiles as it stands and works.
#include <gtest/gtest.h>

#include "tests/host/RunProgram.h"

namespace {

// The first C++ block of the README.
std::string ReadmeProgram() {
    const std::string text = ReadWholeFile(KELO_SOURCE_DIR "/README.md");
    const std::string opening = "```cpp\n";
    const std::size_t begin = text.find(opening);
    const std::size_t end = text.find("```\n", begin + opening.size());
    if (begin == std::string::npos || end == std::string::npos) return "";
    return text.substr(begin + opening.size(), end - begin - opening.size());
}

std::string Quoted(const std::string& text) { return "'" + text + "'"; }

}  // namespace

TEST(Readme, ProgramCompilesAndCountsTheBytesOfTheWantedFormat) {
    const CScratchDirectory scratch;
    const std::string source = scratch.Write("host.cpp", ReadmeProgram());
    const std::string program = scratch / "host";
    const std::string command = std::string(KELO_COMPILER) + " -std=c++14 -Wall -Wextra -Werror -I" +
                                Quoted(KELO_SOURCE_DIR) + " " + Quoted(source) + " -L" + Quoted(KELO_LIBRARY_DIR) +
                                " -lKeloAudioPluginMgr -Wl,-rpath," + Quoted(KELO_LIBRARY_DIR) + " -o " +
                                Quoted(program);
    const SRunResult compiled = RunProgram({"/bin/bash", "-c", command});
    ASSERT_EQ(compiled.m_nExit, 0) << compiled.m_strErr;

    // 68545 frames at 48 kHz already, one channel made two: 4 bytes each.
    const SRunResult run = RunProgram({program, KELO_PLUGINS, "/usr/share/sounds/alsa/Front_Center.wav"});
    EXPECT_EQ(run.m_nExit, 0) << run.m_strErr;
    EXPECT_EQ(run.m_strOut, "274180 bytes\n");
}

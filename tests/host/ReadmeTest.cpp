// The program in the README compiles as it stands and works.
#include <gtest/gtest.h>

#include <algorithm>

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

class Readme : public testing::Test {
protected:
    Readme() {
        std::filesystem::create_directory(m_scratch.Path() / "plugins");
        std::filesystem::create_symlink(KELO_FIXTURES "/ScriptedDecoder.so", m_scratch / "plugins/ScriptedDecoder.so");
        for (const std::string name : {"sndfile.so", "soxr.so"}) {
            std::filesystem::create_symlink(KELO_PLUGINS "/" + name, m_scratch / ("plugins/" + name));
        }
    }

    void Compile() const {
        const std::string source = m_scratch.Write("host.cpp", ReadmeProgram());
        const std::string command = std::string(KELO_COMPILER) + " -std=c++14 -Wall -Wextra -Werror -I" +
                                    Quoted(KELO_SOURCE_DIR) + " " + Quoted(source) + " -L" + Quoted(KELO_LIBRARY_DIR) +
                                    " -lKeloAudioPluginMgr -Wl,-rpath," + Quoted(KELO_LIBRARY_DIR) + " -o " +
                                    Quoted(m_scratch / "host");
        const SRunResult compiled = RunProgram({"/bin/bash", "-c", command});
        ASSERT_EQ(compiled.m_nExit, 0) << compiled.m_strErr;
    }

    SRunResult Host(const std::string& sound) const {
        return RunProgram({m_scratch / "host", m_scratch / "plugins", sound});
    }

    CScratchDirectory m_scratch;
};

// The samples of a canonical WAV file, each one twice.
std::string DoubledSamples(const std::string& path) {
    const std::string content = ReadWholeFile(path);
    const std::size_t begin = content.find("data") + 8;
    std::string doubled;
    for (std::size_t i = begin; i + 1 < content.size(); i += 2) doubled += content.substr(i, 2) + content.substr(i, 2);
    return doubled;
}

}  // namespace

TEST_F(Readme, ProgramHasTheNumberOfLinesInItsTitle) {
    const std::string program = ReadmeProgram();
    const std::size_t begin = program.find("int main(");
    ASSERT_NE(begin, std::string::npos);
    EXPECT_EQ(std::count(program.begin() + static_cast<std::ptrdiff_t>(begin), program.end(), '\n'), 20);
    const std::string readme = ReadWholeFile(KELO_SOURCE_DIR "/README.md");
    EXPECT_NE(readme.find("\n## A host in twenty lines\n"), std::string::npos);
}

TEST_F(Readme, ProgramCompilesAndDeliversTheWantedFormat) {
    Compile();
    // 48 kHz already; the one channel becomes two.
    const std::string sound = "/usr/share/sounds/alsa/Front_Center.wav";
    const SRunResult run = Host(sound);
    EXPECT_EQ(run.m_nExit, 0) << run.m_strErr;
    EXPECT_EQ(run.m_strOut.size(), 274180u);
    EXPECT_TRUE(run.m_strOut == DoubledSamples(sound));
}

TEST_F(Readme, ProgramTellsAFailedReadFromTheEnd) {
    Compile();
    for (const std::string script : {"status", "shortstatus", "failsread", "noend", "nostart"}) {
        SCOPED_TRACE(script);
        EXPECT_EQ(Host(m_scratch.Write("in." + script, "x")).m_nExit, 1);
    }
    EXPECT_EQ(Host(m_scratch.Write("in.lateblock", "x")).m_nExit, 0);
    EXPECT_EQ(Host(m_scratch / "missing.wav").m_nExit, 1);
}

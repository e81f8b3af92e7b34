// keloaudio under test, run inside a scratch directory.
#pragma once

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tests/host/RunProgram.h"

constexpr const char* kFrontCenter = "/usr/share/sounds/alsa/Front_Center.wav";
constexpr const char* kComplete = "/usr/share/sounds/freedesktop/stereo/complete.oga";

// A working directory, a plug-in directory beside it for what a test chooses, and another with the plug-ins on
// libsndfile and soxr.
class CKeloAudio : public testing::Test {
protected:
    CKeloAudio() {
        // What others may write to is no place for plug-ins, whatever the mask of the person who runs the tests.
        umask(022);
        for (const char* const name : {"work", "plugins", "sound"}) {
            std::filesystem::create_directory(m_scratch.Path() / name);
        }
        for (const std::string name : {"sndfile.so", "soxr.so"}) {
            CopyPlugin(KELO_PLUGINS "/" + name, SoundPluginDirectory());
        }
    }

    std::string WorkDirectory() const { return m_scratch / "work"; }
    std::string PluginDirectory() const { return m_scratch / "plugins"; }
    std::string SoundPluginDirectory() const { return m_scratch / "sound"; }
    std::string InWork(const std::string& name) const { return m_scratch / ("work/" + name); }

    // Plug-ins of the build tree are copied into the plug-in directory, by file name.
    void UsePlugin(const std::string& directory, const std::string& name) const {
        CopyPlugin(directory + "/" + name, PluginDirectory());
    }
    void UseFixture(const std::string& name) const { UsePlugin(KELO_FIXTURES, name); }

    // With the plug-ins that the program finds by itself.
    SRunResult RunPlain(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), KELOAUDIO);
        return RunProgram(arguments, WorkDirectory());
    }

    // With the plug-ins on libsndfile and soxr, unless the arguments name a directory or no command takes one.
    SRunResult Run(std::vector<std::string> arguments) const {
        const auto namesPlugins = [](const std::string& argument) { return argument.rfind("--plugins", 0) == 0; };
        const bool command = !arguments.empty() && arguments.front().front() != '-' && arguments.front() != "play";
        if (command && std::none_of(arguments.begin(), arguments.end(), namesPlugins)) {
            arguments.insert(arguments.end(), {"--plugins", SoundPluginDirectory()});
        }
        return RunPlain(std::move(arguments));
    }

    // With the plug-ins that the test chose.
    SRunResult RunWithChosen(std::vector<std::string> arguments) const {
        arguments.insert(arguments.end(), {"--plugins", PluginDirectory()});
        return Run(std::move(arguments));
    }

    // The last line of a successful conversion's output begins with the output's name and holds `text`.
    static void ExpectConverted(const SRunResult& result, const std::string& text) {
        EXPECT_EQ(result.m_nExit, 0);
        EXPECT_EQ(result.m_strErr, "");
        EXPECT_NE(result.m_strOut.find(text), std::string::npos) << result.m_strOut;
    }

    static void ExpectFailure(const SRunResult& result, const std::vector<std::string>& words, int status = 1) {
        EXPECT_EQ(result.m_nExit, status);
        EXPECT_EQ(result.m_strOut, "");
        EXPECT_TRUE(IsOneLine(result.m_strErr)) << result.m_strErr;
        EXPECT_EQ(result.m_strErr.rfind("keloaudio: ", 0), 0u) << result.m_strErr;
        for (const std::string& word : words) {
            EXPECT_NE(result.m_strErr.find(word), std::string::npos) << word << " is not in " << result.m_strErr;
        }
    }

    // Fails with these words, once without an output and once over an existing one; neither run leaves a trace.
    void ExpectCleanFailure(const std::string& input, const std::string& output, const std::vector<std::string>& words,
                            std::vector<std::string> options = {}) const {
        options.insert(options.begin(), {"convert", input, output});
        const std::vector<std::string> before = NamesIn(WorkDirectory());
        ExpectFailure(Run(options), words);
        EXPECT_EQ(NamesIn(WorkDirectory()), before);
        const std::string existing = m_scratch.Write("work/" + output, "the old content");
        ExpectFailure(Run(options), words);
        EXPECT_EQ(ReadWholeFile(existing), "the old content");
        std::filesystem::remove(existing);
        EXPECT_EQ(NamesIn(WorkDirectory()), before);
    }

    CScratchDirectory m_scratch;

private:
    // A link would lead through the build tree, whose owner the program under test need not trust.
    static void CopyPlugin(const std::filesystem::path& plugin, const std::string& directory) {
        const std::filesystem::path copy = directory / plugin.filename();
        std::filesystem::copy_file(plugin, copy);
        std::filesystem::permissions(copy, std::filesystem::perms(0755));
    }
};

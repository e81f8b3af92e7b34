// convert --json for one file, and for a batch that is interrupted.
#include <signal.h>

#include <nlohmann/json.hpp>

#include "tests/host/KeloAudio.h"

namespace {

class JsonReport : public CKeloAudio {
protected:
    // Interrupts the run when the decoder of this file is at work.
    SRunResult Interrupted(const std::string& input, std::vector<std::string> arguments) const {
        UseFixture("ScriptedDecoder.so");
        UsePlugin(KELO_PLUGINS, "sndfile.so");
        arguments.insert(arguments.begin(), {KELOAUDIO, "convert", "--json", "--plugins", PluginDirectory()});
        CRunningProgram program(arguments, WorkDirectory());
        EXPECT_TRUE(WaitUntil([&] { return std::filesystem::exists(InWork(input + ".reached")); }));
        program.Signal(SIGTERM);
        return program.Wait();
    }
};

}  // namespace

TEST_F(JsonReport, TellsWhatOneFileBecame) {
    const SRunResult result = Run({"convert", kFrontCenter, "out.wav", "--bits", "24", "--json"});
    EXPECT_EQ(result.m_nExit, 0) << result.m_strErr;
    const nlohmann::json report = nlohmann::json::parse(result.m_strOut);
    EXPECT_EQ(report.at("input"), kFrontCenter);
    EXPECT_EQ(report.at("output"), "out.wav");
    EXPECT_EQ(report.at("status"), "converted");
    EXPECT_EQ(report.at("source").at("bits"), 16);
    EXPECT_EQ(report.at("target").at("bits"), 24);
    EXPECT_EQ(report.at("target").at("frames"), 68545);
    EXPECT_EQ(report.at("clippedSamples"), 0);
    EXPECT_FALSE(report.contains("failure"));
}

TEST_F(JsonReport, TellsWhyOneFileFailed) {
    m_scratch.Write("work/empty.wav", "");
    const SRunResult result = Run({"convert", "empty.wav", "out.wav", "--json"});
    EXPECT_EQ(result.m_nExit, 1);
    EXPECT_EQ(result.m_strErr, "keloaudio: empty.wav: the file is empty\n");
    const nlohmann::json report = nlohmann::json::parse(result.m_strOut);
    EXPECT_EQ(report, (nlohmann::json{{"input", "empty.wav"},
                                      {"output", "out.wav"},
                                      {"status", "failed"},
                                      {"failure", "empty.wav: the file is empty"}}));
}

TEST_F(JsonReport, TellsThatOneFileWasInterrupted) {
    m_scratch.Write("work/in.tells", "x");
    const SRunResult result = Interrupted("in.tells", {"in.tells", "out.wav"});
    EXPECT_EQ(result.m_nExit, 128 + SIGTERM);
    EXPECT_EQ(result.m_strErr, "keloaudio: out.wav: interrupted, nothing is written\n");
    const nlohmann::json report = nlohmann::json::parse(result.m_strOut);
    EXPECT_EQ(report.at("status"), "interrupted");
    EXPECT_EQ(report.at("failure"), "out.wav: interrupted, nothing is written");
}

TEST_F(JsonReport, TellsWhatAnInterruptedBatchDid) {
    std::filesystem::create_directory(InWork("in"));
    for (const std::string name : {"a.wide", "b.tells", "c.wide"}) m_scratch.Write("work/in/" + name, "x");
    const SRunResult result = Interrupted("in/b.tells", {"-r", "in", "--to", "wav", "--out-dir", "out", "--jobs", "1"});
    EXPECT_EQ(result.m_nExit, 128 + SIGTERM);
    EXPECT_EQ(result.m_strErr, "keloaudio: interrupted: 1 of 3 files converted\n");
    const nlohmann::json report = nlohmann::json::parse(result.m_strOut);
    EXPECT_EQ(report.at("interrupted"), true);
    EXPECT_EQ(report.at("converted"), 1);
    std::vector<std::string> states;
    for (const nlohmann::json& file : report.at("files")) states.push_back(file.at("status"));
    EXPECT_EQ(states, (std::vector<std::string>{"converted", "interrupted", "planned"}));
}

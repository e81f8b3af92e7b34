// Plug-ins that throw objects of their own types: their code must still be there when these are read.
#include "tests/host/KeloAudio.h"
#include "tests/support/ProcessState.h"

namespace {

class ForeignException : public CKeloAudio {
protected:
    // The sound plug-ins are there as well.
    void ExpectFault(const std::string& fixture, const std::string& input,
                     const std::vector<std::string>& words) const {
        UseFixture(fixture);
        UsePlugin(KELO_PLUGINS, "sndfile.so");
        const std::string path = m_scratch.Write("work/" + input, "x");
        ExpectFailure(RunWithChosen({"convert", input, "out.wav"}), words);
        EXPECT_EQ(NamesIn(WorkDirectory()), std::vector<std::string>{input});
    }

    void ExpectListFault(const std::string& fixture, const std::vector<std::string>& words) const {
        UseFixture(fixture);
        ExpectFailure(RunWithChosen({"list"}), words);
    }

    std::string InList(const std::string& fixture, const std::string& words) const {
        return "keloaudio: " + PluginDirectory() + "/" + fixture + ": threw: " + words;
    }
};

// What the manager holds when a plug-in throws while it loads or unloads stays allocated, and the creation lock locked,
// to the process's end, so the sanitizers, where there are any, are told to be quiet.
class ForeignExceptionLeft : public ForeignException {
private:
    CScopedVariable m_leakOptions{"LSAN_OPTIONS", "detect_leaks=0"};
    CScopedVariable m_threadOptions{"TSAN_OPTIONS", "report_destroy_locked=0"};
};

}  // namespace

TEST_F(ForeignException, WithWordsWhileReading) {
    ExpectFault("ScriptedDecoder.so", "in.throwsown",
                {"keloaudio: in.throwsown: the decoder throws its own (asked: Scripted Decoder"});
}

TEST_F(ForeignException, WithoutWordsWhileReading) {
    ExpectFault("ScriptedDecoder.so", "in.throwswordless",
                {"keloaudio: in.throwswordless: an exception of type ", "CWordlessTrouble (asked: Scripted Decoder"});
}

TEST_F(ForeignException, FromTheNameOfADecoder) {
    ExpectListFault("ThrowsFromGetName.so", {InList("ThrowsFromGetName.so", "no name comes to mind")});
}

TEST_F(ForeignException, FromTheExtensionsInAList) {
    ExpectListFault("ThrowsFromGetAt.so", {InList("ThrowsFromGetAt.so", "an exception of type "), "CWordlessTrouble"});
}

TEST_F(ForeignException, FromTheExtensionsInTheSearchForADecoder) {
    ExpectFault("ThrowsFromGetAt.so", "in.xyz", {"keloaudio: in.xyz: an exception of type ", "CWordlessTrouble"});
}

TEST_F(ForeignExceptionLeft, WhileLoadingNamesThePluginDirectory) {
    ExpectFault("ThrowsFromInitialize.so", "in.xyz", {"keloaudio: " + PluginDirectory() + ": no start is possible"});
}

TEST_F(ForeignException, WhileLoadingForAListNamesThePlugin) {
    ExpectListFault("ThrowsFromInitialize.so", {InList("ThrowsFromInitialize.so", "no start is possible")});
}

TEST_F(ForeignExceptionLeft, WhileUnloadingComesTooLateToFail) {
    UseFixture("ThrowsFromTerminate.so");
    UsePlugin(KELO_PLUGINS, "sndfile.so");
    ExpectConverted(RunWithChosen({"convert", kFrontCenter, "out.wav"}), "out.wav: 48000 Hz");
}

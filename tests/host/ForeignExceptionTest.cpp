// Plug-ins that throw objects of their own types: their code must still be there when these are read.
#include "tests/host/KeloAudio.h"

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
    ExpectListFault("ThrowsFromGetName.so", {"keloaudio: " + PluginDirectory() + ": no name comes to mind"});
}

TEST_F(ForeignException, FromTheExtensionsInAList) {
    ExpectListFault("ThrowsFromGetAt.so",
                    {"keloaudio: " + PluginDirectory() + ": an exception of type ", "CWordlessTrouble"});
}

TEST_F(ForeignException, FromTheExtensionsInTheSearchForADecoder) {
    ExpectFault("ThrowsFromGetAt.so", "in.xyz", {"keloaudio: in.xyz: an exception of type ", "CWordlessTrouble"});
}

TEST_F(ForeignException, WhileLoadingNamesThePluginDirectory) {
    ExpectFault("ThrowsFromInitialize.so", "in.xyz", {"keloaudio: " + PluginDirectory() + ": no start is possible"});
}

TEST_F(ForeignException, WhileLoadingForAListNamesThePluginDirectory) {
    ExpectListFault("ThrowsFromInitialize.so", {"keloaudio: " + PluginDirectory() + ": no start is possible"});
}

TEST_F(ForeignException, WhileUnloadingComesTooLateToFail) {
    UseFixture("ThrowsFromTerminate.so");
    UsePlugin(KELO_PLUGINS, "sndfile.so");
    ExpectConverted(RunWithChosen({"convert", kFrontCenter, "out.wav"}), "out.wav: 48000 Hz");
}

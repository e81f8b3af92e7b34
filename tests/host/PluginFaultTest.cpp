// Plug-ins that fail in one way each.
#include <stdlib.h>

#include "tests/host/KeloAudio.h"

namespace {

class PluginFault : public CKeloAudio {
protected:
    PluginFault() {
        UseFixture("ScriptedDecoder.so");
        UsePlugin(KELO_PLUGINS, "sndfile.so");
    }

    SRunResult ConvertScript(const std::string& script, const std::string& output = "out.wav") const {
        m_scratch.Write("work/in." + script, "x");
        return RunWithChosen({"convert", "in." + script, output});
    }

    void ExpectFault(const std::string& script, const std::string& words) const {
        ExpectFailure(ConvertScript(script), {"keloaudio: in." + script + ": " + words});
        EXPECT_EQ(NamesIn(WorkDirectory()), std::vector<std::string>{"in." + script});
    }
};

}  // namespace

TEST_F(PluginFault, ExceptionWhileReading) { ExpectFault("throws", "the decoder throws"); }

TEST_F(PluginFault, FailedReadNamesTheDecodersAsked) {
    for (const std::string script :
         {"throws", "nomemory", "nothing", "overcounts", "status", "nostart", "badformat", "noend", "refuses"}) {
        SCOPED_TRACE(script);
        ExpectFault(script, "");
        EXPECT_NE(ConvertScript(script).m_strErr.find(" (asked: Scripted Decoder"), std::string::npos);
        std::filesystem::remove(InWork("in." + script));
    }
}

TEST_F(PluginFault, ReadThatFailsWithoutAWord) {
    ExpectFault("failsread", "reading failed: its decoder tells no reason (asked: Scripted Decoder");
}

TEST_F(PluginFault, StatusBesideTheEndIsAFailure) { ExpectFault("status", "reading failed: the sound breaks off"); }

TEST_F(PluginFault, StatusBesideBytesIsAFailure) { ExpectFault("shortstatus", "reading failed: the sound breaks off"); }

TEST_F(PluginFault, ShortMemoryWhileReading) { ExpectFault("nomemory", "not enough memory"); }

TEST_F(PluginFault, EmptyReadsWithoutEnd) { ExpectFault("nothing", "its decoder delivers nothing and does not end"); }

TEST_F(PluginFault, MoreBytesThanAsked) {
    ExpectFault("overcounts", "its decoder counts more bytes than it was asked");
}

TEST_F(PluginFault, RefusalOfSeveralLines) { ExpectFault("refuses", "two lines?of refusal (asked: Scripted Decoder"); }

TEST_F(PluginFault, FailedStart) { ExpectFault("nostart", "Input/output error"); }

TEST_F(PluginFault, ImpossibleFormat) { ExpectFault("badformat", "its decoder tells an impossible format: 0 Hz"); }

TEST_F(PluginFault, FailedEnd) { ExpectFault("noend", "ending failed: the end does not come"); }

TEST_F(PluginFault, DecoderThatCannotBeWrappedConvertsNothing) {
    UsePlugin(KELO_PLUGINS, "soxr.so");
    m_scratch.Write("work/in.loner", "x");
    ExpectFailure(RunWithChosen({"convert", "in.loner", "out.wav", "--rate", "48000"}),
                  {"keloaudio: in.loner: its decoder does not work as a converting source (asked: Scripted Decoder"});
    EXPECT_EQ(NamesIn(WorkDirectory()), std::vector<std::string>{"in.loner"});
}

TEST_F(PluginFault, DecoderThatCannotBeWrappedIsReadAsItIs) {
    ExpectConverted(ConvertScript("loner"), "out.wav: 44100 Hz, 16 bits, 2 channels, 100 frames");
}

TEST_F(PluginFault, BytesBesideANonzeroStateAreNotTheEnd) {
    ExpectConverted(ConvertScript("lateblock"), "out.wav: 44100 Hz, 16 bits, 2 channels, 300 frames");
}

TEST_F(PluginFault, EarlyEndIsWorthAWordButNoFailure) {
    const SRunResult result = ConvertScript("short");
    EXPECT_EQ(result.m_nExit, 0);
    EXPECT_EQ(result.m_strErr, "keloaudio: in.short: ended early: 44100 frames announced, about 100 delivered\n");
    EXPECT_EQ(NamesIn(WorkDirectory()), (std::vector<std::string>{"in.short", "out.wav"}));
}

TEST_F(PluginFault, ConvertorThatFailsInMidstream) {
    UseFixture("FailingConvertor.so");
    ExpectFailure(RunWithChosen({"convert", kFrontCenter, "out.wav", "--bits", "24"}),
                  {"Front_Center.wav: reading failed: the convertor is out of order (asked: "});
    EXPECT_EQ(NamesIn(WorkDirectory()), std::vector<std::string>{});
}

TEST_F(PluginFault, ConvertorThatFailsInItsTail) {
    UseFixture("FailingConvertor.so");
    ExpectFailure(RunWithChosen({"convert", kFrontCenter, "out.wav", "--bits", "32"}),
                  {"Front_Center.wav: reading failed: the convertor is out of order (asked: "});
    EXPECT_EQ(NamesIn(WorkDirectory()), std::vector<std::string>{});
}

TEST_F(PluginFault, ConvertorThatFailsOnTheWayToTheEncodersWidth) {
    UseFixture("FailingConvertor.so");
    ExpectFailure(ConvertScript("endlesswide", "out.flac"),
                  {"in.endlesswide: reading failed: the convertor is out of order"});
    EXPECT_EQ(NamesIn(WorkDirectory()), std::vector<std::string>{"in.endlesswide"});
}

TEST_F(PluginFault, DecoderWithoutANameOrAnExtension) {
    UseFixture("NamelessDecoder.so");
    ExpectFault("refuses", "two lines?of refusal (asked: ");
    EXPECT_NE(ConvertScript("refuses").m_strErr.find("(no name)"), std::string::npos);
    const std::string list = RunWithChosen({"list"}).m_strOut;
    EXPECT_NE(list.find("NamelessDecoder.so 0  -\n    extensions    nameless\n"), std::string::npos) << list;
}

TEST_F(PluginFault, EncoderWithoutATargetFactory) {
    UseFixture("FactorylessEncoder.so");
    ExpectFailure(RunWithChosen({"convert", kFrontCenter, "out.nofactory"}),
                  {"out.nofactory: its encoder has no target factory"});
    EXPECT_EQ(NamesIn(WorkDirectory()), std::vector<std::string>{});
}

TEST_F(PluginFault, ConversionLeavesTheFactoryItsReferences) {
    UseFixture("CountedConvertor.so");
    const std::string counts = m_scratch / "counts";
    setenv("KELO_TEST_COUNT_FILE", counts.c_str(), 1);
    ExpectConverted(ConvertScript("wide", "out.flac"), "out.flac: 44100 Hz, 24 bits, 2 channels, 100 frames");
    EXPECT_EQ(ReadWholeFile(counts), "1 references, 1 convertors made");
}

TEST_F(PluginFault, PlainCopyLeavesTheFactoryItsReferences) {
    UseFixture("CountedConvertor.so");
    const std::string counts = m_scratch / "counts";
    setenv("KELO_TEST_COUNT_FILE", counts.c_str(), 1);
    ExpectConverted(ConvertScript("wide"), "out.wav: 44100 Hz, 32 bits, 2 channels, 100 frames");
    EXPECT_EQ(ReadWholeFile(counts), "1 references, 0 convertors made");
}

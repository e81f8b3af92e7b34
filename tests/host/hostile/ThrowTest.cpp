// keloaudio info and convert with plug-ins that throw from one operation: one line names what was at work.
#include "tests/host/hostile/HostileFixture.h"
#include "tests/host/hostile/MarkedSound.h"

namespace {

struct SThrow {
    const char* m_szOperation;
    // What is said after "keloaudio: " at least.
    const char* m_szSaid;
    std::vector<std::string> m_vOptions = {};
};

class ThrowingPlugin : public CBesideHostile {
protected:
    ThrowingPlugin() { m_scratch.Write("work/in.wav", MarkedSound()); }

    static std::string NameOf(const SThrow& thrown) { return std::string("ThrowsIntIn") + thrown.m_szOperation; }

    void ExpectReported(std::vector<std::string> arguments, const SThrow& thrown) const {
        SCOPED_TRACE(thrown.m_szOperation);
        arguments.insert(arguments.end(), thrown.m_vOptions.begin(), thrown.m_vOptions.end());
        ExpectFailure(RunWithChosen(arguments), {std::string("keloaudio: ") + thrown.m_szSaid});
        EXPECT_EQ(NamesIn(WorkDirectory()), std::vector<std::string>{"in.wav"});
        std::filesystem::remove(PluginDirectory() + "/" + NameOf(thrown) + ".so");
    }

    void ExpectHostileReported(const std::vector<std::string>& arguments, const std::vector<SThrow>& all) const {
        for (const SThrow& thrown : all) {
            UseHostile(NameOf(thrown));
            ExpectReported(arguments, thrown);
        }
    }
};

constexpr const char* kOfTheSource = "in.wav: an exception of type int (asked: Fixture; plug-ins from ";
constexpr const char* kOfTheOutput = "out.wav: an exception of type int\n";

}  // namespace

TEST_F(ThrowingPlugin, IsReportedByInfoWithTheSource) {
    ExpectHostileReported({"info", "in.wav"}, {{"QueryInterface", "in.wav: an exception of type int\n"},
                                               {"GetAuxFlags", kOfTheSource},
                                               {"Open", "in.wav: no decoder opened it (asked: Fixture; "},
                                               {"GetRawFormat", kOfTheSource},
                                               {"GetDataLength", kOfTheSource},
                                               {"GetTitle", kOfTheSource},
                                               {"GetArtist", kOfTheSource},
                                               {"GetAlbum", kOfTheSource},
                                               {"GetYear", kOfTheSource},
                                               {"GetGenre", kOfTheSource},
                                               {"GetIndexNumber", kOfTheSource},
                                               {"GetIndex", kOfTheSource},
                                               {"GetSourceName", kOfTheSource}});
}

TEST_F(ThrowingPlugin, IsReportedWhereAConvertorTakesAdvancedFormats) {
    UseHostileConvertor("Harmless");
    ExpectHostileReported({"info", "in.wav"}, {{"GetAdvancedFormat", kOfTheSource}});
}

TEST_F(ThrowingPlugin, IsReportedByConvertWithTheSource) {
    ExpectHostileReported({"convert", "in.wav", "out.wav"},
                          {{"GetTitle", kOfTheSource},
                           {"GetSourceName", kOfTheSource},
                           {"GetDataLength", kOfTheSource},
                           {"SetAggregator", kOfTheSource},
                           {"Start", "in.wav: its decoder does not start (asked: Fixture; "},
                           {"Seek", kOfTheSource, {"--start", "0.1"}},
                           {"RawRead", kOfTheSource},
                           {"End", "in.wav: ending failed: its decoder tells no reason (asked: Fixture; "}});
}

TEST_F(ThrowingPlugin, IsReportedByConvertWithTheOutput) {
    constexpr const char* kNoTarget =
        "out.wav: no encoder for 48000 Hz, 16 bits, 2 channels: its encoder does not work as a target\n";
    ExpectHostileReported({"convert", "in.wav", "out.wav"},
                          {{"OpenTarget", kOfTheOutput},
                           {"HasTag", kOfTheOutput},
                           {"SetTag", kOfTheOutput},
                           {"GetTargetFactory", kOfTheOutput},
                           {"CreateTarget", kNoTarget},
                           {"EncoderGetRawFormat", kNoTarget},
                           {"EncoderSetAggregator", kOfTheOutput},
                           {"EncoderStart", "out.wav: writing does not start: its encoder tells no reason\n"},
                           {"RawWrite", kOfTheOutput},
                           {"EncoderEnd", "out.wav: writing failed at the end: its encoder tells no reason\n"},
                           {"GetSetting", kOfTheOutput, {"--set", "quality=high"}},
                           {"SetSetting", kOfTheOutput, {"--set", "quality=high"}},
                           {"GetSettingCount", kOfTheOutput, {"--set", "other=1"}},
                           {"GetSettingName", kOfTheOutput, {"--set", "other=1"}},
                           {"GetSettingValues", kOfTheOutput, {"--set", "other=1"}}});
}

TEST_F(ThrowingPlugin, IsReportedByConvertWithWhatItConverts) {
    constexpr const char* kOfTheConversion = "in.wav: an exception of type int (asked: libsndfile Decoder; ";
    constexpr const char* kNoConversion =
        "in.wav: no conversion from 48000 Hz, 16 bits, 2 channels to 24000 Hz, 16 bits, 2 channels: no plug-in "
        "converts it (asked: libsndfile Decoder; ";
    constexpr const char* kOfTheSetting = "--quality high: an exception of type int\n";
    const std::string directory = PluginDirectory() + ": an exception of type int\n";
    UsePlugin(KELO_PLUGINS, "sndfile.so");
    for (const SThrow& thrown : std::vector<SThrow>{{"QueryInterface", directory.c_str()},
                                                    {"IsSupported", directory.c_str()},
                                                    {"GetSetting", kOfTheSetting, {"--quality", "high"}},
                                                    {"SetSetting", kOfTheSetting, {"--quality", "high"}},
                                                    {"CreateConvertor", kNoConversion},
                                                    {"ConvertorQueryInterface", kNoConversion},
                                                    {"Convert", kOfTheConversion},
                                                    {"GetOutputLength", kOfTheConversion},
                                                    {"GetOutputData", kOfTheConversion},
                                                    {"GetClippedSamples", "in.wav: an exception of type int\n"}}) {
        UseHostileConvertor(NameOf(thrown));
        ExpectReported({"convert", "in.wav", "out.wav", "--rate", "24000"}, thrown);
    }
}

TEST_F(ThrowingPlugin, OfManyFilesIsReportedByTheExtensionOfItsOutputs) {
    UseHostile("ThrowsIntInOpenTarget");
    ExpectFailure(RunWithChosen({"convert", "in.wav", "--to", "wav", "--out-dir", "out"}),
                  {"keloaudio: .wav: an exception of type int\n"});
}

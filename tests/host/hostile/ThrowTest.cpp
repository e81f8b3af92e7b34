// keloaudio info and convert with plug-ins that throw from one operation: one line names what was at work.
#include <stdlib.h>

#include "tests/host/hostile/HostileFixture.h"
#include "tests/host/hostile/MarkedSound.h"
#include "tests/support/Sanitizers.h"

namespace {

struct SThrow {
    const char* m_szOperation;
    // Part of what is said.
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
        ExpectFailure(RunWithChosen(arguments), {thrown.m_szSaid});
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

constexpr const char* kOfTheSource = "keloaudio: in.wav: an exception of type int (asked: Fixture; plug-ins from ";
constexpr const char* kOfTheOutput = "keloaudio: out.wav: an exception of type int\n";

}  // namespace

TEST_F(ThrowingPlugin, IsReportedByInfoWithTheSource) {
    ExpectHostileReported({"info", "in.wav"}, {{"QueryInterface", "keloaudio: in.wav: an exception of type int\n"},
                                               {"GetAuxFlags", kOfTheSource},
                                               {"Open", "keloaudio: in.wav: no decoder opened it (asked: Fixture; "},
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
                           {"Start", "keloaudio: in.wav: its decoder does not start (asked: Fixture; "},
                           {"Seek", kOfTheSource, {"--start", "0.1"}},
                           {"RawRead", kOfTheSource},
                           {"End", "keloaudio: in.wav: ending failed: its decoder tells no reason (asked: Fixture; "}});
}

TEST_F(ThrowingPlugin, IsReportedByConvertWithTheOutput) {
    constexpr const char* kNoTarget =
        "keloaudio: out.wav: no encoder for 48000 Hz, 16 bits, 2 channels: its encoder does not work as a target\n";
    ExpectHostileReported(
        {"convert", "in.wav", "out.wav"},
        {{"OpenTarget", kOfTheOutput},
         {"HasTag", kOfTheOutput},
         {"SetTag", kOfTheOutput},
         {"GetTargetFactory", kOfTheOutput},
         {"CreateTarget", kNoTarget},
         {"EncoderGetRawFormat", kNoTarget},
         {"EncoderSetAggregator", kOfTheOutput},
         {"EncoderStart", "keloaudio: out.wav: writing does not start: its encoder tells no reason\n"},
         {"RawWrite", kOfTheOutput},
         {"EncoderEnd", "keloaudio: out.wav: writing failed at the end: its encoder tells no reason\n"},
         {"GetSetting", kOfTheOutput, {"--set", "quality=high"}},
         {"SetSetting", kOfTheOutput, {"--set", "quality=high"}},
         {"GetSettingCount", kOfTheOutput, {"--set", "other=1"}},
         {"GetSettingName", kOfTheOutput, {"--set", "other=1"}},
         {"GetSettingValues", kOfTheOutput, {"--set", "other=1"}}});
}

TEST_F(ThrowingPlugin, IsReportedByConvertWithWhatItConverts) {
    constexpr const char* kOfTheConversion = "keloaudio: in.wav: an exception of type int (asked: libsndfile Decoder; ";
    constexpr const char* kNoConversion =
        "keloaudio: in.wav: no conversion from 48000 Hz, 16 bits, 2 channels to 24000 Hz, 16 bits, 2 channels: no "
        "plug-in converts it (asked: libsndfile Decoder; ";
    constexpr const char* kOfTheSetting = "keloaudio: --quality high: an exception of type int\n";
    UsePlugin(KELO_PLUGINS, "sndfile.so");
    for (const SThrow& thrown :
         std::vector<SThrow>{{"IsSupported", "/plugins: an exception of type int\n"},
                             {"GetSetting", kOfTheSetting, {"--quality", "high"}},
                             {"SetSetting", kOfTheSetting, {"--quality", "high"}},
                             {"CreateConvertor", kNoConversion},
                             {"ConvertorQueryInterface", kNoConversion},
                             {"Convert", kOfTheConversion},
                             {"GetOutputLength", kOfTheConversion},
                             {"GetOutputData", kOfTheConversion},
                             {"GetClippedSamples", "keloaudio: in.wav: an exception of type int\n"}}) {
        UseHostileConvertor(NameOf(thrown));
        ExpectReported({"convert", "in.wav", "out.wav", "--rate", "24000"}, thrown);
    }
}

TEST_F(ThrowingPlugin, IsReportedWithItsDirectoryWhenLoadingIsBrokenOff) {
    if (support::kThreadSanitizer) GTEST_SKIP() << "the lock of loading stays locked to the end";
    // What was loaded until then stays and is no leak.
    setenv("LSAN_OPTIONS", "detect_leaks=0", 1);
    UseHostileConvertor("ThrowsIntInQueryInterface");
    ExpectReported({"convert", "in.wav", "out.wav"}, {"QueryInterface", "/plugins: an exception of type int\n"});
    unsetenv("LSAN_OPTIONS");
}

TEST_F(ThrowingPlugin, OfManyFilesIsReportedByTheExtensionOfItsOutputs) {
    UseHostile("ThrowsIntInOpenTarget");
    ExpectFailure(RunWithChosen({"convert", "in.wav", "--to", "wav", "--out-dir", "out"}),
                  {"keloaudio: .wav: an exception of type int\n"});
}

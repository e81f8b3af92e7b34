// convert --set.
#include "tests/host/KeloAudio.h"
#include "tests/host/SoundTools.h"

namespace {

class TargetSetting : public CKeloAudio {
protected:
    std::uintmax_t SizeWith(const std::string& setting, const std::string& output) const {
        ExpectConverted(Run({"convert", kFrontCenter, output, "--set", setting}), output);
        return std::filesystem::file_size(InWork(output));
    }
};

}  // namespace

TEST_F(TargetSetting, ReachesTheEncoder) {
    EXPECT_LT(SizeWith("compression=8", "out.flac"), SizeWith("compression=0", "out.flac"));
    EXPECT_LT(SizeWith("quality=1", "out.ogg"), SizeWith("quality=9", "out.ogg"));
    EXPECT_EQ(FlacSamples((SizeWith("compression=0", "out.flac"), InWork("out.flac"))), SoxSamples(kFrontCenter, 16));
}

TEST_F(TargetSetting, LeavesTheOperandsBehindItAlone) {
    ExpectConverted(Run({"convert", "--set", "compression=8", kFrontCenter, "out.flac"}), "out.flac");
}

TEST_F(TargetSetting, LaterOneWins) {
    const std::uintmax_t small = SizeWith("compression=8", "out.flac");
    ExpectConverted(Run({"convert", kFrontCenter, "out.flac", "--set", "compression=0", "--set", "compression=8"}),
                    "out.flac");
    EXPECT_EQ(std::filesystem::file_size(InWork("out.flac")), small);
}

TEST_F(TargetSetting, UnknownNamesAndValuesAreRefusedBeforeAnyFile) {
    for (const std::vector<std::string>& form :
         {std::vector<std::string>{"convert", kFrontCenter, kComplete, "--to", "flac", "--out-dir", "out"},
          std::vector<std::string>{"convert", kFrontCenter, "out.flac"}}) {
        std::vector<std::string> unknown = form;
        unknown.insert(unknown.end(), {"--set", "compresion=8"});
        ExpectFailure(Run(unknown),
                      {"flac: --set compresion=8: its encoder has no such setting (settings: compression ("});
        std::vector<std::string> wrong = form;
        wrong.insert(wrong.end(), {"--set", "compression=high"});
        ExpectFailure(Run(wrong), {"flac: --set compression=high: ", " (settings: compression ("});
    }
    EXPECT_EQ(NamesIn(WorkDirectory()), std::vector<std::string>{});
}

TEST_F(TargetSetting, EncoderWithoutSettingsIsTold) {
    UseFixture("FactorylessEncoder.so");
    UsePlugin(KELO_PLUGINS, "sndfile.so");
    ExpectFailure(RunWithChosen({"convert", kFrontCenter, "out.nofactory", "--set", "quality=1"}),
                  {"out.nofactory: --set quality=1: its encoder has no such setting (settings: none)"});
}

TEST_F(TargetSetting, WhatIsNoSettingIsWrongUsage) {
    for (const std::string text : {"quality", "=1", ""}) {
        ExpectFailure(Run({"convert", kFrontCenter, "out.flac", "--set=" + text}), {"--set"}, 2);
    }
}

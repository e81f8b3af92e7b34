// Rates and channel counts that the output's file format lacks.
#include "tests/host/KeloAudio.h"
#include "tests/host/SoundTools.h"

namespace {

class AcceptedFormat : public CKeloAudio {
protected:
    std::string SixChannels() const {
        RunTool({"sox", "-n", "-r", "48000", "-b", "16", "-c", "6", InWork("six.wav"), "synth", "0.1", "sine", "440"});
        return "six.wav";
    }
};

}  // namespace

TEST_F(AcceptedFormat, RateThatIsAskedForAndMissingIsRefused) {
    ExpectCleanFailure(kFrontCenter, "out.opus", {"out.opus: no 44100 Hz", "it takes 48000 Hz"}, {"--rate", "44100"});
}

TEST_F(AcceptedFormat, ChannelsThatAreAskedForAndMissingAreRefused) {
    ExpectCleanFailure(SixChannels(), "out.mp3", {"out.mp3: no 48000 Hz", "6 channels", "it takes ", "2 channels"},
                       {"--channels", "6"});
}

TEST_F(AcceptedFormat, WhatNobodyAskedForGivesWay) {
    ExpectConverted(Run({"convert", kComplete, "out.opus"}), "out.opus: 48000 Hz");
    ExpectConverted(Run({"convert", SixChannels(), "out.mp3"}), "out.mp3: 48000 Hz, 16 bits, 2 channels");
}

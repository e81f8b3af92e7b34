// Files that do not open, and damage that shows while reading.
#include <sys/stat.h>

#include <filesystem>

#include "tests/plugins/sndfile/AudioFiles.h"
#include "tests/plugins/sndfile/PluginUnderTest.h"
#include "tests/support/ScratchDirectory.h"

namespace {

// A FLAC file of the voice with a few bytes in its middle overwritten.
std::string DamagedFlac(const CScratchDirectory& scratch) {
    RunTool("flac -s -f -o " + scratch / "whole.flac" + " " + kVoice);
    std::string content = Content(scratch / "whole.flac");
    content.replace(content.size() / 2, 40, 40, '\x55');
    return scratch.Write("speech.flac", content);
}

}  // namespace

TEST(SndfileRefusals, NameTheFileAndTheSystemsReason) {
    CScratchDirectory scratch;
    EXPECT_EQ(RefusalOf(scratch / "gone.wav"), "gone.wav: No such file or directory");
    std::filesystem::create_directory(scratch / "album.wav");
    EXPECT_EQ(RefusalOf(scratch / "album.wav"), "album.wav: Is a directory");
}

TEST(SndfileRefusals, TellAnEmptyFile) {
    CScratchDirectory scratch;
    EXPECT_EQ(RefusalOf(scratch.Write("void.wav", "")), "void.wav: not readable as audio: the file is empty");
}

TEST(SndfileRefusals, TellAPipe) {
    CScratchDirectory scratch;
    const std::string path = scratch / "pipe.wav";
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    const std::string reason = "pipe.wav: not readable as audio: a pipe is no file";
    EXPECT_EQ(RefusalOf(path), reason) << "without a writer";
    const std::fstream writer(path);
    EXPECT_EQ(RefusalOf(path), reason);
}

TEST(SndfileRefusals, NameTheCodecsReason) {
    CScratchDirectory scratch;
    EXPECT_EQ(RefusalOf(scratch.Write("speech.wav", "Just a text of some length that is no sound at all.\n")),
              "speech.wav: not readable as audio: Format not recognised.");
}

TEST(SndfileRefusals, NameTheFormatThatTheFileBeginsWith) {
    CScratchDirectory scratch;
    EXPECT_EQ(RefusalOf(scratch.Write("cut.wav", Content(kVoice).substr(0, 30))),
              "cut.wav: not readable as WAV audio: Error in WAV file. No 'data' chunk marker.");
    EXPECT_EQ(RefusalOf(scratch.Write("cut.voc", "Creative Voice File")),
              "cut.voc: not readable as VOC audio: Error in VOC file, no 'Creative Voice File' marker.");
    RunTool("flac -s -f -o " + scratch / "whole.flac" + " " + kVoice);
    const std::string reason = RefusalOf(scratch.Write("cut.flac", Content(scratch / "whole.flac").substr(0, 30)));
    EXPECT_EQ(reason.rfind("cut.flac: not readable as FLAC audio: ", 0), 0u) << reason;
}

TEST(SndfileRefusals, DoNotTakeAnyBytesForHeaderlessAudioByTheirName) {
    CScratchDirectory scratch;
    for (const char* const name : {"x.au", "x.gsm", "x.vox", "x.ul", "x.snd"}) {
        EXPECT_NE(RefusalOf(scratch.Write(name, RandomBytes(3000))), "") << name;
    }
}

// The codec would deliver the first one and say nothing of the others.
TEST(SndfileRefusals, TellAChainOfOggStreams) {
    CScratchDirectory scratch;
    const std::string reason =
        ": not readable as Ogg audio: a chain of streams, of which only the first would be heard";
    RunTool("opusenc --quiet " + kVoice + " " + scratch / "voice.opus");
    const std::string bell = Content(kBell);
    const std::string alarm = Content(kAlarm);
    const std::string voice = Content(scratch / "voice.opus");
    EXPECT_EQ(RefusalOf(scratch.Write("two.ogg", bell + alarm)), "two.ogg" + reason);
    EXPECT_EQ(RefusalOf(scratch.Write("three.ogg", alarm + bell + alarm)), "three.ogg" + reason);
    EXPECT_EQ(RefusalOf(scratch.Write("same.ogg", alarm + alarm)), "same.ogg" + reason);
    EXPECT_EQ(RefusalOf(scratch.Write("same.opus", voice + voice + voice)), "same.opus" + reason);
    EXPECT_EQ(RefusalOf(scratch.Write("mixed.ogg", bell + voice)), "mixed.ogg" + reason);
}

// Streams of any length, and of the same number as others, which a program that numbers them itself may give them.
TEST(SndfileRefusals, TellAChainWhoseLastPageIsOfAStreamThatBeganTheFile) {
    CScratchDirectory scratch;
    const auto stream = [&scratch](const std::string& seconds, const std::string& serial) {
        RunTool("sox -R -n -r 16000 -c 1 -b 16 " + scratch / "x.wav" + " synth " + seconds + " pinknoise");
        RunTool("oggenc -Q -s " + serial + " -o " + scratch / "x.ogg" + " " + scratch / "x.wav");
        return Content(scratch / "x.ogg");
    };
    const std::string second = stream("1", "1");
    const std::string longer = stream("40", "2");
    const std::string shorter = stream("0.5", "2");
    const std::string reason =
        "x.ogg: not readable as Ogg audio: a chain of streams, of which only the first would be heard";
    for (const std::string& chain : {second + longer + second, longer + shorter, shorter + longer,
                                     longer + "other bytes" + shorter, longer + std::string(100000, '\0') + shorter}) {
        EXPECT_EQ(RefusalOf(scratch.Write("x.ogg", chain)), reason) << chain.size();
    }
}

TEST(SndfileRefusals, AreSilentWithoutAStatusPointer) {
    IUnknown* stream = nullptr;
    EXPECT_FALSE(OpenSource("/nonexistent/x.wav", &stream, nullptr));
    EXPECT_EQ(stream, nullptr);
}

TEST(SndfileRefusals, TellNullArguments) {
    const auto opener = CComPtr<IAudioFileOpener>::Query(Component(0).Get(), IID_IAudioFileOpener);
    CComPtr<IUnknown> stream;
    EXPECT_EQ(
        ErrorOf([&](IStatus** status) { return opener->Open(nullptr, stream.Out(), AUX_NONE, AUX_NONE, status); }),
        AE_BAD_ARGUMENT);
    EXPECT_EQ(
        ErrorOf([&](IStatus** status) { return opener->Open(kVoice.c_str(), nullptr, AUX_NONE, AUX_NONE, status); }),
        AE_BAD_ARGUMENT);
}

TEST(SndfileDamage, OfAFlacFileIsToldWithItsReasonAfterTheFramesBeforeIt) {
    CScratchDirectory scratch;
    SSource source(DamagedFlac(scratch));
    const std::string whole = Decoded(kVoice);
    ASSERT_TRUE(source.m_process->Start(nullptr));
    std::string samples;
    std::string reason;
    bool success = true;
    while (success && samples.size() < whole.size()) {
        unsigned char buffer[4096];
        int count = -1;
        EAudioRawState state = ARS_MORE;
        CComPtr<IStatus> status;
        success = source.m_reader->RawRead(buffer, sizeof buffer, &count, state, status.Out());
        if (status) reason = status->GetDescription();
        ASSERT_TRUE(success == !status && (success ? count > 0 : count == 0));
        samples.append(reinterpret_cast<const char*>(buffer), static_cast<std::size_t>(count));
    }
    EXPECT_FALSE(success);
    EXPECT_EQ(
        reason.rfind("speech.flac: damaged FLAC audio after frame " + std::to_string(samples.size() / 2) + ": ", 0), 0u)
        << reason;
    EXPECT_NE(reason.find("flac decoder lost sync"), std::string::npos) << reason;
    EXPECT_GT(samples.size(), 0u);
    EXPECT_TRUE(whole.compare(0, samples.size(), samples) == 0);
}

TEST(SndfileDamage, LastsUntilASeek) {
    CScratchDirectory scratch;
    SSource source(DamagedFlac(scratch));
    ASSERT_TRUE(source.m_process->Start(nullptr));
    std::vector<unsigned char> buffer(1 << 20);
    int count = 0;
    EAudioRawState state = ARS_MORE;
    const auto read = [&](IStatus** status) {
        return source.m_reader->RawRead(buffer.data(), static_cast<int>(buffer.size()), &count, state, status);
    };
    ASSERT_TRUE(read(nullptr));
    EXPECT_NE(ReasonOf(read), "");
    EXPECT_NE(ReasonOf(read), "");
    ASSERT_TRUE(source.m_seekable->Seek(0, nullptr));
    EXPECT_TRUE(read(nullptr));
    EXPECT_GT(count, 0);
}

TEST(SndfileDamage, IsNotSeenInWhatFollowsTheLastFrame) {
    CScratchDirectory scratch;
    RunTool("flac -s -f -o " + scratch / "x.flac" + " " + kVoice);
    const std::string path = scratch.Write("tagged.flac", Content(scratch / "x.flac") + "TAG" + RandomBytes(5000));
    EXPECT_TRUE(Decoded(path) == Decoded(kVoice));
}

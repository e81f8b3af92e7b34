// What the encoder refuses, and writing that fails.
#include <fcntl.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <filesystem>

#include "tests/plugins/sndfile/AudioFiles.h"
#include "tests/plugins/sndfile/SinkUnderTest.h"
#include "tests/support/ScratchDirectory.h"

namespace {

const SWavFormat kStereo{44100, 16, 2};

std::string SinkRefusal(const std::string& path, const std::string& extension, const SWavFormat& format) {
    CComPtr<IUnknown> stream;
    return ReasonOf([&](IStatus** status) { return OpenSink(path, extension, format, stream.Out(), status); });
}

std::string StartRefusal(const std::string& path, const std::string& extension = "wav") {
    SSink sink(path, extension, kStereo);
    const std::string reason = ReasonOf([&](IStatus** status) { return sink.m_process->Start(status); });
    EXPECT_FALSE(sink.m_process->IsInProcess());
    return reason;
}

// Files of this process end at so many bytes, as on a full disk.
class CFileSizeLimit {
public:
    explicit CFileSizeLimit(rlim_t bytes) : m_handler(signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limit{bytes, m_before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~CFileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &m_before);
        signal(SIGXFSZ, m_handler);
    }
    CFileSizeLimit(const CFileSizeLimit&) = delete;
    CFileSizeLimit& operator=(const CFileSizeLimit&) = delete;

private:
    rlimit m_before = {};
    void (*m_handler)(int);
};

}  // namespace

TEST(SndfileEncoderRefusals, TellAnExtensionThatIsNotWritten) {
    EXPECT_EQ(SinkRefusal("/nowhere/song.wma", "wma", kStereo),
              "song.wma: no encoder for \".wma\"; it writes wav, rf64, w64, aiff, aif, caf, au, flac, ogg, oga, opus, "
              "mp3");
}

TEST(SndfileEncoderRefusals, TellNullArguments) {
    const auto opener = CComPtr<IAudioTargetOpener>::Query(Component(1).Get(), IID_IAudioTargetOpener);
    CComPtr<IAudioTarget> target;
    EXPECT_EQ(ErrorOf([&](IStatus** s) { return opener->OpenTarget(nullptr, "wav", target.Out(), s); }),
              AE_BAD_ARGUMENT);
    EXPECT_EQ(ErrorOf([&](IStatus** s) { return opener->OpenTarget("/x", nullptr, target.Out(), s); }),
              AE_BAD_ARGUMENT);
    EXPECT_EQ(ErrorOf([&](IStatus** s) { return opener->OpenTarget("/x", "wav", nullptr, s); }), AE_BAD_ARGUMENT);
    ASSERT_TRUE(opener->OpenTarget("/x", "wav", target.Out(), nullptr));
    EXPECT_EQ(ErrorOf([&](IStatus** s) { return target->GetTargetFactory()->CreateTarget(nullptr, kStereo, s); }),
              AE_BAD_ARGUMENT);
}

TEST(SndfileEncoderRefusals, NameTheFormatThatDoesNotTakeTheSamples) {
    struct SRow {
        const char* m_strExtension;
        SWavFormat m_format;
        const char* m_strStart;
    };
    for (const SRow& row : {SRow{"flac", {44100, 16, 9}, "x: FLAC does not take 9 channels at 44100 Hz: "},
                            SRow{"flac", {3000000, 16, 2}, "x: FLAC does not take 2 channels at 3000000 Hz: "},
                            SRow{"wav", {44100, 16, 1025}, "x: WAV does not take 1025 channels at 44100 Hz: "},
                            SRow{"wav", {44100, 16, 0}, "x: WAV does not take 0 channels at 44100 Hz: "},
                            SRow{"wav", {0, 16, 2}, "x: WAV does not take 2 channels at 0 Hz: "},
                            SRow{"wav", {44100, 0, 2}, "x: samples without bits"},
                            SRow{"wav", {-1, -1, -1}, "x: samples without bits"}}) {
        const std::string reason = SinkRefusal("/nowhere/x", row.m_strExtension, row.m_format);
        EXPECT_EQ(reason.rfind(row.m_strStart, 0), 0u) << reason;
        EXPECT_GT(reason.size(), std::string(row.m_strStart).size());
    }
    EXPECT_TRUE(Plugin().m_pReadyToFinish());
}

TEST(SndfileEncoderRefusals, OfStartNameThePathsFileAndTheReason) {
    CScratchDirectory scratch;
    EXPECT_EQ(StartRefusal(scratch / "no/such/x.wav"), "x.wav: cannot be written: No such file or directory");
    EXPECT_EQ(StartRefusal(scratch.Path().string()),
              scratch.Path().filename().string() + ": cannot be written: Is a directory");
}

TEST(SndfileEncoderRefusals, OfStartTellAReadOnlyDirectory) {
    CScratchDirectory scratch;
    const uid_t user = geteuid();
    ASSERT_TRUE(Component(1));  // loads the plug-in while its directory can be entered
    ASSERT_EQ(chmod(scratch.Path().c_str(), 0555), 0);
    ASSERT_EQ(seteuid(user == 0 ? 65534 : user), 0);
    EXPECT_EQ(StartRefusal(scratch / "x.wav"), "x.wav: cannot be written: Permission denied");
    ASSERT_EQ(seteuid(user), 0);
    ASSERT_EQ(chmod(scratch.Path().c_str(), 0755), 0);
}

TEST(SndfileEncoderRefusals, OfStartTellAPipe) {
    CScratchDirectory scratch;
    const std::string path = scratch / "pipe";
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    const int reader = open(path.c_str(), O_RDWR | O_NONBLOCK);
    for (const char* const extension : {"wav", "flac"}) {
        EXPECT_EQ(StartRefusal(path, extension), "pipe: cannot be written: a pipe is no file");
    }
    char byte = 0;
    EXPECT_EQ(read(reader, &byte, 1), -1);
    close(reader);
}

TEST(SndfileEncoderRefusals, OfStartTellAFullDevice) {
    for (const char* const extension : {"wav", "rf64", "w64", "aiff", "caf", "au", "flac"}) {
        EXPECT_EQ(StartRefusal("/dev/full", extension), "full: cannot be written: No space left on device");
    }
}

TEST(SndfileEncoderRefusals, OfAnOggFileTellAFullDeviceAtTheFirstWrite) {
    SSink sink("/dev/full", "ogg", kStereo);
    ASSERT_TRUE(sink.m_process->Start(nullptr));
    EXPECT_EQ(ReasonOf([&](IStatus** status) { return sink.Write(RandomBytes(400000), status); }),
              "full: cannot be written: No space left on device");
    EXPECT_EQ(ReasonOf([&](IStatus** status) { return sink.m_process->End(status); }),
              "full: not written completely: No space left on device");
}

TEST(SndfileEncoderRefusals, OfWritesOutsideStartAndEnd) {
    CScratchDirectory scratch;
    SSink sink(scratch / "x.wav", "wav", kStereo);
    EXPECT_EQ(ReasonOf([&](IStatus** status) { return sink.Write("abcd", status); }), "x.wav: write before start");
    ASSERT_TRUE(sink.m_process->Start(nullptr) && sink.m_process->End(nullptr));
    EXPECT_EQ(ReasonOf([&](IStatus** status) { return sink.Write("abcd", status); }), "x.wav: write before start");
}

TEST(SndfileEncoderRefusals, OfASecondStartAndASecondEnd) {
    CScratchDirectory scratch;
    SSink sink(scratch / "x.wav", "wav", kStereo);
    EXPECT_EQ(ReasonOf([&](IStatus** status) { return sink.m_process->End(status); }), "x.wav: not started");
    ASSERT_TRUE(sink.m_process->Start(nullptr));
    ASSERT_TRUE(sink.Write("abcd"));
    EXPECT_EQ(ReasonOf([&](IStatus** status) { return sink.m_process->Start(status); }), "x.wav: already started");
    ASSERT_TRUE(sink.m_process->End(nullptr));
    EXPECT_EQ(Decoded(scratch / "x.wav"), "abcd");
}

TEST(SndfileEncoderRefusals, OfPartialFramesWriteNothing) {
    CScratchDirectory scratch;
    SSink sink(scratch / "x.wav", "wav", kStereo);
    ASSERT_TRUE(sink.m_process->Start(nullptr));
    EXPECT_EQ(ReasonOf([&](IStatus** status) { return sink.Write("abcdef", status); }),
              "x.wav: 6 bytes are not whole frames of 4");
    ASSERT_TRUE(sink.m_process->End(nullptr));
    EXPECT_EQ(Decoded(scratch / "x.wav"), "");
}

TEST(SndfileEncoderRefusals, OfNullDataAndFailedConversionsWriteNothing) {
    CScratchDirectory scratch;
    SSink sink(scratch / "x.wav", "wav", kStereo);
    ASSERT_TRUE(sink.m_process->Start(nullptr));
    ASSERT_TRUE(sink.Write("abcd"));
    EAudioRawState state = ARS_MORE;
    unsigned char frame[4] = {};
    EXPECT_EQ(ErrorOf([&](IStatus** status) { return sink.m_writer->RawWrite(nullptr, 4, state, status); }),
              AE_BAD_ARGUMENT);
    for (const int size : {-4, -1, INT_MIN}) {
        CComPtr<IStatus> status;
        EXPECT_FALSE(sink.m_writer->RawWrite(frame, size, state, status.Out()));
        EXPECT_FALSE(status) << "the convertor's own status is the reason";
    }
    EXPECT_EQ(ReasonOf([&](IStatus** status) { return sink.m_process->End(status); }),
              "x.wav: not written completely: an earlier write has failed");
    EXPECT_EQ(Decoded(scratch / "x.wav"), "abcd");
}

TEST(SndfileEncoderRefusals, OfAShortWriteNameTheReasonAndEndStillCloses) {
    CScratchDirectory scratch;
    for (const std::string extension : {"wav", "rf64", "w64", "aiff", "caf", "au", "flac", "ogg", "opus", "mp3"}) {
        const std::string name = "x." + extension;
        SSink sink(scratch / name, extension, {48000, 16, 2});
        ASSERT_TRUE(sink.m_process->Start(nullptr));
        const CFileSizeLimit limit(15000);
        EXPECT_EQ(ReasonOf([&](IStatus** status) { return sink.Write(RandomBytes(800000), status); }),
                  name + ": cannot be written: File too large");
        EXPECT_EQ(ReasonOf([&](IStatus** status) { return sink.m_process->End(status); }),
                  name + ": not written completely: File too large");
        EXPECT_FALSE(sink.m_process->IsInProcess());
    }
}

TEST(SndfileEncoderRefusals, OfEndTellWhatFailedWhileClosing) {
    CScratchDirectory scratch;
    for (const std::string extension : {"flac", "ogg", "opus", "mp3"}) {
        const std::string name = "x." + extension;
        SSink sink(scratch / name, extension, {48000, 16, 2});
        ASSERT_TRUE(sink.m_process->Start(nullptr));
        // Less than the encoder keeps back: it writes the rest when it is closed.
        ASSERT_TRUE(sink.Write(RandomBytes(3000)));
        const CFileSizeLimit limit(std::filesystem::file_size(scratch / name) + 16);
        EXPECT_EQ(ReasonOf([&](IStatus** status) { return sink.m_process->End(status); }),
                  name + ": not written completely: File too large");
        EXPECT_FALSE(sink.m_process->IsInProcess());
    }
}

TEST(SndfileEncoderRefusals, OfAnAiffFileAboveFourGiBComeBeforeItIsSpoilt) {
    // The null device takes the bytes for nothing.
    SSink sink("/dev/null", "aiff", kStereo);
    ASSERT_TRUE(sink.m_process->Start(nullptr));
    std::vector<unsigned char> block(1 << 26);
    EAudioRawState state = ARS_MORE;
    const auto write = [&](int size, IStatus** status) {
        return sink.m_writer->RawWrite(block.data(), size, state, status);
    };
    for (int i = 0; i < 63; ++i) ASSERT_TRUE(write(1 << 26, nullptr)) << i;
    EXPECT_TRUE(write((1 << 26) - 131072, nullptr));
    EXPECT_EQ(ReasonOf([&](IStatus** status) { return write(131072, status); }),
              "null: an AIFF file holds at most 4 GiB; try CAF");
}

// The life of a decoder stream: start, reads, the end, lengths and positions.
#include <unistd.h>

#include "tests/plugins/sndfile/AudioFiles.h"
#include "tests/plugins/sndfile/PluginUnderTest.h"
#include "tests/support/ScratchDirectory.h"

namespace {

const SWavFormat kStereo{44100, 16, 2};

std::string StereoFile(const CScratchDirectory& scratch, const std::string& samples) {
    return scratch.Write("x.wav", WavFile(kStereo, samples));
}

struct SRead {
    bool m_bSuccess;
    int m_nCount;
    EAudioRawState m_eState;
    std::string m_strReason;
};

SRead ReadOnce(SSource& source, unsigned char* buffer, int size) {
    SRead read{false, -1, static_cast<EAudioRawState>(77), ""};
    CComPtr<IStatus> status;
    read.m_bSuccess = source.m_reader->RawRead(buffer, size, &read.m_nCount, read.m_eState, status.Out());
    if (status) read.m_strReason = status->GetDescription();
    return read;
}

}  // namespace

TEST(SndfileStream, IsInProcessBetweenStartAndEnd) {
    SSource source(kVoice);
    EXPECT_FALSE(source.m_process->IsInProcess());
    EXPECT_TRUE(source.m_process->Start(nullptr));
    EXPECT_TRUE(source.m_process->IsInProcess());
    EXPECT_TRUE(source.m_process->End(nullptr));
    EXPECT_FALSE(source.m_process->IsInProcess());
}

TEST(SndfileStream, RefusesASecondStartAndASecondEnd) {
    SSource source(kVoice);
    EXPECT_EQ(ReasonOf([&](IStatus** status) { return source.m_process->End(status); }),
              "Front_Center.wav: not started");
    ASSERT_TRUE(source.m_process->Start(nullptr));
    EXPECT_EQ(ReasonOf([&](IStatus** status) { return source.m_process->Start(status); }),
              "Front_Center.wav: already started");
    EXPECT_TRUE(source.m_process->IsInProcess());
}

TEST(SndfileStream, RefusesReadsOutsideStartAndEnd) {
    SSource source(kVoice);
    unsigned char buffer[64];
    EXPECT_EQ(ReadOnce(source, buffer, 64).m_strReason, "Front_Center.wav: read before start");
    ASSERT_TRUE(source.m_process->Start(nullptr));
    ASSERT_TRUE(source.m_process->End(nullptr));
    const SRead read = ReadOnce(source, buffer, 64);
    EXPECT_FALSE(read.m_bSuccess);
    EXPECT_EQ(read.m_nCount, 0);
}

TEST(SndfileStream, BeginsAtTheFirstFrameAgainAfterARestart) {
    for (const std::string& path : {kVoice, kBell}) {
        SSource source(path);
        ASSERT_TRUE(source.m_process->Start(nullptr));
        const std::string first = ReadOn(source, 4096, 10000);
        ASSERT_TRUE(source.m_process->End(nullptr));
        ASSERT_TRUE(source.m_process->Start(nullptr));
        EXPECT_EQ(source.m_blocks->GetPos(), 0u);
        EXPECT_TRUE(ReadOn(source, 4096, 10000) == first);
    }
}

TEST(SndfileStream, RefusesNullAndEmptyBuffers) {
    SSource source(kVoice);
    ASSERT_TRUE(source.m_process->Start(nullptr));
    unsigned char buffer[64];
    int count = 0;
    EAudioRawState state = ARS_MORE;
    const auto& reader = source.m_reader;
    EXPECT_EQ(ErrorOf([&](IStatus** status) { return reader->RawRead(nullptr, 64, &count, state, status); }),
              AE_BAD_ARGUMENT);
    EXPECT_EQ(ErrorOf([&](IStatus** status) { return reader->RawRead(buffer, 0, &count, state, status); }),
              AE_BAD_ARGUMENT);
    EXPECT_EQ(ErrorOf([&](IStatus** status) { return reader->RawRead(buffer, -4, &count, state, status); }),
              AE_BAD_ARGUMENT);
    EXPECT_EQ(ErrorOf([&](IStatus** status) { return reader->RawRead(buffer, 64, nullptr, state, status); }),
              AE_BAD_ARGUMENT);
    EXPECT_EQ(source.m_blocks->GetPos(), 0u);
}

TEST(SndfileStream, RefusesABufferSmallerThanAFrame) {
    CScratchDirectory scratch;
    SSource source(StereoFile(scratch, RandomBytes(400)));
    ASSERT_TRUE(source.m_process->Start(nullptr));
    unsigned char buffer[4];
    EXPECT_EQ(ReadOnce(source, buffer, 3).m_strReason, "x.wav: a buffer of 3 bytes does not hold a frame of 4");
    EXPECT_EQ(ReadOnce(source, buffer, 4).m_nCount, 4);
}

TEST(SndfileStream, DeliversWholeFramesOnly) {
    CScratchDirectory scratch;
    const std::string samples = RandomBytes(400);
    SSource source(StereoFile(scratch, samples));
    ASSERT_TRUE(source.m_process->Start(nullptr));
    unsigned char buffer[128];
    const SRead read = ReadOnce(source, buffer, 103);
    EXPECT_TRUE(read.m_bSuccess);
    EXPECT_EQ(read.m_nCount, 100);
    EXPECT_EQ(read.m_eState, ARS_MORE);
    EXPECT_EQ(std::memcmp(buffer, samples.data(), 100), 0);
    EXPECT_EQ(source.m_blocks->GetPos(), 25u);
}

TEST(SndfileStream, EndsWithAShortReadAndThenNothing) {
    CScratchDirectory scratch;
    SSource source(StereoFile(scratch, RandomBytes(400)));
    ASSERT_TRUE(source.m_process->Start(nullptr));
    unsigned char buffer[1000];
    const SRead last = ReadOnce(source, buffer, 1000);
    EXPECT_TRUE(last.m_bSuccess);
    EXPECT_EQ(last.m_nCount, 400);
    EXPECT_EQ(last.m_eState, ARS_MORE);
    for (int i = 0; i < 2; ++i) {
        const SRead end = ReadOnce(source, buffer, 1000);
        EXPECT_TRUE(end.m_bSuccess);
        EXPECT_EQ(end.m_nCount, 0);
        EXPECT_EQ(end.m_eState, ARS_END);
        EXPECT_EQ(end.m_strReason, "");
    }
    EXPECT_EQ(source.m_blocks->GetPos(), source.m_blocks->GetDataLength());
}

TEST(SndfileStream, CountsLengthsInBytesAndInFrames) {
    CScratchDirectory scratch;
    const SWavFormat format{48000, 24, 6};
    SSource source(scratch.Write("x.wav", WavFile(format, RandomBytes(18 * 500))));
    EXPECT_EQ(source.m_blocks->GetBlockSize(), 18);
    EXPECT_EQ(source.m_blocks->GetDataLength(), 500u);
    EXPECT_EQ(source.m_reader->GetRawLen(), 9000u);
    EXPECT_EQ(source.m_blocks->GetPos(), 0u);
}

TEST(SndfileStream, DeliversTheSameBytesWhateverTheSizeAndPlaceOfTheBuffer) {
    CScratchDirectory scratch;
    for (const int bits : {8, 16, 24, 32}) {
        const SWavFormat format{44100, bits, 2};
        const std::string samples = RandomBytes(static_cast<std::size_t>(BlockSizeOf(format)) * 50000);
        const std::string path = scratch.Write("x.wav", WavFile(format, samples));
        SSource source(path);
        ASSERT_TRUE(source.m_process->Start(nullptr));
        std::vector<unsigned char> buffer(300000);
        std::string decoded;
        for (int size = 100, offset = 0;; size = size * 2 % 250007 + 100, offset = (offset + 1) % 4) {
            const SRead read = ReadOnce(source, buffer.data() + offset, size);
            ASSERT_TRUE(read.m_bSuccess);
            if (read.m_nCount == 0) break;
            decoded.append(reinterpret_cast<const char*>(buffer.data()) + offset,
                           static_cast<std::size_t>(read.m_nCount));
        }
        EXPECT_TRUE(decoded == samples) << bits;
    }
}

TEST(SndfileStream, LeavesBytesBehindTheSizeAlone) {
    CScratchDirectory scratch;
    SSource source(StereoFile(scratch, RandomBytes(400)));
    ASSERT_TRUE(source.m_process->Start(nullptr));
    std::vector<unsigned char> buffer(1200, 0xAB);
    ASSERT_EQ(ReadOnce(source, buffer.data(), 1000).m_nCount, 400);
    for (std::size_t i = 1000; i < buffer.size(); ++i) EXPECT_EQ(buffer[i], 0xAB);
}

TEST(SndfileStream, SaysZeroForALengthThatTheFileDoesNotTell) {
    CScratchDirectory scratch;
    RunTool("sox " + kVoice +
            " -t raw - | flac -s --force-raw-format --endian=little --channels=1 --bps=16 "
            "--sample-rate=48000 --sign=signed - -c > " +
            scratch / "x.flac");
    SSource source(scratch / "x.flac");
    EXPECT_EQ(source.m_blocks->GetDataLength(), 0u);
    EXPECT_EQ(source.m_reader->GetRawLen(), 0u);
    ASSERT_TRUE(source.m_process->Start(nullptr));
    EXPECT_TRUE(ReadOn(source) == Decoded(kVoice));
}

TEST(SndfileStream, OfACodecThatCannotSeekIsNotSeekableButStartsAgain) {
    CScratchDirectory scratch;
    // G.721 in an AU file: every byte is two samples.
    const auto word = [](std::uint32_t value) {
        const std::string little = LittleEndian(value, 4);
        return std::string(little.rbegin(), little.rend());
    };
    const std::string path =
        scratch.Write("x.au", ".snd" + word(24) + word(6000) + word(23) + word(8000) + word(1) + RandomBytes(6000));
    SSource source(path);
    EXPECT_FALSE(source.m_seekable);
    ASSERT_TRUE(source.m_process->Start(nullptr));
    const std::string samples = ReadOn(source);
    EXPECT_EQ(samples.size(), source.m_reader->GetRawLen());
    EXPECT_GE(samples.size(), 2u * 11000u);
    ASSERT_TRUE(source.m_process->End(nullptr));
    ASSERT_TRUE(source.m_process->Start(nullptr));
    EXPECT_EQ(source.m_blocks->GetPos(), 0u);
    EXPECT_TRUE(ReadOn(source) == samples);
}

TEST(SndfileStream, ClosesItsFileWithItsLastReference) {
    const int before = ::dup(0);
    ::close(before);
    { const SSource source(kVoice); }
    const int after = ::dup(0);
    ::close(after);
    EXPECT_EQ(after, before);
}

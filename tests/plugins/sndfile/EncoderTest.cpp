// Written files, read back and compared.
#include <filesystem>

#include "tests/plugins/sndfile/AudioFiles.h"
#include "tests/plugins/sndfile/SinkUnderTest.h"
#include "tests/support/ScratchDirectory.h"

namespace {

struct SCase {
    const char* m_strExtension;
    int m_nBits;
};

class CRoundTrip : public testing::TestWithParam<SCase> {};

std::string SamplesOf(const SWavFormat& format, std::size_t frames) {
    return RandomBytes(static_cast<std::size_t>(BlockSizeOf(format)) * frames);
}

}  // namespace

TEST_P(CRoundTrip, IsExactToTheBit) {
    CScratchDirectory scratch;
    const std::string path = scratch / (std::string("x.") + GetParam().m_strExtension);
    for (const int channels : {1, 2, 6}) {
        const SWavFormat format{48000, GetParam().m_nBits, channels};
        const std::string samples = SamplesOf(format, 50001);
        SSink sink(path, GetParam().m_strExtension, format);
        EXPECT_EQ(sink.m_writer->GetRawFormat().nBitsPerSample, GetParam().m_nBits);
        ASSERT_TRUE(sink.m_process->Start(nullptr));
        const auto block = static_cast<std::size_t>(BlockSizeOf(format));
        for (std::size_t at = 0; at < samples.size(); at += 7001 * block) {
            ASSERT_TRUE(sink.Write(samples.substr(at, 7001 * block)));
        }
        ASSERT_TRUE(sink.m_process->End(nullptr));
        const SWavFormat written = SSource(path).m_reader->GetRawFormat();
        EXPECT_EQ(written.nBitsPerSample, format.nBitsPerSample);
        EXPECT_EQ(written.nSampleRate, format.nSampleRate);
        EXPECT_EQ(written.nChannels, format.nChannels);
        EXPECT_TRUE(Decoded(path) == samples) << channels;
    }
}

INSTANTIATE_TEST_SUITE_P(SndfileEncoder, CRoundTrip,
                         testing::Values(SCase{"wav", 8}, SCase{"wav", 16}, SCase{"wav", 24}, SCase{"wav", 32},
                                         SCase{"flac", 16}, SCase{"flac", 24}),
                         [](const auto& parameter) {
                             return std::string(parameter.param.m_strExtension) +
                                    std::to_string(parameter.param.m_nBits);
                         });

TEST(SndfileEncoder, WritesTheSamplesIntoTheDataChunkAsTheyAre) {
    CScratchDirectory scratch;
    for (const int bits : {8, 16, 24, 32}) {
        const SWavFormat format{44100, bits, 2};
        const std::string samples = SamplesOf(format, 1000);
        SSink sink(scratch / "x.wav", "wav", format);
        ASSERT_TRUE(sink.m_process->Start(nullptr) && sink.Write(samples) && sink.m_process->End(nullptr));
        const std::string written = Content(scratch / "x.wav");
        const std::string plain = WavFile(format, samples);
        // Between the format and the samples lies the room that RF64 would need.
        EXPECT_EQ(written.substr(8, 28), plain.substr(8, 28)) << bits;
        EXPECT_EQ(written.substr(36, 36), Chunk("JUNK", std::string(28, '\0'))) << bits;
        EXPECT_TRUE(written.substr(72) == plain.substr(36)) << bits;
        EXPECT_EQ(written.substr(4, 4), LittleEndian(written.size() - 8, 4)) << bits;
    }
}

TEST(SndfileEncoder, WritesFlacThatFlacVerifies) {
    CScratchDirectory scratch;
    const std::string samples = Decoded(kVoice);
    SSink sink(scratch / "x.flac", "flac", {48000, 16, 1});
    ASSERT_TRUE(sink.m_process->Start(nullptr) && sink.Write(samples) && sink.m_process->End(nullptr));
    RunTool("flac -s -t " + scratch / "x.flac");
    RunTool("flac -s -f -d --force-raw-format --endian=little --sign=signed -o " + scratch / "x.raw" + " " +
            scratch / "x.flac");
    EXPECT_TRUE(Content(scratch / "x.raw") == samples);
    EXPECT_LT(Content(scratch / "x.flac").size(), samples.size());
}

TEST(SndfileEncoder, AcceptsTheNearestWidthThatTheFormatHas) {
    CScratchDirectory scratch;
    struct SRow {
        const char* m_strExtension;
        int m_nWanted, m_nAccepted;
    };
    for (const SRow& row :
         {SRow{"wav", 1, 8}, SRow{"wav", 8, 8}, SRow{"wav", 12, 16}, SRow{"wav", 16, 16}, SRow{"wav", 20, 24},
          SRow{"wav", 24, 24}, SRow{"wav", 32, 32}, SRow{"wav", 64, 32}, SRow{"flac", 8, 16}, SRow{"flac", 16, 16},
          SRow{"flac", 20, 24}, SRow{"flac", 24, 24}, SRow{"flac", 32, 24}}) {
        SSink sink(scratch / "x", row.m_strExtension, {44100, row.m_nWanted, 2});
        const SWavFormat accepted = sink.m_writer->GetRawFormat();
        EXPECT_EQ(accepted.nBitsPerSample, row.m_nAccepted) << row.m_strExtension << ' ' << row.m_nWanted;
        EXPECT_EQ(accepted.nSampleRate, 44100);
        EXPECT_EQ(accepted.nChannels, 2);
    }
}

TEST(SndfileEncoder, AcceptsTheNextSampleRateAndTheMostChannelsThatTheFormatHas) {
    struct SRow {
        const char* m_strExtension;
        SWavFormat m_wanted, m_accepted;
    };
    for (const SRow& row : {SRow{"opus", {44100, 16, 2}, {48000, 16, 2}}, SRow{"opus", {22050, 16, 1}, {24000, 16, 1}},
                            SRow{"opus", {4000, 16, 1}, {8000, 16, 1}}, SRow{"opus", {96000, 24, 6}, {48000, 24, 6}},
                            SRow{"opus", {16000, 8, 1}, {16000, 16, 1}}, SRow{"mp3", {44100, 16, 2}, {44100, 16, 2}},
                            SRow{"mp3", {96000, 24, 6}, {48000, 24, 2}}, SRow{"mp3", {12345, 16, 1}, {16000, 16, 1}},
                            SRow{"ogg", {384000, 32, 8}, {192000, 32, 8}}, SRow{"ogg", {12345, 8, 1}, {12345, 16, 1}},
                            SRow{"caf", {12345, 8, 7}, {12345, 8, 7}}, SRow{"w64", {768000, 20, 3}, {768000, 24, 3}}}) {
        const SSink sink("/nowhere/x", row.m_strExtension, row.m_wanted);
        const SWavFormat accepted = sink.m_writer->GetRawFormat();
        EXPECT_EQ(accepted.nSampleRate, row.m_accepted.nSampleRate) << row.m_strExtension;
        EXPECT_EQ(accepted.nBitsPerSample, row.m_accepted.nBitsPerSample) << row.m_strExtension;
        EXPECT_EQ(accepted.nChannels, row.m_accepted.nChannels) << row.m_strExtension;
    }
}

TEST(SndfileEncoder, ChoosesTheFormatByTheExtensionInAnyCaseAndNotByThePath) {
    CScratchDirectory scratch;
    const std::string path = scratch / "x.wav.part";
    SSink sink(path, "FLAC", {44100, 16, 1});
    ASSERT_TRUE(sink.m_process->Start(nullptr) && sink.Write(RandomBytes(2000)) && sink.m_process->End(nullptr));
    EXPECT_EQ(Content(path).substr(0, 4), "fLaC");
}

TEST(SndfileEncoder, WritesNothingBeforeStart) {
    CScratchDirectory scratch;
    { const SSink sink(scratch / "x.wav", "wav", {44100, 16, 1}); }
    EXPECT_FALSE(std::filesystem::exists(scratch / "x.wav"));
}

TEST(SndfileEncoder, LeavesAnExistingFileAloneUntilStart) {
    CScratchDirectory scratch;
    const std::string path = scratch.Write("x.flac", "dear old content");
    SSink sink(path, "flac", {44100, 16, 1});
    EXPECT_EQ(Content(path), "dear old content");
    ASSERT_TRUE(sink.m_process->Start(nullptr) && sink.m_process->End(nullptr));
    EXPECT_NE(Content(path), "dear old content");
}

TEST(SndfileEncoder, CompletesTheFileWhenItIsReleasedWithoutEnd) {
    CScratchDirectory scratch;
    const std::string samples = RandomBytes(100000);
    for (const std::string extension : {"wav", "flac"}) {
        const std::string path = scratch / ("x." + extension);
        {
            SSink sink(path, extension, {44100, 16, 2});
            ASSERT_TRUE(sink.m_process->Start(nullptr) && sink.Write(samples));
        }
        EXPECT_TRUE(Decoded(path) == samples) << extension;
    }
}

TEST(SndfileEncoder, WritesAnewAfterARestart) {
    CScratchDirectory scratch;
    SSink sink(scratch / "x.wav", "wav", {44100, 16, 1});
    ASSERT_TRUE(sink.m_process->Start(nullptr) && sink.Write(RandomBytes(4000)) && sink.m_process->End(nullptr));
    ASSERT_TRUE(sink.m_process->Start(nullptr) && sink.Write("abcd") && sink.m_process->End(nullptr));
    EXPECT_EQ(Decoded(scratch / "x.wav"), "abcd");
}

TEST(SndfileEncoder, TakesBlocksFromAnyAddressAndOfNoBytes) {
    CScratchDirectory scratch;
    const std::string samples = RandomBytes(4000);
    for (const int bits : {16, 32}) {
        SSink sink(scratch / "x.wav", "wav", {44100, bits, 1});
        ASSERT_TRUE(sink.m_process->Start(nullptr));
        EAudioRawState state = ARS_MORE;
        std::vector<unsigned char> shifted(4001);
        std::memcpy(shifted.data() + 1, samples.data(), samples.size());
        EXPECT_TRUE(sink.m_writer->RawWrite(nullptr, 0, state, nullptr));
        EXPECT_TRUE(sink.m_writer->RawWrite(shifted.data() + 1, 4000, state, nullptr));
        ASSERT_TRUE(sink.m_process->End(nullptr));
        EXPECT_TRUE(Decoded(scratch / "x.wav") == samples) << bits;
    }
}

TEST(SndfileEncoder, LeavesTheHostsStateAndDataAsTheyAre) {
    CScratchDirectory scratch;
    SSink sink(scratch / "x.wav", "wav", {44100, 8, 1});
    ASSERT_TRUE(sink.m_process->Start(nullptr));
    std::string data = "abcdef";
    EAudioRawState state = ARS_END;
    EXPECT_TRUE(sink.m_writer->RawWrite(reinterpret_cast<unsigned char*>(data.data()), 6, state, nullptr));
    EXPECT_EQ(state, ARS_END);
    EXPECT_EQ(data, "abcdef");
}

TEST(SndfileEncoder, IsInProcessBetweenStartAndEnd) {
    CScratchDirectory scratch;
    SSink sink(scratch / "x.wav", "wav", {44100, 16, 1});
    EXPECT_FALSE(sink.m_process->IsInProcess());
    ASSERT_TRUE(sink.m_process->Start(nullptr));
    EXPECT_TRUE(sink.m_process->IsInProcess());
    ASSERT_TRUE(sink.m_process->End(nullptr));
    EXPECT_FALSE(sink.m_process->IsInProcess());
}

TEST(SndfileEncoder, KeepsThePluginBusyWhileATargetOrAStreamIsAlive) {
    CScratchDirectory scratch;
    const auto opener = CComPtr<IAudioTargetOpener>::Query(Component(1).Get(), IID_IAudioTargetOpener);
    CComPtr<IAudioTarget> target;
    ASSERT_TRUE(opener->OpenTarget((scratch / "x.wav").c_str(), "wav", target.Out(), nullptr));
    EXPECT_FALSE(Plugin().m_pReadyToFinish());
    CComPtr<IUnknown> stream;
    ASSERT_TRUE(target->GetTargetFactory()->CreateTarget(stream.Out(), {44100, 16, 1}, nullptr));
    target.Reset();
    EXPECT_FALSE(Plugin().m_pReadyToFinish());
    stream.Reset();
    EXPECT_TRUE(Plugin().m_pReadyToFinish());
}

TEST(SndfileEncoder, TargetAnswersTagsAndSettings) {
    const auto opener = CComPtr<IAudioTargetOpener>::Query(Component(1).Get(), IID_IAudioTargetOpener);
    CComPtr<IAudioTarget> target;
    ASSERT_TRUE(opener->OpenTarget("/nowhere/x.wav", "wav", target.Out(), nullptr));
    for (const unsigned long identity : {IID_IUnknown, IID_ITargetTags, IID_INamedSettings}) {
        EXPECT_TRUE(CComPtr<IUnknown>::Query(target.Get(), identity)) << identity;
    }
    EXPECT_FALSE(CComPtr<IUnknown>::Query(target.Get(), IID_IProcess));
    EXPECT_EQ(target->QueryInterface(IID_IUnknown, nullptr), 3);
}

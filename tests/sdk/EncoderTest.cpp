// Encoder components, their targets and their streams.
#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

#include "sdk/Encoder.h"
#include "tests/support/EachAllocation.h"
#include "tests/support/StreamQueries.h"

namespace {

using support::TextOf;

// What became of a file.
struct SWritten {
    std::vector<unsigned char> m_bytes;
    bool m_bFinished = false;
    bool m_bFailsAtWrite = false;
    bool m_bFailsAtFinish = false;
    bool m_bGone = false;
};

class CMemoryWriter final : public CSoundWriter {
public:
    CMemoryWriter(SWritten& written, std::int64_t blockSize) : m_written(written), m_nBlockSize(blockSize) {}
    ~CMemoryWriter() override { m_written.m_bGone = true; }

    void Write(const unsigned char* data, std::int64_t frames) override {
        if (m_written.m_bFailsAtWrite) Refuse("cannot be written");
        m_written.m_bytes.insert(m_written.m_bytes.end(), data, data + frames * m_nBlockSize);
    }
    void Finish() override {
        if (m_written.m_bFailsAtFinish) Refuse("not written completely");
        m_written.m_bFinished = true;
    }

private:
    SWritten& m_written;
    std::int64_t m_nBlockSize;
};

class CMemoryEncoder final : public CEncoderComponent<> {
public:
    CMemoryEncoder() : CEncoderComponent("Memory Encoder", {"mem", "memo"}) {}

    SWritten m_written;
    STargetRequest m_request;  // of the last file
    int m_nCreated = 0;

private:
    SWavFormat AcceptFormat(const STargetRequest& /*request*/, const SWavFormat& format) override {
        if (format.nChannels > 2) Refuse("at most 2 channels");
        return {format.nSampleRate, 16, format.nChannels};
    }
    std::unique_ptr<CSoundWriter> CreateWriter(const STargetRequest& request, const SWavFormat& accepted) override {
        ++m_nCreated;
        m_request = request;
        return std::make_unique<CMemoryWriter>(m_written, BlockSizeOf(accepted));
    }
    bool HasTag(const STargetRequest& /*request*/, ETag tag) override { return tag != TAG_GENRE; }
    std::vector<SSetting> GetSettings(const std::string& extension) override {
        if (extension == "memo") return {};
        return {{"speed", "slow|fast", "slow"}, {"level", "0 to 9", "5"}};
    }
    void CheckSetting(const STargetRequest& /*request*/, const std::string& name, const std::string& value) override {
        if (name == "level" && value.size() != 1) Refuse("no level " + value);
    }
};

class SdkEncoder : public testing::Test {
protected:
    CComPtr<IAudioTarget> OpenTarget(const char* extension = "mem") {
        CComPtr<IAudioTarget> target;
        EXPECT_TRUE(m_encoder.OpenTarget("/out/some.mem", extension, target.Out(), nullptr));
        return target;
    }

    CComPtr<IUnknown> CreateStream(const CComPtr<IAudioTarget>& target, const SWavFormat& format = {8000, 24, 2}) {
        CComPtr<IUnknown> stream;
        EXPECT_TRUE(target->GetTargetFactory()->CreateTarget(stream.Out(), format, nullptr));
        return stream;
    }

    CMemoryEncoder m_encoder;
};

TEST_F(SdkEncoder, RefusesAnExtensionThatItDoesNotList) {
    CComPtr<IAudioTarget> target;
    CComPtr<IStatus> status;
    EXPECT_FALSE(m_encoder.OpenTarget("/out/some.ogg", "ogg", target.Out(), status.Out()));
    EXPECT_STREQ(TextOf(status), "some.ogg: no encoder for \".ogg\"; it writes mem, memo");
    EXPECT_FALSE(target);
    EXPECT_TRUE(m_encoder.OpenTarget("/out/some.MEM", "MEM", target.Out(), nullptr));
    EXPECT_FALSE(m_encoder.OpenTarget(nullptr, "mem", target.Out(), status.Out()));
    EXPECT_EQ(status->GetAudioError(), AE_BAD_ARGUMENT);
}

TEST_F(SdkEncoder, WithoutMemoryItOpensNoTargetAndThrowsNothing) {
    CComPtr<IAudioTarget> target;
    CComPtr<IStatus> status;
    support::LackEachAllocation(
        [&] { return m_encoder.OpenTarget("/songs/of a length.mem", "mem", target.Out(), status.Out()); },
        [&](bool opened) {
            EXPECT_EQ(target.Get() != nullptr, opened);
            EXPECT_EQ(status ? status->GetSysError() : 0, opened ? 0 : static_cast<unsigned int>(ENOMEM));
            target.Reset();
            status.Reset();
        });
}

TEST_F(SdkEncoder, NothingIsCreatedBeforeTheStart) {
    const auto stream = CreateStream(OpenTarget());
    EXPECT_EQ(m_encoder.m_nCreated, 0);
    const auto process = CComPtr<IProcess>::Query(stream.Get(), IID_IProcess);
    ASSERT_TRUE(process->Start(nullptr));
    EXPECT_EQ(m_encoder.m_nCreated, 1);
}

TEST_F(SdkEncoder, AcceptsItsOwnFormatAndTellsIt) {
    const auto stream = CreateStream(OpenTarget());
    const auto writer = CComPtr<IAudioRawWriter>::Query(stream.Get(), IID_IAudioRawWriter);
    EXPECT_EQ(writer->GetRawFormat(), (SWavFormat{8000, 16, 2}));
    CComPtr<IStatus> status;
    CComPtr<IUnknown> refused;
    EXPECT_FALSE(OpenTarget()->GetTargetFactory()->CreateTarget(refused.Out(), {8000, 16, 3}, status.Out()));
    EXPECT_STREQ(TextOf(status), "some.mem: at most 2 channels");
    EXPECT_FALSE(OpenTarget()->GetTargetFactory()->CreateTarget(refused.Out(), {8000, 0, 2}, status.Out()));
    EXPECT_STREQ(TextOf(status), "some.mem: samples without bits cannot be written");
}

TEST_F(SdkEncoder, WritesWholeFramesBetweenStartAndEnd) {
    const auto stream = CreateStream(OpenTarget());
    const auto process = CComPtr<IProcess>::Query(stream.Get(), IID_IProcess);
    const auto writer = CComPtr<IAudioRawWriter>::Query(stream.Get(), IID_IAudioRawWriter);
    unsigned char data[] = {1, 2, 3, 4, 5, 6, 7, 8};
    EAudioRawState state = ARS_MORE;
    CComPtr<IStatus> status;
    EXPECT_FALSE(writer->RawWrite(data, 8, state, status.Out()));
    EXPECT_STREQ(TextOf(status), "some.mem: write before start");
    ASSERT_TRUE(process->Start(nullptr));
    EXPECT_TRUE(writer->RawWrite(data, 8, state, nullptr));
    EXPECT_TRUE(writer->RawWrite(nullptr, 0, state, nullptr));
    EXPECT_FALSE(writer->RawWrite(data, 6, state, status.Out()));
    EXPECT_STREQ(TextOf(status), "some.mem: 6 bytes are not whole frames of 4");
    EXPECT_FALSE(writer->RawWrite(nullptr, 8, state, nullptr));
    ASSERT_TRUE(process->End(nullptr));
    EXPECT_TRUE(m_encoder.m_written.m_bFinished);
    EXPECT_EQ(m_encoder.m_written.m_bytes, std::vector<unsigned char>(data, data + 8));
}

TEST_F(SdkEncoder, FileThatIsNotWholeFailsTheEndAndIsClosed) {
    const auto stream = CreateStream(OpenTarget());
    const auto process = CComPtr<IProcess>::Query(stream.Get(), IID_IProcess);
    ASSERT_TRUE(process->Start(nullptr));
    m_encoder.m_written.m_bFailsAtFinish = true;
    CComPtr<IStatus> status;
    EXPECT_FALSE(process->End(status.Out()));
    EXPECT_STREQ(TextOf(status), "some.mem: not written completely");
    EXPECT_TRUE(m_encoder.m_written.m_bGone);
    EXPECT_FALSE(process->IsInProcess());
}

// The writer's own Finish has nothing against it.
TEST_F(SdkEncoder, FailedWriteFailsTheNextWritesAndTheEnd) {
    const auto stream = CreateStream(OpenTarget());
    const auto process = CComPtr<IProcess>::Query(stream.Get(), IID_IProcess);
    const auto writer = CComPtr<IAudioRawWriter>::Query(stream.Get(), IID_IAudioRawWriter);
    ASSERT_TRUE(process->Start(nullptr));
    unsigned char data[] = {1, 2, 3, 4};
    EAudioRawState state = ARS_MORE;
    CComPtr<IStatus> status;
    m_encoder.m_written.m_bFailsAtWrite = true;
    EXPECT_FALSE(writer->RawWrite(data, 4, state, status.Out()));
    EXPECT_STREQ(TextOf(status), "some.mem: cannot be written");
    m_encoder.m_written.m_bFailsAtWrite = false;
    for (const int size : {4, 0}) {
        EXPECT_FALSE(writer->RawWrite(data, size, state, status.Out()));
        EXPECT_STREQ(TextOf(status), "some.mem: an earlier write has failed");
    }
    EXPECT_FALSE(process->End(status.Out()));
    EXPECT_STREQ(TextOf(status), "some.mem: not written completely: an earlier write has failed");
    EXPECT_TRUE(m_encoder.m_written.m_bFinished);
    EXPECT_TRUE(m_encoder.m_written.m_bGone);
    EXPECT_TRUE(m_encoder.m_written.m_bytes.empty());
    EXPECT_FALSE(process->IsInProcess());
}

TEST_F(SdkEncoder, SamplesLostInAConversionFailTheEnd) {
    const auto stream = CreateStream(OpenTarget());
    const auto process = CComPtr<IProcess>::Query(stream.Get(), IID_IProcess);
    const auto writer = CComPtr<IAudioRawWriter>::Query(stream.Get(), IID_IAudioRawWriter);
    ASSERT_TRUE(process->Start(nullptr));
    unsigned char data[] = {1, 2, 3, 4};
    EAudioRawState state = ARS_MORE;
    // What a convertor says that has failed, or that does not tell the truth.
    for (const int size : {-1, -4, INT_MIN}) {
        CComPtr<IStatus> status;
        EXPECT_FALSE(writer->RawWrite(data, size, state, status.Out()));
        EXPECT_FALSE(status) << "the convertor's own status is the reason";
    }
    EXPECT_FALSE(writer->RawWrite(data, 4, state, nullptr));
    EXPECT_TRUE(m_encoder.m_written.m_bytes.empty());
    EXPECT_FALSE(process->End(nullptr));
}

TEST_F(SdkEncoder, NewStartForgetsAFailedWrite) {
    const auto stream = CreateStream(OpenTarget());
    const auto process = CComPtr<IProcess>::Query(stream.Get(), IID_IProcess);
    const auto writer = CComPtr<IAudioRawWriter>::Query(stream.Get(), IID_IAudioRawWriter);
    unsigned char data[] = {1, 2, 3, 4};
    EAudioRawState state = ARS_MORE;
    ASSERT_TRUE(process->Start(nullptr));
    m_encoder.m_written.m_bFailsAtWrite = true;
    EXPECT_FALSE(writer->RawWrite(data, 4, state, nullptr));
    m_encoder.m_written.m_bFailsAtWrite = false;
    EXPECT_FALSE(process->End(nullptr));
    ASSERT_TRUE(process->Start(nullptr));
    EXPECT_TRUE(writer->RawWrite(data, 4, state, nullptr));
    EXPECT_TRUE(process->End(nullptr));
}

TEST_F(SdkEncoder, StreamThatGoesWithoutAnEndClosesTheFile) {
    auto stream = CreateStream(OpenTarget());
    ASSERT_TRUE(CComPtr<IProcess>::Query(stream.Get(), IID_IProcess)->Start(nullptr));
    stream.Reset();
    EXPECT_TRUE(m_encoder.m_written.m_bGone);
    EXPECT_FALSE(m_encoder.m_written.m_bFinished);
}

TEST_F(SdkEncoder, TagsReachTheFile) {
    const auto target = OpenTarget();
    const auto tags = CComPtr<ITargetTags>::Query(target.Get(), IID_ITargetTags);
    ASSERT_TRUE(tags);
    EXPECT_TRUE(tags->HasTag(TAG_TITLE));
    EXPECT_FALSE(tags->HasTag(TAG_GENRE));
    EXPECT_FALSE(tags->HasTag(static_cast<ETag>(5)));
    EXPECT_TRUE(tags->SetTag(TAG_ALBUM, "album", nullptr));
    CComPtr<IStatus> status;
    EXPECT_FALSE(tags->SetTag(TAG_GENRE, "genre", status.Out()));
    EXPECT_STREQ(TextOf(status), "some.mem: a .mem file has no place for this tag");
    EXPECT_FALSE(tags->SetTag(TAG_TITLE, nullptr, status.Out()));
    EXPECT_EQ(status->GetAudioError(), AE_BAD_ARGUMENT);
    ASSERT_TRUE(CComPtr<IProcess>::Query(CreateStream(target).Get(), IID_IProcess)->Start(nullptr));
    EXPECT_EQ(m_encoder.m_request.m_tags.m_strAlbum, "album");
}

TEST_F(SdkEncoder, SettingsReachTheFile) {
    const auto target = OpenTarget();
    const auto settings = CComPtr<INamedSettings>::Query(target.Get(), IID_INamedSettings);
    ASSERT_EQ(settings->GetSettingCount(), 2);
    EXPECT_STREQ(settings->GetSettingName(0), "speed");
    EXPECT_STREQ(settings->GetSettingValues(1), "0 to 9");
    EXPECT_EQ(settings->GetSettingName(2), nullptr);
    EXPECT_STREQ(settings->GetSetting("level"), "5");
    EXPECT_TRUE(settings->SetSetting("speed", "fast", nullptr));
    CComPtr<IStatus> status;
    EXPECT_FALSE(settings->SetSetting("speed", "s", status.Out()));
    EXPECT_STREQ(TextOf(status), "some.mem: no speed \"s\"; it takes slow|fast");
    EXPECT_FALSE(settings->SetSetting("speed", "slow|fast", status.Out()));
    EXPECT_STREQ(TextOf(status), "some.mem: no speed \"slow|fast\"; it takes slow|fast");
    EXPECT_FALSE(settings->SetSetting("level", "12", status.Out()));
    EXPECT_STREQ(TextOf(status), "some.mem: no level 12");
    EXPECT_FALSE(settings->SetSetting("width", "12", status.Out()));
    EXPECT_STREQ(TextOf(status), "some.mem: no setting \"width\"; there is speed, level");
    EXPECT_STREQ(settings->GetSetting("level"), "5");
    ASSERT_TRUE(CComPtr<IProcess>::Query(CreateStream(target).Get(), IID_IProcess)->Start(nullptr));
    EXPECT_EQ(m_encoder.m_request.m_settings["speed"], "fast");
}

TEST_F(SdkEncoder, SettingsBelongToTheFileFormat) {
    const auto target = OpenTarget("memo");
    const auto settings = CComPtr<INamedSettings>::Query(target.Get(), IID_INamedSettings);
    EXPECT_EQ(settings->GetSettingCount(), 0);
    CComPtr<IStatus> status;
    EXPECT_FALSE(settings->SetSetting("speed", "fast", status.Out()));
    EXPECT_STREQ(TextOf(status), "some.mem: no setting \"speed\"; there are none");
}

}  // namespace

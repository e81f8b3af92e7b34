// Decoder components and their streams.
#include <gtest/gtest.h>

#include "sdk/Convertor.h"
#include "sdk/Decoder.h"
#include "tests/sdk/CountingSound.h"
#include "tests/support/EachAllocation.h"
#include "tests/support/ManagerHold.h"
#include "tests/support/StreamQueries.h"

namespace {

using support::CodeOf;
using support::TextOf;

class CCountingDecoder final : public CDecoderComponent<> {
public:
    CCountingDecoder() : CDecoderComponent("Counting Decoder", {"count", "cnt"}) {}

    SSoundPlan m_plan;
    EAudioFeature m_eLevel = AF_BASIC;
    bool m_bThrowsInt = false;

private:
    std::unique_ptr<CSound> OpenSound(const std::string& path, EAudioFeature level) override {
        m_eLevel = level;
        if (m_bThrowsInt) throw 5;
        if (path == "/bad.count") Refuse("not a counting file");
        if (path == "/null.count") return nullptr;
        return std::make_unique<CCountingSound>(m_plan);
    }
};

class SdkDecoder : public testing::Test {
protected:
    CComPtr<IUnknown> Open(const char* path = "/some.count") {
        CComPtr<IUnknown> stream;
        EXPECT_TRUE(m_decoder.Open(path, stream.Out(), AUX_CONVERT, AUX_NONE, nullptr));
        return stream;
    }

    std::string Refusal(const char* path) {
        CComPtr<IUnknown> stream;
        CComPtr<IStatus> status;
        EXPECT_FALSE(m_decoder.Open(path, stream.Out(), AUX_CONVERT, AUX_NONE, status.Out()));
        EXPECT_FALSE(stream);
        return TextOf(status);
    }

    template <typename TInterface>
    static CComPtr<TInterface> Face(const CComPtr<IUnknown>& stream) {
        return CComPtr<TInterface>::Query(stream.Get(), kIdentityOf<TInterface>);
    }

    CCountingDecoder m_decoder;
};

TEST_F(SdkDecoder, ListsItsExtensions) {
    const auto list = CComPtr<IExtensionList>::Query(static_cast<IAudioComponent*>(&m_decoder), IID_IExtensionList);
    ASSERT_TRUE(list);
    ASSERT_EQ(list->GetCount(), 2);
    EXPECT_STREQ(list->GetAt(1), "cnt");
    EXPECT_EQ(list->GetAt(2), nullptr);
    EXPECT_EQ(list->GetAt(-1), nullptr);
}

TEST_F(SdkDecoder, WithoutMemoryItOpensNothingAndThrowsNothing) {
    CComPtr<IUnknown> stream;
    CComPtr<IStatus> status;
    support::LackEachAllocation(
        [&] { return m_decoder.Open("/songs/of a length.count", stream.Out(), AUX_CONVERT, AUX_NONE, status.Out()); },
        [&](bool opened) {
            EXPECT_EQ(stream.Get() != nullptr, opened);
            EXPECT_EQ(status ? status->GetSysError() : 0, opened ? 0 : static_cast<unsigned int>(ENOMEM));
            stream.Reset();
            status.Reset();
        });
}

TEST_F(SdkDecoder, OpenerIsItsFirstTableWithTheControlBehindIt) {
    void* face = nullptr;
    IAudioComponent& component = m_decoder;
    ASSERT_EQ(component.QueryInterface(IID_IAudioFileOpener, &face), 0);
    EXPECT_EQ(static_cast<IAudioFileOpenerOperations*>(face)->GetAuxFlags(), AUX_CONVERT);
    auto* const control = reinterpret_cast<IAudioFileOpenerControl*>(static_cast<char*>(face) + sizeof(void*));
    EXPECT_EQ(control->GetOpenerState() & kOpenerEnabled, kOpenerEnabled);
    EXPECT_EQ(control->Release(), 0U);
}

TEST_F(SdkDecoder, RefusalNamesTheFileAndTheReason) {
    EXPECT_EQ(Refusal("/bad.count"), "bad.count: not a counting file");
    EXPECT_EQ(Refusal("/null.count"), "null.count: not opened");
    m_decoder.m_bThrowsInt = true;
    EXPECT_EQ(Refusal("/dir/any.count"), "any.count: unknown failure");
}

TEST_F(SdkDecoder, RefusesNullArguments) {
    CComPtr<IStatus> status;
    CComPtr<IUnknown> stream;
    EXPECT_FALSE(m_decoder.Open(nullptr, stream.Out(), AUX_NONE, AUX_NONE, status.Out()));
    EXPECT_EQ(status->GetAudioError(), AE_BAD_ARGUMENT);
    EXPECT_FALSE(m_decoder.Open("/some.count", nullptr, AUX_NONE, AUX_NONE, nullptr));
}

TEST_F(SdkDecoder, ReadsWholeFramesUntilTheEndAndCountsThem) {
    const auto stream = Open();
    const auto reader = Face<IAudioRawReader>(stream);
    const auto info = Face<IAudioRawBlockInfo>(stream);
    ASSERT_TRUE(Face<IProcess>(stream)->Start(nullptr));
    EXPECT_EQ(reader->GetRawLen(), 200U);
    EXPECT_EQ(info->GetBlockSize(), 2);
    unsigned char buffer[129] = {};
    int read = 0;
    EAudioRawState state = ARS_END;
    ASSERT_TRUE(reader->RawRead(buffer, 129, &read, state, nullptr));
    EXPECT_EQ(read, 128);
    EXPECT_EQ(state, ARS_MORE);
    EXPECT_EQ(buffer[126], 63);
    EXPECT_EQ(info->GetPos(), 64U);
    ASSERT_TRUE(reader->RawRead(buffer, 129, &read, state, nullptr));
    EXPECT_EQ(read, 72);
    ASSERT_TRUE(reader->RawRead(buffer, 129, &read, state, nullptr));
    EXPECT_EQ(read, 0);
    EXPECT_EQ(state, ARS_END);
    EXPECT_EQ(info->GetPos(), 100U);
}

TEST_F(SdkDecoder, RefusesReadsThatCannotBeServed) {
    const auto stream = Open();
    const auto reader = Face<IAudioRawReader>(stream);
    unsigned char buffer[8];
    int read = 7;
    EAudioRawState state = ARS_MORE;
    CComPtr<IStatus> status;
    EXPECT_FALSE(reader->RawRead(buffer, 8, &read, state, status.Out()));
    EXPECT_STREQ(TextOf(status), "some.count: read before start");
    EXPECT_EQ(read, 0);
    ASSERT_TRUE(Face<IProcess>(stream)->Start(nullptr));
    EXPECT_FALSE(reader->RawRead(buffer, 1, &read, state, status.Out()));
    EXPECT_STREQ(TextOf(status), "some.count: a buffer of 1 bytes does not hold a frame of 2");
    EXPECT_FALSE(reader->RawRead(nullptr, 8, &read, state, status.Out()));
    EXPECT_EQ(status->GetAudioError(), AE_BAD_ARGUMENT);
    EXPECT_FALSE(reader->RawRead(buffer, 8, nullptr, state, nullptr));
    EXPECT_FALSE(reader->RawRead(buffer, 0, &read, state, nullptr));
}

TEST_F(SdkDecoder, FailureOfTheSoundIsTheReadsFailure) {
    m_decoder.m_plan.m_nDamageAt = 0;
    const auto stream = Open();
    ASSERT_TRUE(Face<IProcess>(stream)->Start(nullptr));
    unsigned char buffer[8];
    int read = 7;
    EAudioRawState state = ARS_MORE;
    CComPtr<IStatus> status;
    EXPECT_FALSE(Face<IAudioRawReader>(stream)->RawRead(buffer, 8, &read, state, status.Out()));
    EXPECT_STREQ(TextOf(status), "some.count: damaged here");
}

TEST_F(SdkDecoder, StartsAgainAtTheFirstFrame) {
    const auto stream = Open();
    const auto process = Face<IProcess>(stream);
    const auto reader = Face<IAudioRawReader>(stream);
    unsigned char buffer[64];
    int read = 0;
    EAudioRawState state = ARS_MORE;
    CComPtr<IStatus> status;
    for (int round = 0; round < 2; ++round) {
        ASSERT_TRUE(process->Start(nullptr));
        EXPECT_TRUE(process->IsInProcess());
        EXPECT_FALSE(process->Start(status.Out()));
        EXPECT_STREQ(TextOf(status), "some.count: already started");
        ASSERT_TRUE(reader->RawRead(buffer, 64, &read, state, nullptr));
        EXPECT_EQ(buffer[2], 1) << round;
        ASSERT_TRUE(process->End(nullptr));
        EXPECT_FALSE(process->IsInProcess());
        EXPECT_FALSE(process->End(status.Out()));
        EXPECT_STREQ(TextOf(status), "some.count: not started");
    }
}

TEST_F(SdkDecoder, SoundThatCannotGoBackRefusesASecondStart) {
    m_decoder.m_plan.m_bSeekable = false;
    const auto stream = Open();
    const auto process = Face<IProcess>(stream);
    ASSERT_TRUE(process->Start(nullptr));
    ASSERT_TRUE(process->End(nullptr));
    CComPtr<IStatus> status;
    EXPECT_FALSE(process->Start(status.Out()));
    EXPECT_STREQ(TextOf(status), "some.count: cannot go back");
    EXPECT_FALSE(process->IsInProcess());
}

TEST_F(SdkDecoder, SeeksToFramesUpToTheEnd) {
    const auto stream = Open();
    const auto seekable = Face<ISeekable>(stream);
    const auto info = Face<IAudioRawBlockInfo>(stream);
    CComPtr<IStatus> status;
    EXPECT_FALSE(seekable->Seek(3, status.Out()));
    EXPECT_STREQ(TextOf(status), "some.count: seek before start");
    ASSERT_TRUE(Face<IProcess>(stream)->Start(nullptr));
    EXPECT_TRUE(seekable->Seek(100, nullptr));
    EXPECT_FALSE(seekable->Seek(101, status.Out()));
    EXPECT_STREQ(TextOf(status), "some.count: frame 101 is beyond the end (100 frames)");
    EXPECT_EQ(info->GetPos(), 100U);
    ASSERT_TRUE(seekable->Seek(40, nullptr));
    EXPECT_EQ(info->GetPos(), 40U);
    unsigned char buffer[2];
    int read = 0;
    EAudioRawState state = ARS_MORE;
    ASSERT_TRUE(Face<IAudioRawReader>(stream)->RawRead(buffer, 2, &read, state, nullptr));
    EXPECT_EQ(buffer[0], 40);
}

TEST_F(SdkDecoder, StaysWhereItIsWhenTheSoundDoesNotSeek) {
    m_decoder.m_plan.m_nUnreachable = 70;
    const auto stream = Open();
    const auto seekable = Face<ISeekable>(stream);
    const auto info = Face<IAudioRawBlockInfo>(stream);
    ASSERT_TRUE(Face<IProcess>(stream)->Start(nullptr));
    ASSERT_TRUE(seekable->Seek(40, nullptr));
    CComPtr<IStatus> status;
    EXPECT_FALSE(seekable->Seek(70, status.Out()));
    EXPECT_STREQ(TextOf(status), "some.count: cannot go there");
    EXPECT_EQ(info->GetPos(), 40U);
    unsigned char buffer[2];
    int read = 0;
    EAudioRawState state = ARS_MORE;
    ASSERT_TRUE(Face<IAudioRawReader>(stream)->RawRead(buffer, 2, &read, state, nullptr));
    EXPECT_EQ(buffer[0], 40);
    EXPECT_EQ(info->GetPos(), 41U);
}

TEST_F(SdkDecoder, OffersSeekingAndIndexOnlyWhereTheSoundHasThem) {
    m_decoder.m_plan.m_bSeekable = false;
    EXPECT_EQ(CodeOf(Open().Get(), IID_ISeekable), 2);
    EXPECT_EQ(CodeOf(Open().Get(), IID_IIndexArray), 2);
    EXPECT_EQ(CodeOf(Open().Get(), IID_IInfoReader), 0);
    m_decoder.m_plan.m_vIndexPoints = {0, 60};
    const auto index = Face<IIndexArray>(Open());
    ASSERT_EQ(index->GetIndexNumber(), 2);
    EXPECT_EQ(index->GetIndex(1), 60U);
    EXPECT_EQ(index->GetIndex(2), kNoIndexPoint);
    EXPECT_EQ(index->GetIndex(-1), kNoIndexPoint);
}

TEST_F(SdkDecoder, TellsTagsAndTheSourcesName) {
    m_decoder.m_plan.m_tags = {"title", "artist", "album", "1999", "genre"};
    const auto stream = Open("/music/some.count");
    const auto info = Face<IInfoReader>(stream);
    EXPECT_STREQ(info->GetTitle(), "title");
    EXPECT_STREQ(info->GetArtist(), "artist");
    EXPECT_STREQ(info->GetAlbum(), "album");
    EXPECT_STREQ(info->GetYear(), "1999");
    EXPECT_STREQ(info->GetGenre(), "genre");
    EXPECT_STREQ(Face<ISourceName>(stream)->GetSourceName(), "/music/some.count");
}

TEST_F(SdkDecoder, SoundOfFramesWithoutBytesIsRefused) {
    m_decoder.m_plan.m_format = {8000, 4, 1};
    EXPECT_EQ(Refusal("/some.count"), "some.count: a sound of frames without bytes");
}

TEST_F(SdkDecoder, LivingStreamKeepsThePluginFromFinishing) {
    EXPECT_FALSE(CLiveObject::AnyAlive());
    auto stream = Open();
    EXPECT_TRUE(CLiveObject::AnyAlive());
    stream.Reset();
    EXPECT_FALSE(CLiveObject::AnyAlive());
}

// A convertor that takes float samples, so that the manager may switch advanced formats on.
class CAdvancedConvertor final : public CConvertorComponent<> {
public:
    CAdvancedConvertor() : CConvertorComponent("Advanced Convertor") {}
    bool IsSupported(EAudioFeature) override { return true; }

private:
    std::unique_ptr<CConversion> CreateConversion(const SHeldWavFormat&, const SHeldWavFormat&) override {
        return nullptr;
    }
};

TEST_F(SdkDecoder, TellsTheSoundWhetherTheManagerTakesFloatSamples) {
    CAdvancedConvertor factory;
    const support::CManagerHold manager;
    ASSERT_TRUE(m_decoder.Initialize(manager.Get(), nullptr));
    Open();
    EXPECT_EQ(m_decoder.m_eLevel, AF_BASIC);
    ASSERT_TRUE(manager->SetConvertor(&factory, nullptr));
    ASSERT_TRUE(manager->EnableSupport(AF_BASIC, true));
    ASSERT_TRUE(manager->EnableSupport(AF_ADVANCED_FORMATS, true));
    m_decoder.m_plan.m_format = {8000, 32, 1};
    m_decoder.m_plan.m_nQualifier = kFloatSamples;
    const auto stream = Open();
    EXPECT_EQ(m_decoder.m_eLevel, AF_ADVANCED_FORMATS);
    EXPECT_EQ(Face<IAdvancedFormat>(stream)->GetAdvancedFormat().m_held,
              (SHeldWavFormat{{8000, 32, 1}, kFloatSamples}));
    m_decoder.Terminate();
    Open();
    EXPECT_EQ(m_decoder.m_eLevel, AF_BASIC);
}

}  // namespace

// Opening of local files: failures, statuses and the wrapping in a source.
#include <errno.h>
#include <gtest/gtest.h>

#include "stream/SrcConvAggregator.h"
#include "tests/stream/OpeningFixture.h"
#include "tests/support/ProcessUse.h"

namespace {

using support::CCountedStatus;
using support::CFakeDecoderComponent;
using support::EOutcome;
using support::ErrorOf;
using support::TextOf;

constexpr SWavFormat kStudio{48000, 24, 2};

class SourceOpening : public support::COpeningFixture {
protected:
    SourceOpening() {
        for (CFakeDecoderComponent* const component : {&m_first, &m_second, &m_other}) Prepare(*component);
    }

    // Makes every decoder refuse with a status of its name.
    void RefuseAll(EOutcome outcome = EOutcome::Fails) {
        m_first.m_opener.m_open = {outcome, "first"};
        m_second.m_opener.m_open = {outcome, "second"};
        m_other.m_opener.m_open = {outcome, "other"};
    }

    CFakeDecoderComponent m_first{"first", {"wav"}};
    CFakeDecoderComponent m_second{"second", {"wav"}};
    CFakeDecoderComponent m_other{"other", {"ogg"}};
};

TEST_F(SourceOpening, NamesOfUnknownClassAreRefusedAndLeaveTheStreamAlone) {
    Register({&m_first});
    for (const char* const name : {"", "song.wav", "file:///song.wav", "http://", "ftp://", "/"}) {
        SCOPED_TRACE(name);
        CComPtr<IStatus> status;
        m_pStream = Untouched();
        EXPECT_FALSE(m_manager->OpenURLAudioFile(name, &m_pStream, -1, AUX_NONE, AUX_NONE, status.Out()));
        EXPECT_EQ(ErrorOf(status), 0x80000003U);
        EXPECT_EQ(m_pStream, Untouched());
    }
    CComPtr<IStatus> status;
    EXPECT_FALSE(m_manager->OpenURLAudioFile(nullptr, &m_pStream, -1, AUX_NONE, AUX_NONE, status.Out()));
    EXPECT_EQ(ErrorOf(status), 0x80000003U);
    EXPECT_FALSE(m_manager->OpenURLAudioFile(nullptr, &m_pStream, -1, AUX_NONE, AUX_NONE, nullptr));
}

TEST_F(SourceOpening, AFileThatCannotBeReadTellsTheSystemsReasonAndLeavesTheStreamAlone) {
    Register({&m_first});
    m_directory.Write("file", "x");
    const std::pair<std::string, unsigned int> kTable[] = {{m_directory / "missing.wav", ENOENT},
                                                           {m_directory / "file/song.wav", ENOTDIR},
                                                           {m_directory / std::string(300, 'a'), ENAMETOOLONG}};
    for (const auto& [path, error] : kTable) {
        CComPtr<IStatus> status;
        m_pStream = Untouched();
        EXPECT_FALSE(m_manager->OpenURLAudioFile(path.c_str(), &m_pStream, -1, AUX_NONE, AUX_NONE, status.Out()));
        ASSERT_TRUE(status);
        EXPECT_EQ(status->GetSysError(), error);
        EXPECT_EQ(status->GetAudioError(), AE_NONE);
        EXPECT_EQ(m_pStream, Untouched());
        EXPECT_FALSE(m_manager->OpenURLAudioFile(path.c_str(), &m_pStream, -1, AUX_NONE, AUX_NONE, nullptr));
    }
    EXPECT_TRUE(m_log.Lines().empty());
}

TEST_F(SourceOpening, TheFileIsClosedAgainBeforeADecoderIsAsked) {
    Register({&m_first});
    const std::size_t before = support::MeasureUse().m_nDescriptors;
    std::vector<std::size_t> during;
    m_first.m_onCall = [&](const char*) { during.push_back(support::MeasureUse().m_nDescriptors); };
    EXPECT_TRUE(Open(m_song));
    ASSERT_FALSE(during.empty());
    for (const std::size_t descriptors : during) EXPECT_EQ(descriptors, before);
}

TEST_F(SourceOpening, WithoutAnyDecoderThereIsNoneForTheFile) {
    CComPtr<IStatus> status;
    EXPECT_FALSE(Open(m_song, -1, status.Out()));
    EXPECT_EQ(ErrorOf(status), 0x80000004U);
    EXPECT_EQ(m_pStream, nullptr);
}

TEST_F(SourceOpening, AFailedChoiceClearsTheStream) {
    Register({&m_first});
    RefuseAll();
    m_pStream = Untouched();
    EXPECT_FALSE(m_manager->OpenURLAudioFile(m_song.c_str(), &m_pStream, -1, AUX_NONE, AUX_NONE, nullptr));
    EXPECT_EQ(m_pStream, nullptr);
}

TEST_F(SourceOpening, TheStreamOfTheDecoderThatOpensIsHandedOut) {
    Register({&m_first});
    EXPECT_TRUE(Open(m_song));
    EXPECT_EQ(m_decoder.m_nReferences, 1U);
    ASSERT_EQ(m_first.m_opener.m_openCalls.size(), 1U);
    EXPECT_EQ(m_first.m_opener.m_openCalls[0].m_path, m_song);
    EXPECT_EQ(m_first.m_opener.m_openCalls[0].m_ppStream, &m_pStream);
    EXPECT_TRUE(m_first.m_opener.m_openCalls[0].m_bHadStatus);
    ExpectNothingHeld();
}

TEST_F(SourceOpening, ASuccessStoresNoStatusNotEvenARememberedOne) {
    Register({&m_first, &m_second});
    m_first.m_opener.m_open = {EOutcome::Fails, "first"};
    m_second.m_opener.m_open.m_pReason = "second";
    CComPtr<IStatus> status;
    EXPECT_TRUE(Open(m_song, -1, status.Out()));
    EXPECT_FALSE(status);
    ExpectNothingHeld();
}

TEST_F(SourceOpening, TheLastRefusalOfAListingDecoderIsTheReason) {
    Register({&m_first, &m_second, &m_other});
    RefuseAll();
    CComPtr<IStatus> status;
    EXPECT_FALSE(Open(m_song, -1, status.Out()));
    EXPECT_STREQ(TextOf(status), "second");
    EXPECT_EQ(CCountedStatus::Alive(), 1);
    EXPECT_EQ(status->AddRef(), 2U);
    status->Release();
    status.Reset();
    ExpectNothingHeld();
}

TEST_F(SourceOpening, ARefusalWithoutAStatusKeepsTheEarlierOne) {
    Register({&m_first, &m_second});
    RefuseAll();
    m_second.m_opener.m_open.m_pReason = nullptr;
    CComPtr<IStatus> status;
    EXPECT_FALSE(Open(m_song, -1, status.Out()));
    EXPECT_STREQ(TextOf(status), "first");
}

TEST_F(SourceOpening, RefusalsWithoutAnyStatusGiveTheGeneralReason) {
    Register({&m_first});
    m_first.m_opener.m_open.m_eOutcome = EOutcome::Fails;
    CComPtr<IStatus> status;
    EXPECT_FALSE(Open(m_song, -1, status.Out()));
    EXPECT_EQ(ErrorOf(status), 0x80000004U);
}

TEST_F(SourceOpening, ARefusalOfADecoderThatDoesNotListTheExtensionIsNeverReported) {
    Register({&m_other});
    RefuseAll();
    for (const int pass : {1, -1}) {
        CComPtr<IStatus> status;
        EXPECT_FALSE(Open(m_song, pass, status.Out()));
        EXPECT_EQ(m_other.m_opener.m_openCalls.size(), pass == 1 ? 1U : 2U);
        EXPECT_EQ(ErrorOf(status), 0x80000004U);
        ExpectNothingHeld();
    }
}

TEST_F(SourceOpening, WithoutAStatusPointerNothingIsKept) {
    Register({&m_first, &m_second, &m_other});
    RefuseAll();
    EXPECT_FALSE(Open(m_song));
    EXPECT_TRUE(m_first.m_opener.m_openCalls.at(0).m_bHadStatus);  // one of the manager's own
    ExpectNothingHeld();
}

TEST_F(SourceOpening, AnExceptionOfAnOpenerCountsAsARefusalWithItsStatus) {
    Register({&m_first, &m_second});
    for (const EOutcome outcome : {EOutcome::ThrowsInt, EOutcome::ThrowsException}) {
        RefuseAll(outcome);
        CComPtr<IStatus> status;
        EXPECT_FALSE(Open(m_song, -1, status.Out()));
        EXPECT_STREQ(TextOf(status), "second");
        status.Reset();
        ExpectNothingHeld();
    }
    m_second.m_opener.m_open = {};
    EXPECT_TRUE(Open(m_song));
    ExpectNothingHeld();
}

TEST_F(SourceOpening, WithoutTheConvertBitTheBareDecoderIsHandedOut) {
    Register({&m_first});
    EXPECT_TRUE(OpenWanted(m_song, &kStudio));
    EXPECT_EQ(m_decoder.m_nReferences, 1U);
    EXPECT_EQ(m_decoder.m_pOuter, nullptr);
}

TEST_F(SourceOpening, WithTheConvertBitTheDecoderIsWrapped) {
    m_eRequired = AUX_CONVERT;
    Register({&m_first});
    EXPECT_TRUE(OpenWanted(m_song, &kStudio));
    auto reader = CComPtr<IAudioRawReader>::Query(m_pStream, IID_IAudioRawReader);
    ASSERT_TRUE(reader);
    EXPECT_EQ(reader->GetRawFormat(), kStudio);
    EXPECT_TRUE(CComPtr<IRealFormat>::Query(m_pStream, IID_IRealFormat));
    ExpectNothingHeld();
}

TEST_F(SourceOpening, AWrappedDecoderWithoutAWantedFormatDeliversItsOwn) {
    m_eRequired = AUX_CONVERT;
    m_decoder.m_format = {8000, 8, 1};
    Register({&m_first});
    EXPECT_TRUE(OpenWanted(m_song, nullptr));
    auto reader = CComPtr<IAudioRawReader>::Query(m_pStream, IID_IAudioRawReader);
    ASSERT_TRUE(reader);
    EXPECT_EQ(reader->GetRawFormat(), (SWavFormat{8000, 8, 1}));
}

TEST_F(SourceOpening, AWrappedOpenNeedsADecoderWithTheConvertCapability) {
    m_eRequired = AUX_CONVERT;
    m_first.m_opener.m_eCapabilities = AUX_NONE;
    Register({&m_first});
    CComPtr<IStatus> status;
    EXPECT_FALSE(OpenWanted(m_song, &kStudio, status.Out()));
    EXPECT_EQ(ErrorOf(status), 0x80000004U);
    EXPECT_TRUE(m_first.m_opener.m_openCalls.empty());
}

TEST_F(SourceOpening, AFailureToOpenIsTheSameWithAWantedFormat) {
    Register({&m_first});
    CComPtr<IStatus> status;
    EXPECT_FALSE(OpenWanted("song.wav", &kStudio, status.Out()));
    EXPECT_EQ(ErrorOf(status), 0x80000003U);
}

TEST_F(SourceOpening, ADecoderThatCannotBeWrappedIsLeftToTheCallerWithoutAStatus) {
    m_eRequired = AUX_CONVERT;
    m_decoder.m_denied.insert(IID_IAudioRawBlockInfo);
    Register({&m_first});
    CComPtr<IStatus> status;
    EXPECT_FALSE(OpenWanted(m_song, &kStudio, status.Out()));
    EXPECT_FALSE(status);
    ASSERT_NE(m_pStream, nullptr);
    EXPECT_EQ(m_decoder.m_nReferences, 1U);
    EXPECT_EQ(m_pStream->Release(), 0U);
    m_pStream = nullptr;
    EXPECT_EQ(m_decoder.m_nAlive, 0);
}

TEST_F(SourceOpening, AnOpenerThatSucceedsWithoutAStreamIsNotWrapped) {
    m_eRequired = AUX_CONVERT;
    m_first.m_opener.m_newStream = nullptr;
    Register({&m_first});
    EXPECT_FALSE(OpenWanted(m_song, &kStudio));
    EXPECT_EQ(m_pStream, nullptr);
}

}  // namespace

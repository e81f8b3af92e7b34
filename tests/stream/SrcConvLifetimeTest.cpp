// Start, end, reference counting and destruction of a source.
#include <gtest/gtest.h>

#include "tests/stream/SourceFixture.h"

namespace {

using support::CCountedStatus;
using support::EOutcome;
using support::kCompactDisc;
using support::kStudio;
using support::TextOf;

class SrcConvLifetime : public support::CSourceFixture {
protected:
    // Starts a source that needs a convertor.
    bool StartStudio(IStatus** status) {
        EXPECT_TRUE(Wrap(kStudio));
        return m_pAggregator->Start(status);
    }

    void ExpectDecoderWasEnded() {
        EXPECT_EQ(m_script.m_log.Count("start"), 1);
        EXPECT_EQ(m_script.m_log.Count("end"), 1);
        EXPECT_EQ(m_factory.m_convertor.m_nAlive, 0);
    }
};

TEST_F(SrcConvLifetime, EqualFormatsStartWithoutAskingTheFactory) {
    InstallFactory();
    ASSERT_TRUE(Wrap(kCompactDisc));
    EXPECT_TRUE(m_pAggregator->Start(nullptr));
    EXPECT_TRUE(m_factory.m_createCalls.empty());
    EXPECT_TRUE(m_pAggregator->End(nullptr));
}

TEST_F(SrcConvLifetime, DifferentFormatsStartWithAConvertorFromRealToRaw) {
    InstallFactory();
    CComPtr<IStatus> status;
    IStatus** const out = status.Out();
    ASSERT_TRUE(StartStudio(out));
    ASSERT_EQ(m_factory.m_createCalls.size(), 1U);
    const support::SCreateCall& call = m_factory.m_createCalls[0];
    EXPECT_TRUE(call.m_from == (SHeldWavFormat{kCompactDisc, 0}));
    EXPECT_TRUE(call.m_to == (SHeldWavFormat{kStudio, 0}));
    EXPECT_EQ(call.m_ppStatus, out);
    EXPECT_EQ(m_factory.m_nReservedCalls, 0);
}

TEST_F(SrcConvLifetime, AFailingDecoderStartFailsWithItsStatus) {
    InstallFactory();
    for (const EOutcome outcome : {EOutcome::Fails, EOutcome::ThrowsInt, EOutcome::ThrowsException}) {
        m_script.m_start = {outcome, "no device"};
        CComPtr<IStatus> status;
        EXPECT_FALSE(StartStudio(status.Out()));
        EXPECT_STREQ(TextOf(status), "no device");
        EXPECT_TRUE(m_factory.m_createCalls.empty());
        EXPECT_EQ(m_script.m_log.Count("end"), 0);
        Close();
    }
    EXPECT_EQ(CCountedStatus::Alive(), 0);
}

TEST_F(SrcConvLifetime, WithoutAFactoryTheDecoderIsEndedAndNoStatusStored) {
    CComPtr<IStatus> status;
    EXPECT_FALSE(StartStudio(status.Out()));
    EXPECT_FALSE(status);
    ExpectDecoderWasEnded();
}

TEST_F(SrcConvLifetime, AFailingFactoryEndsTheDecoderAndPassesItsStatus) {
    InstallFactory();
    for (const EOutcome outcome : {EOutcome::Fails, EOutcome::ThrowsInt, EOutcome::ThrowsException}) {
        for (const bool yields : {false, true}) {
            m_factory.m_create = {outcome, "no such rate"};
            m_factory.m_bYields = yields;
            m_script.m_log.Clear();
            CComPtr<IStatus> status;
            EXPECT_FALSE(StartStudio(status.Out()));
            EXPECT_STREQ(TextOf(status), "no such rate");
            ExpectDecoderWasEnded();
            Close();
        }
    }
    EXPECT_EQ(CCountedStatus::Alive(), 0);
}

TEST_F(SrcConvLifetime, OfSeveralStatusesInAFailedStartTheLastIsTheCallers) {
    InstallFactory();
    m_script.m_start.m_pReason = "late";
    m_factory.m_create = {EOutcome::Fails, "no such rate"};
    for (const char* const ending : {"ended", static_cast<const char*>(nullptr)}) {
        m_script.m_end.m_pReason = ending;
        CComPtr<IStatus> status;
        EXPECT_FALSE(StartStudio(status.Out()));
        EXPECT_STREQ(TextOf(status), ending != nullptr ? ending : "no such rate");
        EXPECT_EQ(CCountedStatus::Alive(), 1);
        Close();
    }
    EXPECT_EQ(CCountedStatus::Alive(), 0);
}

TEST_F(SrcConvLifetime, AFactoryThatYieldsNoConvertorFails) {
    InstallFactory();
    m_factory.m_bYields = false;
    CComPtr<IStatus> status;
    EXPECT_FALSE(StartStudio(status.Out()));
    EXPECT_FALSE(status);
    ExpectDecoderWasEnded();
}

TEST_F(SrcConvLifetime, AnExceptionOfTheDecodersEndIsSwallowedAfterAFailedConversion) {
    m_script.m_end.m_eOutcome = EOutcome::ThrowsException;
    EXPECT_FALSE(StartStudio(nullptr));
    EXPECT_EQ(m_script.m_log.Count("end"), 1);
}

TEST_F(SrcConvLifetime, AFailedStartMayBeTriedAgain) {
    EXPECT_FALSE(StartStudio(nullptr));
    InstallFactory();
    EXPECT_TRUE(m_pAggregator->Start(nullptr));
    EXPECT_TRUE(m_pAggregator->End(nullptr));
}

TEST_F(SrcConvLifetime, EndReleasesTheConvertorAfterTheDecodersEnd) {
    StartConverting(kStudio);
    m_script.m_log.Clear();
    EXPECT_TRUE(m_pAggregator->End(nullptr));
    EXPECT_EQ(m_factory.m_convertor.m_nAlive, 0);
    EXPECT_EQ(m_script.m_log.Lines(), (std::vector<std::string>{"end", "release convertor"}));
}

TEST_F(SrcConvLifetime, AFailingEndKeepsTheConvertorAndPassesTheStatus) {
    StartConverting(kStudio);
    for (const EOutcome outcome : {EOutcome::Fails, EOutcome::ThrowsInt, EOutcome::ThrowsException}) {
        m_script.m_end = {outcome, "still busy"};
        CComPtr<IStatus> status;
        EXPECT_FALSE(m_pAggregator->End(status.Out()));
        EXPECT_STREQ(TextOf(status), "still busy");
        EXPECT_EQ(m_factory.m_convertor.m_nAlive, 1);
    }
    m_script.m_end = {};
    EXPECT_TRUE(m_pAggregator->End(nullptr));
}

TEST_F(SrcConvLifetime, StartsAndEndsAgainAndAgain) {
    InstallFactory();
    ASSERT_TRUE(Wrap(kStudio));
    for (int round = 0; round < 3; ++round) {
        EXPECT_TRUE(m_pAggregator->Start(nullptr));
        EXPECT_TRUE(m_pAggregator->End(nullptr));
    }
    EXPECT_EQ(m_factory.m_createCalls.size(), 3U);
    EXPECT_EQ(m_factory.m_convertor.m_nAlive, 0);
}

TEST_F(SrcConvLifetime, IsInProcessIsTheDecodersAnswer) {
    ASSERT_TRUE(Wrap(nullptr));
    EXPECT_FALSE(m_pAggregator->IsInProcess());
    m_script.m_bInProcess = true;
    EXPECT_TRUE(m_pAggregator->IsInProcess());
}

// The interfaces that a decoder lacks, and the references that the source then holds on it.
struct SHoldings {
    std::set<unsigned long> m_denied;
    unsigned int m_nHoldings;
};

TEST_F(SrcConvLifetime, SharesTheDecodersCountAndEndsWithTheHostsLastReference) {
    const SHoldings kTable[] = {{{}, 8},
                                {{IID_ISeekable}, 7},
                                {{IID_IInfoReader}, 7},
                                {{IID_IIndexArray}, 7},
                                {{IID_ISeekable, IID_IInfoReader, IID_IIndexArray}, 5}};
    for (const bool delegates : {true, false}) {
        for (const SHoldings& row : kTable) {
            SCOPED_TRACE(row.m_denied.size());
            m_script.m_bDelegates = delegates;
            m_script.m_denied = row.m_denied;
            ASSERT_TRUE(Wrap(nullptr));
            EXPECT_EQ(m_script.m_nReferences, row.m_nHoldings + 1);
            EXPECT_EQ(m_pAggregator->AddRef(), row.m_nHoldings + 2);
            EXPECT_EQ(m_pAggregator->Release(), row.m_nHoldings + 1);
            EXPECT_EQ(m_script.m_nAlive, 1);
            EXPECT_EQ(Close(), 0U);
            EXPECT_EQ(m_script.m_nAlive, 0);
        }
    }
}

TEST_F(SrcConvLifetime, EveryFaceSharesTheOneCount) {
    ASSERT_TRUE(Wrap(nullptr));
    const unsigned int before = m_script.m_nReferences;
    EXPECT_EQ(static_cast<IProcess*>(m_pAggregator)->AddRef(), before + 1);
    EXPECT_EQ(static_cast<ISeekable*>(m_pAggregator)->AddRef(), before + 2);
    EXPECT_EQ(static_cast<IRealFormat*>(m_pAggregator)->Release(), before + 1);
    EXPECT_EQ(static_cast<IIndexArray*>(m_pAggregator)->Release(), before);
}

TEST_F(SrcConvLifetime, AForeignInterfaceKeepsTheSourceAlive) {
    m_script.m_denied.erase(IID_ISourceName);
    ASSERT_TRUE(Wrap(nullptr));
    auto name = CComPtr<ISourceName>::Query(m_pStream, IID_ISourceName);
    ASSERT_TRUE(name);
    EXPECT_NE(Close(), 0U);
    EXPECT_EQ(m_script.m_nAlive, 1);
    name.Reset();
    EXPECT_EQ(m_script.m_nAlive, 0);
}

TEST_F(SrcConvLifetime, GivesItsReferencesBackInTheFixedOrder) {
    const std::vector<std::string> expected{"convertor",       "ISeekable",     "IInfoReader",
                                            "IIndexArray",     "IAggregatable", "IAudioRawBlockInfo",
                                            "IAudioRawReader", "IProcess",      "stream"};
    for (const bool delegates : {true, false}) {
        m_script.m_bDelegates = delegates;
        StartConverting(kStudio);
        m_script.m_log.Clear();
        Close();
        EXPECT_EQ(m_script.m_log.After("release "), expected);
        EXPECT_EQ(m_script.m_log.Lines().back(), "destroyed");
        m_script.m_log.Clear();
    }
}

TEST_F(SrcConvLifetime, TheManagerIsReleasedAfterTheConvertorAndBeforeTheDecoder) {
    StartConverting(kStudio);
    m_manager.Release();  // the source's reference is the last one, and the manager lets go of the factory at its end
    m_script.m_log.Clear();
    Close();
    EXPECT_EQ(g_pAudioPluginMgr, nullptr);
    const std::vector<std::string> released = m_script.m_log.After("release ");
    ASSERT_GE(released.size(), 3U);
    EXPECT_EQ(released[0], "convertor");
    EXPECT_EQ(released[1], "factory");
    EXPECT_EQ(released[2], "ISeekable");
}

TEST_F(SrcConvLifetime, DestructionDoesNotEndAStartedStream) {
    StartConverting(kStudio);
    m_script.m_log.Clear();
    Close();
    EXPECT_EQ(m_script.m_log.Count("end"), 0);
    EXPECT_EQ(m_script.m_nAlive, 0);
    EXPECT_EQ(m_factory.m_convertor.m_nAlive, 0);
}

TEST_F(SrcConvLifetime, ADecoderThatThrowsWhileItIsWrappedIsLetGoOf) {
    m_script.m_setAggregator.m_eOutcome = EOutcome::ThrowsInt;
    const std::int64_t before = g_lAggregators;
    EXPECT_THROW(Wrap(nullptr), int);
    EXPECT_EQ(g_lAggregators, before);
    EXPECT_EQ(m_script.m_nReferences, 1U);
    EXPECT_EQ(m_pStream, m_pDecoder);
}

TEST_F(SrcConvLifetime, ADecoderThatThrowsFromItsFormatForgetsTheSource) {
    m_script.m_bFormatThrows = true;
    EXPECT_THROW(Wrap(nullptr), int);
    EXPECT_EQ(m_script.m_pOuter, nullptr);
    EXPECT_EQ(m_script.m_nReferences, 1U);
    EXPECT_EQ(m_pStream, m_pDecoder);
}

}  // namespace

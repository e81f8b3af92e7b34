// Creation, interfaces, reference counting and destruction of a target.
#include <gtest/gtest.h>

#include "stream/TargetAggregator.h"
#include "tests/stream/TargetFixture.h"

namespace {

using support::CCountedStatus;
using support::EOutcome;
using support::kCompactDisc;
using support::kStudio;
using support::TextOf;

class TargetAggregator : public support::CTargetFixture {};

TEST_F(TargetAggregator, TheFactoryGetsTheHostsFormat) {
    ASSERT_TRUE(Create(kStudio));
    ASSERT_EQ(m_targets.m_formats.size(), 1U);
    EXPECT_EQ(m_targets.m_formats[0], kStudio);
    EXPECT_EQ(m_targets.m_nReservedCalls, 0);
    EXPECT_EQ(m_pTarget->GetRawFormat(), kStudio);
}

TEST_F(TargetAggregator, TheFactoryGetsTheCallersOwnPointers) {
    CComPtr<IStatus> status;
    IStatus** const out = status.Out();
    ASSERT_TRUE(Create(kStudio, out));
    EXPECT_EQ(m_targets.m_ppStream, &m_pStream);
    EXPECT_EQ(m_targets.m_ppStatus, out);
}

TEST_F(TargetAggregator, AFactoryThatThrowsFailsAndPassesItsStatus) {
    for (const EOutcome outcome : {EOutcome::ThrowsInt, EOutcome::ThrowsException}) {
        m_targets.m_create = {outcome, "disk gone"};
        CComPtr<IStatus> status;
        EXPECT_FALSE(Create(kCompactDisc, status.Out()));
        EXPECT_STREQ(TextOf(status), "disk gone");
        EXPECT_EQ(m_pStream, nullptr);
    }
    EXPECT_EQ(CCountedStatus::Alive(), 0);
}

TEST_F(TargetAggregator, AFailingFactoryPassesItsStatus) {
    m_targets.m_create = {EOutcome::Fails, "disk full"};
    CComPtr<IStatus> status;
    EXPECT_FALSE(Create(kCompactDisc, status.Out()));
    EXPECT_STREQ(TextOf(status), "disk full");
    EXPECT_EQ(m_script.m_nAlive, 0);
}

TEST_F(TargetAggregator, AFactoryWithoutAnEncoderFails) {
    m_targets.m_pEncoder = nullptr;
    m_targets.m_create.m_pReason = "nothing to write with";
    CComPtr<IStatus> status;
    EXPECT_FALSE(Create(kCompactDisc, status.Out()));
    EXPECT_STREQ(TextOf(status), "nothing to write with");
    EXPECT_EQ(m_pStream, nullptr);
}

TEST_F(TargetAggregator, EveryRequiredInterfaceIsRequired) {
    for (const unsigned long identity : {IID_IAggregatable, IID_IProcess, IID_IAudioRawWriter}) {
        SCOPED_TRACE(identity);
        m_script.m_denied = {identity};
        const std::int64_t before = g_lAggregators;
        CComPtr<IStatus> status;
        EXPECT_FALSE(Create(kCompactDisc, status.Out()));
        EXPECT_FALSE(status);
        ASSERT_NE(m_pStream, nullptr);
        EXPECT_EQ(m_script.m_nReferences, 1U);
        EXPECT_EQ(m_script.m_log.Count("set aggregator"), 0);
        EXPECT_EQ(g_lAggregators, before);
        EXPECT_EQ(Close(), 0U);
        EXPECT_EQ(m_script.m_nAlive, 0);
    }
}

TEST_F(TargetAggregator, ARefusedSetAggregatorLeavesTheEncoderToTheCaller) {
    m_script.m_setAggregator.m_eOutcome = EOutcome::Fails;
    CComPtr<IStatus> status;
    EXPECT_FALSE(Create(kCompactDisc, status.Out()));
    EXPECT_FALSE(status);
    EXPECT_EQ(m_script.m_nReferences, 1U);
    EXPECT_EQ(Close(), 0U);
}

TEST_F(TargetAggregator, AsksTheEncoderInTheFixedOrder) {
    ASSERT_TRUE(Create(kCompactDisc));
    const std::vector<std::string> expected{"query 4", "query 2", "query 23", "set aggregator"};
    EXPECT_EQ(m_script.m_log.Lines(), expected);
    EXPECT_EQ(m_script.m_pOuter, m_pStream);
}

TEST_F(TargetAggregator, CountsItselfBeforeItTakesReferences) {
    const std::int64_t before = g_lAggregators;
    ASSERT_TRUE(Create(kCompactDisc));
    EXPECT_EQ(m_script.m_nAliveAtFirstAddRef, before + 1);
}

TEST_F(TargetAggregator, HoldsTheManagerWhileItLives) {
    const unsigned int before = m_manager->AddRef();
    ASSERT_TRUE(Create(kCompactDisc));
    EXPECT_EQ(m_manager->AddRef(), before + 2);
    m_manager->Release();
    Close();
    EXPECT_EQ(m_manager->Release(), before - 1);
}

TEST_F(TargetAggregator, AnswersItsOwnInterfacesWithItsOwnFaces) {
    ASSERT_TRUE(Create(kCompactDisc));
    const std::pair<unsigned long, void*> kFaces[] = {{IID_IUnknown, static_cast<IAudioRawWriter*>(m_pTarget)},
                                                      {IID_IAudioRawWriter, static_cast<IAudioRawWriter*>(m_pTarget)},
                                                      {IID_IProcess, static_cast<IProcess*>(m_pTarget)}};
    m_script.m_log.Clear();
    for (const auto& [identity, expected] : kFaces) {
        SCOPED_TRACE(identity);
        const unsigned int before = m_script.m_nReferences;
        void* face = nullptr;
        EXPECT_EQ(m_pTarget->QueryInterface(identity, &face), 0);
        EXPECT_EQ(face, expected);
        EXPECT_EQ(m_script.m_nReferences, before + 1);
        m_pTarget->Release();
    }
    EXPECT_TRUE(m_script.m_log.Lines().empty());
}

TEST_F(TargetAggregator, ANullOutPointerIsRefusedBeforeAnythingElse) {
    ASSERT_TRUE(Create(kCompactDisc));
    m_script.m_log.Clear();
    for (const unsigned long identity : {IID_IUnknown, IID_IAudioRawWriter, 999UL}) {
        EXPECT_EQ(m_pTarget->QueryInterface(identity, nullptr), 3);
    }
    EXPECT_TRUE(m_script.m_log.Lines().empty());
}

TEST_F(TargetAggregator, ForwardsOtherInterfacesToTheEncodersInnerQuery) {
    ASSERT_TRUE(Create(kCompactDisc));
    m_script.m_log.Clear();
    void* face = this;
    EXPECT_EQ(m_pTarget->QueryInterface(IID_IAudioRawReader, &face), 2);
    EXPECT_EQ(face, nullptr);
    EXPECT_EQ(m_pTarget->QueryInterface(IID_IAggregatable, &face), 0);
    EXPECT_NE(face, nullptr);
    m_pTarget->Release();
    const std::vector<std::string> expected{"inner query 6", "inner query 4"};
    EXPECT_EQ(m_script.m_log.Lines(), expected);
}

TEST_F(TargetAggregator, SharesTheEncodersCountAndEndsWithTheHostsLastReference) {
    for (const bool delegates : {true, false}) {
        m_script.m_bDelegates = delegates;
        ASSERT_TRUE(Create(kCompactDisc));
        EXPECT_EQ(m_script.m_nReferences, 5U);
        EXPECT_EQ(m_pTarget->AddRef(), 6U);
        EXPECT_EQ(static_cast<IAudioRawWriter*>(m_pTarget)->Release(), 5U);
        EXPECT_EQ(m_script.m_nAlive, 1);
        EXPECT_EQ(Close(), 0U);
        EXPECT_EQ(m_script.m_nAlive, 0);
    }
}

TEST_F(TargetAggregator, GivesItsReferencesBackInTheFixedOrder) {
    const std::vector<std::string> expected{"convertor", "IAggregatable", "IAudioRawWriter", "IProcess", "stream"};
    for (const bool delegates : {true, false}) {
        m_script.m_bDelegates = delegates;
        StartConverting(kStudio);
        m_script.m_log.Clear();
        Close();
        EXPECT_EQ(m_script.m_log.After("release "), expected);
        EXPECT_EQ(m_script.m_log.Lines().back(), "destroyed");
    }
}

TEST_F(TargetAggregator, TheManagerIsReleasedAfterTheConvertorAndBeforeTheEncoder) {
    StartConverting(kStudio);
    m_manager.Release();  // the target's reference is the last one, and the manager lets go of the factory at its end
    m_script.m_log.Clear();
    Close();
    EXPECT_EQ(g_pAudioPluginMgr, nullptr);
    const std::vector<std::string> released = m_script.m_log.After("release ");
    ASSERT_GE(released.size(), 3U);
    EXPECT_EQ(released[0], "convertor");
    EXPECT_EQ(released[1], "factory");
    EXPECT_EQ(released[2], "IAggregatable");
}

TEST_F(TargetAggregator, DestructionDoesNotEndAStartedStream) {
    StartConverting(kStudio);
    Close();
    EXPECT_EQ(m_script.m_log.Count("end"), 0);
    EXPECT_EQ(m_factory.m_convertor.m_nAlive, 0);
}

TEST_F(TargetAggregator, WithoutAManagerItStillWritesButConvertsNothing) {
    m_pStream = support::NewEncoder(m_script);
    m_pTarget = new CTargetAggregator(nullptr, &m_pStream, kStudio);
    ASSERT_TRUE(m_pTarget->IsValid());
    CComPtr<IStatus> status;
    EXPECT_FALSE(m_pTarget->Start(status.Out()));
    EXPECT_STREQ(TextOf(status), "No conversion possible");
}

}  // namespace

// The manager's convertor factory and what the aggregators do to its references.
#include <gtest/gtest.h>

#include "tests/stream/SourceFixture.h"
#include "tests/support/FakeEncoder.h"

namespace {

using support::EOutcome;
using support::ErrorOf;
using support::kStudio;

class ConvertorFactory : public support::CSourceFixture {
protected:
    IConvertorFactory* Installed() {
        IConvertorFactory* factory = &m_factory;
        EXPECT_TRUE(m_manager->GetConvertor(&factory));
        return factory;
    }

    // One converting start of a target; its result.
    bool StartTarget() {
        support::SEncoderScript encoder;
        encoder.m_start = m_targetStart;
        support::CFakeTargetFactory targets;
        targets.m_pEncoder = &encoder;
        IUnknown* stream = nullptr;
        EXPECT_TRUE(m_manager->CreateURLAudioTarget(&targets, &stream, kStudio, nullptr));
        const auto target = CComPtr<IProcess>::Query(stream, IID_IProcess);
        const bool started = target->Start(nullptr);
        if (started) target->End(nullptr);
        stream->Release();
        return started;
    }

    support::SScriptedCall m_targetStart;
};

TEST_F(ConvertorFactory, NoneIsInstalledAtFirst) { EXPECT_EQ(Installed(), nullptr); }

TEST_F(ConvertorFactory, ANullResultPointerIsRefused) { EXPECT_FALSE(m_manager->GetConvertor(nullptr)); }

TEST_F(ConvertorFactory, TheManagerHoldsOneReferenceAndLendsThePointer) {
    InstallFactory();
    EXPECT_EQ(m_factory.References(), 2U);
    EXPECT_EQ(Installed(), &m_factory);
    EXPECT_EQ(m_factory.References(), 2U);
    m_manager.Release();
    EXPECT_EQ(m_factory.References(), 1U);
}

TEST_F(ConvertorFactory, InstallingClearsTheStatus) {
    IStatus* status = reinterpret_cast<IStatus*>(this);
    EXPECT_TRUE(m_manager->SetConvertor(&m_factory, &status));
    EXPECT_EQ(status, nullptr);
}

TEST_F(ConvertorFactory, InstallingItAgainChangesNothing) {
    InstallFactory();
    InstallFactory();
    EXPECT_EQ(m_factory.References(), 2U);
    EXPECT_EQ(Installed(), &m_factory);
}

TEST_F(ConvertorFactory, InstallingItAgainNeverGivesTheLastReferenceBack) {
    InstallFactory();
    m_factory.Release();  // the manager's is the only one
    InstallFactory();
    EXPECT_FALSE(m_factory.m_bEnded);
    EXPECT_EQ(m_factory.References(), 1U);
}

TEST_F(ConvertorFactory, AnotherFactoryTakesItsPlace) {
    InstallFactory();
    support::CFakeConvertorFactory other;
    EXPECT_TRUE(m_manager->SetConvertor(&other, nullptr));
    EXPECT_EQ(m_factory.References(), 1U);
    EXPECT_EQ(other.References(), 2U);
    EXPECT_EQ(Installed(), &other);
    InstallFactory();
}

TEST_F(ConvertorFactory, NullIsRefusedWithAStatusAndChangesNothing) {
    InstallFactory();
    CComPtr<IStatus> status;
    IStatus* raw = reinterpret_cast<IStatus*>(this);
    EXPECT_FALSE(m_manager->SetConvertor(nullptr, &raw));
    status = CComPtr<IStatus>::Adopt(raw);
    EXPECT_EQ(ErrorOf(status), 0x80000001U);
    EXPECT_FALSE(m_manager->SetConvertor(nullptr, nullptr));
    EXPECT_EQ(Installed(), &m_factory);
    EXPECT_EQ(m_factory.References(), 2U);
}

TEST_F(ConvertorFactory, WithoutOneAConvertingStartFails) {
    ASSERT_TRUE(Wrap(kStudio));
    EXPECT_FALSE(m_pAggregator->Start(nullptr));
    EXPECT_FALSE(StartTarget());
}

TEST_F(ConvertorFactory, AConvertingSourceTakesNoReference) {
    InstallFactory();
    for (const EOutcome outcome : {EOutcome::Succeeds, EOutcome::Fails, EOutcome::ThrowsInt}) {
        m_factory.m_create.m_eOutcome = outcome;
        ASSERT_TRUE(Wrap(kStudio));
        EXPECT_EQ(m_pAggregator->Start(nullptr), outcome == EOutcome::Succeeds);
        EXPECT_EQ(m_factory.References(), 2U);
        Close();
        EXPECT_EQ(m_factory.References(), 2U);
    }
}

TEST_F(ConvertorFactory, EveryConvertingTargetStartCostsOneReference) {
    constexpr unsigned int kStarts = 6;
    for (unsigned int i = 0; i < kStarts; ++i) m_factory.AddRef();
    InstallFactory();
    unsigned int expected = m_factory.References();
    EXPECT_TRUE(StartTarget());
    EXPECT_EQ(m_factory.References(), --expected);
    EXPECT_TRUE(StartTarget());
    EXPECT_EQ(m_factory.References(), --expected);
    for (const EOutcome outcome : {EOutcome::Fails, EOutcome::ThrowsInt}) {  // the factory fails
        m_factory.m_create.m_eOutcome = outcome;
        EXPECT_FALSE(StartTarget());
        EXPECT_EQ(m_factory.References(), --expected);
    }
    m_factory.m_create = {};
    for (const EOutcome outcome : {EOutcome::Fails, EOutcome::ThrowsException}) {  // the encoder fails
        m_targetStart.m_eOutcome = outcome;
        EXPECT_FALSE(StartTarget());
        EXPECT_EQ(m_factory.References(), --expected);
    }
    EXPECT_EQ(expected, 2U);
}

}  // namespace

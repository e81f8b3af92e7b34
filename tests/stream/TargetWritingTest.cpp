// Start, end and writes of a target.
#include <gtest/gtest.h>

#include <cstring>

#include "tests/stream/TargetFixture.h"

namespace {

using support::CCountedStatus;
using support::EOutcome;
using support::ErrorOf;
using support::kCompactDisc;
using support::kStudio;
using support::TextOf;

constexpr EAudioRawState kLastBlock = static_cast<EAudioRawState>(7);

class TargetWriting : public support::CTargetFixture {
protected:
    bool Write(IStatus** status = nullptr) {
        return m_pTarget->RawWrite(m_data.data(), static_cast<int>(m_data.size()), m_eState, status);
    }

    std::vector<unsigned char> m_data{1, 2, 3, 4, 5, 6, 7, 8};
    EAudioRawState m_eState = kLastBlock;
};

TEST_F(TargetWriting, EqualFormatsStartWithoutAskingTheFactory) {
    InstallFactory();
    ASSERT_TRUE(Create(kCompactDisc));
    const unsigned int before = m_factory.References();
    EXPECT_TRUE(m_pTarget->Start(nullptr));
    EXPECT_TRUE(m_factory.m_createCalls.empty());
    EXPECT_EQ(m_factory.References(), before);
    EXPECT_EQ(m_script.m_log.Count("start"), 1);
}

TEST_F(TargetWriting, DifferentFormatsStartWithAConvertorFromHostToEncoder) {
    StartConverting(kStudio);
    ASSERT_EQ(m_factory.m_createCalls.size(), 1U);
    EXPECT_TRUE(m_factory.m_createCalls[0].m_from == (SHeldWavFormat{kStudio, 0}));
    EXPECT_TRUE(m_factory.m_createCalls[0].m_to == (SHeldWavFormat{kCompactDisc, 0}));
    EXPECT_EQ(m_factory.m_createCalls[0].m_ppStatus, nullptr);
    EXPECT_EQ(m_factory.m_nReservedCalls, 0);
}

TEST_F(TargetWriting, TheFactoryGetsTheCallersStatusPointerAndZeroReservedWords) {
    InstallFactory();
    SAdvancedWavFormat seen{{}, {9, 9, 9, 9, 9}};
    m_factory.m_onCreate = [&](const SWavFormat* from) { std::memcpy(&seen, from, sizeof seen); };
    ASSERT_TRUE(Create(kStudio));
    CComPtr<IStatus> status;
    IStatus** const out = status.Out();
    ASSERT_TRUE(m_pTarget->Start(out));
    EXPECT_EQ(m_factory.m_createCalls.at(0).m_ppStatus, out);
    for (const std::int32_t word : seen.m_nReserved) EXPECT_EQ(word, 0);
}

TEST_F(TargetWriting, EachFieldOfTheFormatDecidesAboutConversion) {
    InstallFactory(3);
    for (const SWavFormat& format : {SWavFormat{48000, 16, 2}, SWavFormat{44100, 24, 2}, SWavFormat{44100, 16, 1}}) {
        ASSERT_TRUE(Create(format));
        EXPECT_TRUE(m_pTarget->Start(nullptr));
        Close();
    }
    EXPECT_EQ(m_factory.m_createCalls.size(), 3U);
}

TEST_F(TargetWriting, TheEncodersFormatIsReadAtEachStart) {
    ASSERT_TRUE(Create(kCompactDisc));
    m_script.m_format = kStudio;
    EXPECT_FALSE(m_pTarget->Start(nullptr));
    m_script.m_format = kCompactDisc;
    EXPECT_TRUE(m_pTarget->Start(nullptr));
}

TEST_F(TargetWriting, WithoutAFactoryNoConversionIsPossible) {
    ASSERT_TRUE(Create(kStudio));
    CComPtr<IStatus> status;
    EXPECT_FALSE(m_pTarget->Start(status.Out()));
    EXPECT_STREQ(TextOf(status), "No conversion possible");
    EXPECT_EQ(ErrorOf(status), AE_NONE);
    EXPECT_EQ(m_script.m_log.Count("start"), 0);
    EXPECT_FALSE(m_pTarget->Start(nullptr));
}

TEST_F(TargetWriting, AFailingFactoryMakesConversionImpossible) {
    InstallFactory(6);
    ASSERT_TRUE(Create(kStudio));
    for (const EOutcome outcome : {EOutcome::Fails, EOutcome::ThrowsInt, EOutcome::ThrowsException}) {
        for (const bool yields : {false, true}) {
            m_factory.m_create = {outcome, "no such rate"};
            m_factory.m_bYields = yields;
            CComPtr<IStatus> status;
            EXPECT_FALSE(m_pTarget->Start(status.Out()));
            EXPECT_STREQ(TextOf(status), "No conversion possible");
            EXPECT_EQ(m_factory.m_convertor.m_nAlive, 0);
        }
    }
    EXPECT_EQ(CCountedStatus::Alive(), 0);
    EXPECT_EQ(m_script.m_log.Count("start"), 0);
}

TEST_F(TargetWriting, AFactoryThatYieldsNoConvertorMakesConversionImpossible) {
    InstallFactory();
    m_factory.m_bYields = false;
    ASSERT_TRUE(Create(kStudio));
    CComPtr<IStatus> status;
    EXPECT_FALSE(m_pTarget->Start(status.Out()));
    EXPECT_STREQ(TextOf(status), "No conversion possible");
    EXPECT_EQ(m_script.m_log.Count("start"), 0);
}

TEST_F(TargetWriting, AStatusOfASucceedingFactoryReachesTheCaller) {
    InstallFactory();
    m_factory.m_create.m_pReason = "with loss";
    ASSERT_TRUE(Create(kStudio));
    CComPtr<IStatus> status;
    EXPECT_TRUE(m_pTarget->Start(status.Out()));
    EXPECT_STREQ(TextOf(status), "with loss");
}

TEST_F(TargetWriting, AStatusOfTheEncodersStartTakesThePlaceOfTheFactorys) {
    InstallFactory();
    m_factory.m_create.m_pReason = "with loss";
    m_script.m_start.m_pReason = "slow device";
    ASSERT_TRUE(Create(kStudio));
    CComPtr<IStatus> status;
    EXPECT_TRUE(m_pTarget->Start(status.Out()));
    EXPECT_STREQ(TextOf(status), "slow device");
    EXPECT_EQ(CCountedStatus::Alive(), 1);
}

TEST_F(TargetWriting, AFailingEncoderStartDropsTheConvertorAndPassesTheStatus) {
    InstallFactory(3);
    ASSERT_TRUE(Create(kStudio));
    for (const EOutcome outcome : {EOutcome::Fails, EOutcome::ThrowsInt, EOutcome::ThrowsException}) {
        m_script.m_start = {outcome, "no device"};
        CComPtr<IStatus> status;
        EXPECT_FALSE(m_pTarget->Start(status.Out()));
        EXPECT_STREQ(TextOf(status), "no device");
        EXPECT_EQ(m_factory.m_convertor.m_nAlive, 0);
    }
    EXPECT_EQ(m_factory.m_createCalls.size(), 3U);
}

TEST_F(TargetWriting, TheConvertorGoesBeforeTheFactoryWhenTheEncoderDoesNotStart) {
    InstallFactory();
    m_script.m_start.m_eOutcome = EOutcome::Fails;
    ASSERT_TRUE(Create(kStudio));
    m_script.m_log.Clear();
    EXPECT_FALSE(m_pTarget->Start(nullptr));
    const std::vector<std::string> expected{"start", "release convertor", "release factory"};
    EXPECT_EQ(m_script.m_log.Lines(), expected);
}

TEST_F(TargetWriting, AnExceptionOfTheEncodersFormatDoesNotLeaveStart) {
    ASSERT_TRUE(Create(kCompactDisc));
    m_script.m_bFormatThrows = true;
    EXPECT_FALSE(m_pTarget->Start(nullptr));
}

TEST_F(TargetWriting, EndReleasesTheConvertorAfterTheEncodersEnd) {
    StartConverting(kStudio);
    m_script.m_log.Clear();
    EXPECT_TRUE(m_pTarget->End(nullptr));
    EXPECT_EQ(m_factory.m_convertor.m_nAlive, 0);
    EXPECT_EQ(m_script.m_log.Lines(), (std::vector<std::string>{"end", "release convertor"}));
}

TEST_F(TargetWriting, AFailingEndKeepsTheConvertorAndPassesTheStatus) {
    StartConverting(kStudio);
    for (const EOutcome outcome : {EOutcome::Fails, EOutcome::ThrowsInt, EOutcome::ThrowsException}) {
        m_script.m_end = {outcome, "still busy"};
        CComPtr<IStatus> status;
        EXPECT_FALSE(m_pTarget->End(status.Out()));
        EXPECT_STREQ(TextOf(status), "still busy");
        EXPECT_EQ(m_factory.m_convertor.m_nAlive, 1);
    }
    m_script.m_end = {};
    EXPECT_TRUE(m_pTarget->End(nullptr));
}

TEST_F(TargetWriting, IsInProcessIsTheEncodersAnswer) {
    ASSERT_TRUE(Create(kCompactDisc));
    EXPECT_FALSE(m_pTarget->IsInProcess());
    m_script.m_bInProcess = true;
    EXPECT_TRUE(m_pTarget->IsInProcess());
}

TEST_F(TargetWriting, RefusesBadArguments) {
    ASSERT_TRUE(Create(kCompactDisc));
    for (const auto& [data, size] : {std::pair<unsigned char*, int>{nullptr, 8}, {m_data.data(), 0}}) {
        CComPtr<IStatus> status;
        EXPECT_FALSE(m_pTarget->RawWrite(data, size, m_eState, status.Out()));
        EXPECT_EQ(ErrorOf(status), 0x80000001U);
        EXPECT_FALSE(m_pTarget->RawWrite(data, size, m_eState, nullptr));
    }
    EXPECT_TRUE(m_script.m_writeCalls.empty());
}

TEST_F(TargetWriting, WithoutAConvertorTheCallersBytesReachTheEncoder) {
    ASSERT_TRUE(Create(kCompactDisc));
    ASSERT_TRUE(m_pTarget->Start(nullptr));
    CComPtr<IStatus> status;
    IStatus** const out = status.Out();
    EXPECT_TRUE(Write(out));
    ASSERT_EQ(m_script.m_writeCalls.size(), 1U);
    EXPECT_EQ(m_script.m_writeCalls[0].m_pData, m_data.data());
    EXPECT_EQ(m_script.m_writeCalls[0].m_bytes, m_data);
    EXPECT_EQ(m_script.m_writeCalls[0].m_ppStatus, out);
}

TEST_F(TargetWriting, TheStateTravelsUnchangedBothWays) {
    ASSERT_TRUE(Create(kCompactDisc));
    EXPECT_TRUE(Write());
    EXPECT_EQ(m_script.m_writeCalls.at(0).m_eState, kLastBlock);
    EXPECT_EQ(m_eState, kLastBlock);
    m_script.m_bAnswers = true;
    m_script.m_eAnswer = static_cast<EAudioRawState>(0x999);
    EXPECT_TRUE(Write());
    EXPECT_EQ(m_eState, static_cast<EAudioRawState>(0x999));
}

TEST_F(TargetWriting, TheEncodersResultIsTheResult) {
    ASSERT_TRUE(Create(kCompactDisc));
    m_script.m_bWriteResult = false;
    EXPECT_FALSE(Write());
}

TEST_F(TargetWriting, AConvertingWriteHandsOverTheConvertedBlock) {
    StartConverting(kStudio);
    m_factory.m_convertor.m_bConvertResult = false;  // ignored
    m_factory.m_convertor.m_convert = [](const std::vector<unsigned char>& bytes) {
        return std::vector<unsigned char>(bytes.rbegin(), bytes.rend() - 2);
    };
    CComPtr<IStatus> status;
    IStatus** const out = status.Out();
    EXPECT_TRUE(Write(out));
    const support::SConvertCall& convert = m_factory.m_convertor.m_convertCalls.at(0);
    EXPECT_EQ(convert.m_pData, m_data.data());
    EXPECT_EQ(convert.m_bytes, m_data);
    EXPECT_EQ(convert.m_nFlags, 0);
    EXPECT_EQ(convert.m_ppStatus, out);
    EXPECT_EQ(m_script.m_log.After("output "), (std::vector<std::string>{"data", "length"}));
    const support::SWriteCall& write = m_script.m_writeCalls.at(0);
    EXPECT_EQ(write.m_bytes, (std::vector<unsigned char>{8, 7, 6, 5, 4, 3}));
    EXPECT_EQ(write.m_eState, kLastBlock);
}

TEST_F(TargetWriting, AStatusOfTheConvertorStandsUnlessTheEncoderHasOne) {
    StartConverting(kStudio);
    m_factory.m_convertor.m_pReason = "not converted";
    CComPtr<IStatus> status;
    EXPECT_TRUE(Write(status.Out()));
    EXPECT_STREQ(TextOf(status), "not converted");
    m_script.m_pWriteReason = "not written";
    EXPECT_TRUE(Write(status.Out()));
    EXPECT_STREQ(TextOf(status), "not written");
    EXPECT_EQ(CCountedStatus::Alive(), 1);
}

TEST_F(TargetWriting, AnEmptyConvertedBlockStillReachesTheEncoder) {
    StartConverting(kStudio);
    m_factory.m_convertor.m_convert = [](const std::vector<unsigned char>&) { return std::vector<unsigned char>(); };
    EXPECT_TRUE(Write());
    EXPECT_TRUE(m_script.m_writeCalls.at(0).m_bytes.empty());
}

TEST_F(TargetWriting, AfterEndTheCallersBytesReachTheEncoderAgain) {
    StartConverting(kStudio);
    ASSERT_TRUE(m_pTarget->End(nullptr));
    EXPECT_TRUE(Write());
    EXPECT_EQ(m_script.m_writeCalls.at(0).m_pData, m_data.data());
}

}  // namespace

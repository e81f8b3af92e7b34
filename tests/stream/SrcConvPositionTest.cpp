// Lengths, positions and seeks of a source.
#include <gtest/gtest.h>

#include <array>

#include "tests/stream/SourceFixture.h"

namespace {

using support::kCompactDisc;
using support::kStudio;

class SrcConvPosition : public support::CSourceFixture {};

// Expected values are computed in float, step by step as the contract says.
struct SRatios {
    SWavFormat m_real;
    SWavFormat m_wanted;
    float m_fByteRatio;
    float m_fRateRatio;
};

constexpr std::array<SRatios, 4> kRatios = {{
    {{44100, 16, 2}, {48000, 24, 2}, 176400.0F / 288000.0F, 44100.0F / 48000.0F},
    {{48000, 24, 6}, {44100, 16, 2}, 864000.0F / 176400.0F, 48000.0F / 44100.0F},
    {{44100, 12, 2}, {8000, 8, 1}, 88200.0F / 8000.0F, 44100.0F / 8000.0F},
    {{8000, 8, 1}, {192000, 32, 8}, 8000.0F / 6144000.0F, 8000.0F / 192000.0F},
}};

constexpr std::array<std::uint64_t, 6> kLengths = {0, 1, 1000, 16777217, 123456789, (std::uint64_t{1} << 40) + 12345};

TEST_F(SrcConvPosition, RawLengthScalesByTheByteRatioInSinglePrecision) {
    for (const SRatios& row : kRatios) {
        m_script.m_format = row.m_real;
        ASSERT_TRUE(Wrap(row.m_wanted));
        for (const std::uint64_t length : kLengths) {
            m_script.m_nRawLength = length;
            const float expected = static_cast<float>(length) / row.m_fByteRatio;
            EXPECT_EQ(m_pAggregator->GetRawLen(), static_cast<std::uint64_t>(expected)) << length;
        }
        Close();
    }
}

TEST_F(SrcConvPosition, DataLengthScalesItsLow32BitsByTheRateRatio) {
    for (const SRatios& row : kRatios) {
        m_script.m_format = row.m_real;
        ASSERT_TRUE(Wrap(row.m_wanted));
        for (const std::uint64_t length : kLengths) {
            m_script.m_nDataLength = length;
            const float low = static_cast<float>(static_cast<std::uint32_t>(length));
            EXPECT_EQ(m_pAggregator->GetDataLength(), static_cast<std::uint64_t>(low / row.m_fRateRatio)) << length;
        }
        Close();
    }
}

TEST_F(SrcConvPosition, PositionScalesAllItsBitsByTheRateRatio) {
    m_script.m_nDataLength = 5;
    for (const SRatios& row : kRatios) {
        m_script.m_format = row.m_real;
        ASSERT_TRUE(Wrap(row.m_wanted));
        for (const std::uint64_t position : kLengths) {
            m_script.m_nPosition = position;
            const float expected = static_cast<float>(position) / row.m_fRateRatio;
            EXPECT_EQ(m_pAggregator->GetPos(), static_cast<std::uint64_t>(expected)) << position;
        }
        Close();
    }
}

TEST_F(SrcConvPosition, TheEndIsReportedExactly) {
    ASSERT_TRUE(Wrap(kStudio));
    for (const std::uint64_t length : kLengths) {
        m_script.m_nDataLength = length;
        m_script.m_nPosition = length;
        EXPECT_EQ(m_pAggregator->GetPos(), m_pAggregator->GetDataLength()) << length;
    }
}

TEST_F(SrcConvPosition, AtEqualFormatsThePositionIsTheDecoders) {
    ASSERT_TRUE(Wrap(kCompactDisc));
    m_script.m_nDataLength = 99;
    for (const std::uint64_t position : {0U, 1U, 44100U, 16777216U}) {
        m_script.m_nPosition = position;
        EXPECT_EQ(m_pAggregator->GetPos(), position);
    }
    m_script.m_nPosition = 16777217;  // single precision loses the low digit
    EXPECT_EQ(m_pAggregator->GetPos(), 16777216U);
}

TEST_F(SrcConvPosition, SeeksToTheLow32BitsTimesTheRateRatio) {
    for (const SRatios& row : kRatios) {
        m_script.m_format = row.m_real;
        ASSERT_TRUE(Wrap(row.m_wanted));
        for (const std::uint64_t position : kLengths) {
            m_script.m_seeks.clear();
            EXPECT_TRUE(m_pAggregator->Seek(position, nullptr));
            const float low = static_cast<float>(static_cast<std::uint32_t>(position));
            EXPECT_EQ(m_script.m_seeks.at(0), static_cast<unsigned long>(low * row.m_fRateRatio)) << position;
        }
        Close();
    }
}

TEST_F(SrcConvPosition, SeekPassesTheStatusAndAnswersWhatTheDecoderAnswers) {
    ASSERT_TRUE(Wrap(nullptr));
    m_script.m_bSeekResult = false;
    CComPtr<IStatus> status;
    IStatus** const out = status.Out();
    EXPECT_FALSE(m_pAggregator->Seek(1, out));
    EXPECT_EQ(m_script.m_seeks.size(), 1U);
    EXPECT_EQ(m_script.m_ppSeekStatus, out);
}

TEST_F(SrcConvPosition, SeekWithoutASeekableDecoderFails) {
    m_script.m_denied.insert(IID_ISeekable);
    ASSERT_TRUE(Wrap(nullptr));
    EXPECT_FALSE(m_pAggregator->Seek(0, nullptr));
    EXPECT_TRUE(m_script.m_seeks.empty());
}

TEST_F(SrcConvPosition, TheBlockSizeIsThatOfTheRawFormat) {
    m_script.m_nBlockSize = 1000;
    ASSERT_TRUE(Wrap(kStudio));
    EXPECT_EQ(m_pAggregator->GetBlockSize(), 6);
    Close();
    ASSERT_TRUE(Wrap(SWavFormat{44100, 12, 2}));
    EXPECT_EQ(m_pAggregator->GetBlockSize(), 2);
    Close();
    ASSERT_TRUE(Wrap(SWavFormat{44100, -12, 2}));
    EXPECT_EQ(m_pAggregator->GetBlockSize(), -2);
}

TEST_F(SrcConvPosition, AFormatWithoutBytesDividesWithoutHarm) {
    m_script.m_nRawLength = 100;
    m_script.m_nDataLength = 100;
    ASSERT_TRUE(Wrap(SWavFormat{0, 0, 0}));
    EXPECT_EQ(m_pAggregator->GetRawLen(), 0U);
    EXPECT_EQ(m_pAggregator->GetDataLength(), 0U);
}

}  // namespace

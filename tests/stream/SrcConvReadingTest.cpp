// Reads of a source.
#include <gtest/gtest.h>

#include <limits>

#include "com/StatusObject.h"
#include "tests/stream/SourceFixture.h"

namespace {

using support::ErrorOf;
using support::kCompactDisc;
using support::kStudio;

// The same byte rate as kCompactDisc in another layout, for conversions of ratio 1.
constexpr SWavFormat kSameByteRate{88200, 16, 1};

constexpr EAudioRawState kLastBlock = static_cast<EAudioRawState>(7);

class SrcConvReading : public support::CSourceFixture {
protected:
    bool Read(int size, IStatus** status = nullptr) {
        m_eState = kLastBlock;
        return m_pAggregator->RawRead(m_buffer.data(), size, &m_nRead, m_eState, status);
    }

    // The size that the decoder is asked for, -1 when it is not asked.
    int DecoderSize(int size) {
        m_script.m_readCalls.clear();
        Read(size);
        return m_script.m_readCalls.empty() ? -1 : m_script.m_readCalls[0].m_nSize;
    }

    std::vector<unsigned char> m_buffer = std::vector<unsigned char>(1 << 20);
    int m_nRead = -5;
    EAudioRawState m_eState = kLastBlock;
};

TEST_F(SrcConvReading, RefusesBadArguments) {
    ASSERT_TRUE(Wrap(nullptr));
    struct SArguments {
        unsigned char* m_pBuffer;
        int m_nSize;
        int* m_pRead;
    };
    for (const SArguments& bad : {SArguments{nullptr, 64, &m_nRead}, SArguments{m_buffer.data(), 0, &m_nRead},
                                  SArguments{m_buffer.data(), 64, nullptr}}) {
        CComPtr<IStatus> status;
        m_eState = kLastBlock;
        EXPECT_FALSE(m_pAggregator->RawRead(bad.m_pBuffer, bad.m_nSize, bad.m_pRead, m_eState, status.Out()));
        EXPECT_EQ(ErrorOf(status), 0x80000001U);
        EXPECT_EQ(m_eState, kLastBlock);
        EXPECT_FALSE(m_pAggregator->RawRead(bad.m_pBuffer, bad.m_nSize, bad.m_pRead, m_eState, nullptr));
    }
    EXPECT_TRUE(m_script.m_readCalls.empty());
}

TEST_F(SrcConvReading, WithoutAConvertorTheCallPassesStraightThrough) {
    ASSERT_TRUE(Wrap(kCompactDisc));
    ASSERT_TRUE(m_pAggregator->Start(nullptr));
    CComPtr<IStatus> status;
    IStatus** const out = status.Out();
    EXPECT_TRUE(Read(5, out));
    ASSERT_EQ(m_script.m_readCalls.size(), 1U);
    const support::SReadCall& call = m_script.m_readCalls[0];
    EXPECT_EQ(call.m_pBuffer, m_buffer.data());
    EXPECT_EQ(call.m_nSize, 5);
    EXPECT_EQ(call.m_pRead, &m_nRead);
    EXPECT_EQ(call.m_eState, ARS_MORE);
    EXPECT_EQ(call.m_ppStatus, out);
    EXPECT_EQ(m_nRead, 5);
}

TEST_F(SrcConvReading, TheDecodersResultAndStatePassUnchanged) {
    ASSERT_TRUE(Wrap(kCompactDisc));
    m_script.m_eState = static_cast<EAudioRawState>(0x12345);
    EXPECT_TRUE(Read(64));
    EXPECT_EQ(m_eState, static_cast<EAudioRawState>(0x12345));
    m_script.m_read = [](unsigned char*, int, int*, EAudioRawState&, IStatus** status) {
        *status = new CStatus(AE_NO_DECODER);
        return false;
    };
    CComPtr<IStatus> status;
    EXPECT_FALSE(Read(64, status.Out()));
    EXPECT_EQ(m_eState, ARS_MORE);
    EXPECT_EQ(ErrorOf(status), AE_NO_DECODER);
}

TEST_F(SrcConvReading, AConvertingReadAsksForWholeDozensBelowTheHeadroom) {
    const std::pair<int, int> kTable[] = {{28, -1}, {31, -1},    {32, 12}, {39, 12}, {40, 24}, {51, 24},
                                          {52, 36}, {1016, 996}, {16, -1}, {1, -1},  {-1, -1}, {4096, 4080}};
    StartConverting(kSameByteRate);
    for (const auto& [size, request] : kTable) EXPECT_EQ(DecoderSize(size), request) << size;
}

TEST_F(SrcConvReading, ATooSmallConvertingReadSaysSo) {
    StartConverting(kSameByteRate);
    for (const int size : {28, 31, 1, -1, std::numeric_limits<int>::min()}) {
        CComPtr<IStatus> status;
        EXPECT_FALSE(Read(size, status.Out())) << size;
        EXPECT_EQ(ErrorOf(status), 0x80000002U) << size;
        EXPECT_FALSE(Read(size)) << size;
    }
    EXPECT_TRUE(Read(32));
}

TEST_F(SrcConvReading, TheRequestScalesWithTheByteRatioInSinglePrecision) {
    StartConverting(kStudio);
    const float ratio = 176400.0F / 288000.0F;
    for (const int size : {200, 1000, 4097, 65536, 99991}) {
        const int scaled = static_cast<int>(static_cast<float>(size - 16) * ratio);
        EXPECT_EQ(DecoderSize(size), scaled - scaled % 12) << size;
    }
}

TEST_F(SrcConvReading, OneReadAsksForAtMostTheConversionBuffer) {
    StartConverting(kSameByteRate);
    EXPECT_EQ(DecoderSize(215040 + 16), 215040);
    EXPECT_EQ(DecoderSize(215040 + 17), 215040);
    EXPECT_EQ(DecoderSize(215040 + 15), 215040 - 12);
    EXPECT_EQ(DecoderSize(1 << 20), 215040);
    m_factory.m_convertor.m_nLength = 0;  // nothing is copied, so a size beyond the buffer does no harm
    EXPECT_EQ(DecoderSize(std::numeric_limits<int>::max()), 215040);
}

TEST_F(SrcConvReading, AConvertingReadRunsThroughTheConvertor) {
    StartConverting(kSameByteRate);
    m_script.m_eState = kLastBlock;
    m_factory.m_convertor.m_convert = [](std::vector<unsigned char> bytes) {
        for (unsigned char& byte : bytes) byte = static_cast<unsigned char>(byte + 100);
        bytes.push_back(77);
        return bytes;
    };
    CComPtr<IStatus> status;
    IStatus** const out = status.Out();
    EXPECT_TRUE(Read(40, out));
    ASSERT_EQ(m_script.m_readCalls.size(), 1U);
    const support::SReadCall& read = m_script.m_readCalls[0];
    EXPECT_NE(read.m_pBuffer, m_buffer.data());
    EXPECT_EQ(read.m_pRead, &m_nRead);
    EXPECT_EQ(read.m_eState, ARS_MORE);
    EXPECT_EQ(read.m_ppStatus, out);
    ASSERT_EQ(m_factory.m_convertor.m_convertCalls.size(), 1U);
    const support::SConvertCall& convert = m_factory.m_convertor.m_convertCalls[0];
    EXPECT_EQ(convert.m_pData, read.m_pBuffer);
    EXPECT_EQ(convert.m_bytes.size(), 24U);
    EXPECT_EQ(convert.m_nFlags, 0);
    EXPECT_EQ(m_script.m_log.After("output "), (std::vector<std::string>{"length", "data"}));
    EXPECT_EQ(m_nRead, 25);
    EXPECT_EQ(m_buffer[0], 100);
    EXPECT_EQ(m_buffer[23], 123);
    EXPECT_EQ(m_buffer[24], 77);
    EXPECT_EQ(m_eState, kLastBlock);
}

TEST_F(SrcConvReading, TheConvertorGetsTheBytesThatTheDecoderRead) {
    StartConverting(kSameByteRate);
    m_script.m_read = [](unsigned char* buffer, int, int* read, EAudioRawState&, IStatus**) {
        buffer[0] = 9;
        *read = 4;
        return true;
    };
    EXPECT_TRUE(Read(1000));
    EXPECT_EQ(m_factory.m_convertor.m_convertCalls.at(0).m_bytes.size(), 4U);
    EXPECT_EQ(m_nRead, 4);
    EXPECT_EQ(m_buffer[0], 9);
}

TEST_F(SrcConvReading, AnEmptyDecoderReadStillReachesTheConvertor) {
    StartConverting(kSameByteRate);
    m_script.m_read = [](unsigned char*, int, int* read, EAudioRawState& state, IStatus**) {
        *read = 0;
        state = ARS_END;
        return true;
    };
    m_factory.m_convertor.m_convert = [](const std::vector<unsigned char>&) {
        return std::vector<unsigned char>{1, 2};
    };
    EXPECT_TRUE(Read(1000));
    EXPECT_EQ(m_nRead, 2);
    EXPECT_EQ(m_eState, ARS_END);
}

TEST_F(SrcConvReading, TheConvertorsOwnResultIsIgnored) {
    StartConverting(kSameByteRate);
    m_factory.m_convertor.m_bConvertResult = false;
    EXPECT_TRUE(Read(64));
    EXPECT_EQ(m_nRead, 48);
}

TEST_F(SrcConvReading, AStatusOfTheConvertorTakesThePlaceOfTheDecoders) {
    StartConverting(kSameByteRate);
    m_script.m_read = [](unsigned char*, int size, int* read, EAudioRawState&, IStatus** status) {
        *read = size;
        return support::Play({support::EOutcome::Succeeds, "damaged"}, status);
    };
    m_factory.m_convertor.m_pReason = "not converted";
    CComPtr<IStatus> status;
    EXPECT_TRUE(Read(1000, status.Out()));
    EXPECT_STREQ(support::TextOf(status), "not converted");
    EXPECT_EQ(support::CCountedStatus::Alive(), 1);
}

TEST_F(SrcConvReading, AFailedDecoderReadConvertsNothing) {
    StartConverting(kSameByteRate);
    m_script.m_read = [](unsigned char*, int, int*, EAudioRawState&, IStatus** status) {
        *status = new CStatus(AE_NO_DECODER);
        return false;
    };
    CComPtr<IStatus> status;
    EXPECT_FALSE(Read(1000, status.Out()));
    EXPECT_EQ(ErrorOf(status), AE_NO_DECODER);
    EXPECT_TRUE(m_factory.m_convertor.m_convertCalls.empty());
}

TEST_F(SrcConvReading, AnOutputLongerThanTheBufferIsLostWithoutAStatus) {
    StartConverting(kSameByteRate);
    m_factory.m_convertor.m_convert = [](const std::vector<unsigned char>&) {
        return std::vector<unsigned char>(65, 1);
    };
    m_buffer[0] = 42;
    CComPtr<IStatus> status;
    EXPECT_FALSE(Read(64, status.Out()));
    EXPECT_FALSE(status);
    EXPECT_EQ(m_buffer[0], 42);
    m_factory.m_convertor.m_convert = [](const std::vector<unsigned char>&) {
        return std::vector<unsigned char>(64, 1);
    };
    EXPECT_TRUE(Read(64, status.Out()));
    EXPECT_EQ(m_nRead, 64);
}

TEST_F(SrcConvReading, ADecoderThatClaimsMoreThanItWasAskedForIsRefused) {
    StartConverting(kSameByteRate);
    for (const int claim : {49, -1}) {
        m_script.m_read = [claim](unsigned char*, int, int* read, EAudioRawState&, IStatus**) {
            *read = claim;
            return true;
        };
        EXPECT_FALSE(Read(64));
    }
    EXPECT_TRUE(m_factory.m_convertor.m_convertCalls.empty());
}

TEST_F(SrcConvReading, ANegativeOutputLengthIsRefused) {
    StartConverting(kSameByteRate);
    m_factory.m_convertor.m_nLength = -4;
    EXPECT_FALSE(Read(64));
}

TEST_F(SrcConvReading, AfterEndReadsPassThroughAgain) {
    StartConverting(kSameByteRate);
    ASSERT_TRUE(m_pAggregator->End(nullptr));
    EXPECT_EQ(DecoderSize(5), 5);
}

}  // namespace

// Reading, lengths, positions and seeking of a source.
#include <cstring>

#include "com/StatusObject.h"
#include "stream/PassedStatus.h"
#include "stream/SourceLimits.h"
#include "stream/SrcConvAggregator.h"
#include "stream/TruncateToUnsigned.h"

namespace {

// Bytes to ask of the decoder so that the converted block fits into `size`; 0 when there is no room for any.
int DecoderRequest(int size, float byteRatio) {
    const float request = static_cast<float>(std::int64_t{size} - kConvertorHeadroom) * byteRatio;
    if (request > static_cast<float>(kConversionBufferSize)) return kConversionBufferSize;
    if (!(request >= static_cast<float>(kLargestRefusedRead + 1))) return 0;
    const int bytes = static_cast<int>(request);
    return bytes - bytes % kReadGranularity;
}

// Only the low 32 bits of frame counts take part in the scaling.
float LowWord(std::uint64_t frames) { return static_cast<float>(static_cast<std::uint32_t>(frames)); }

}  // namespace

bool CSrcConvAggregator::RawRead(unsigned char* buffer, int size, int* read, EAudioRawState& state, IStatus** status) {
    if (buffer == nullptr || size == 0 || read == nullptr) {
        ReportStatus(status, AE_BAD_ARGUMENT);
        return false;
    }
    state = ARS_MORE;
    if (!m_pConvertor) return m_pReader->RawRead(buffer, size, read, state, status);

    const int request = DecoderRequest(size, m_fByteRatio);
    if (request == 0) {
        ReportStatus(status, AE_BUFFER_TOO_SMALL);
        return false;
    }
    CPassedStatus passed(status);
    if (!m_pReader->RawRead(m_pConversionBuffer.get(), request, read, state, status)) return false;
    passed.Update();
    if (*read < 0 || *read > request) return false;
    return ConvertBlock(buffer, size, read, status);
}

bool CSrcConvAggregator::ConvertBlock(unsigned char* buffer, int size, int* read, IStatus** status) {
    m_pConvertor->Convert(m_pConversionBuffer.get(), *read, 0, status);
    const int length = m_pConvertor->GetOutputLength();
    if (length < 0 || length > size) return false;
    if (length > 0) std::memcpy(buffer, m_pConvertor->GetOutputData(), static_cast<std::size_t>(length));
    *read = length;
    return true;
}

SWavFormat CSrcConvAggregator::GetRawFormat() { return m_rawFormat.m_format; }

SWavFormat CSrcConvAggregator::GetRealFormat() { return m_realFormat.m_held.m_format; }

std::int64_t CSrcConvAggregator::GetBlockSize() { return BlockSizeOf(m_rawFormat.m_format); }

std::uint64_t CSrcConvAggregator::GetRawLen() {
    return TruncateToUnsigned(static_cast<float>(m_pReader->GetRawLen()) / m_fByteRatio);
}

std::uint64_t CSrcConvAggregator::GetDataLength() {
    return TruncateToUnsigned(LowWord(m_pBlockInfo->GetDataLength()) / m_fRateRatio);
}

std::uint64_t CSrcConvAggregator::GetPos() {
    const std::uint64_t position = m_pBlockInfo->GetPos();
    if (position == m_pBlockInfo->GetDataLength()) return GetDataLength();
    return TruncateToUnsigned(static_cast<float>(position) / m_fRateRatio);
}

bool CSrcConvAggregator::Seek(unsigned long position, IStatus** status) {
    return m_pSeekable && m_pSeekable->Seek(TruncateToUnsigned(LowWord(position) * m_fRateRatio), status);
}

// The plug-in's convertor object.
#include "plugins/soxr/Convertor.h"

#include <algorithm>

#include "com/QueryTable.h"
#include "plugins/soxr/Guard.h"

namespace {

// A length that fails the read or write of whoever drives the convertor, since nobody asks for Convert's result.
constexpr int kFailed = -1;

}  // namespace

CConvertor::CConvertor(const SConversionPlan& plan)
    : m_allowance(plan.m_from, plan.m_to),
      m_conversion(plan),
      m_nFrameBytes(static_cast<int>(BlockSizeOf(plan.m_to))) {}

unsigned int CConvertor::AddRef() { return m_references.Increment(); }

unsigned int CConvertor::Release() {
    const unsigned int count = m_references.Decrement();
    if (count == 0) delete this;
    return count;
}

int CConvertor::QueryInterface(unsigned long identity, void** face) {
    return AnswerQuery(*this, identity, face, {{IID_IUnknown, static_cast<IAudioConvertor*>(this)}});
}

bool CConvertor::Convert(unsigned char* data, int size, int /*flags*/, IStatus** status) {
    m_nLength = kFailed;
    return Guarded(status, [&] {
        if (size < 0 || (size > 0 && data == nullptr)) {
            ReportStatus(status, AE_BAD_ARGUMENT);
            return false;
        }
        if (size > 0) {
            Feed(data, size);
            HandOut(m_allowance.Frames(size));
        } else {
            m_bEnded = true;
            const std::int64_t frames = m_allowance.TailFrames(m_nLastInput);
            m_conversion.Finish(static_cast<std::size_t>(frames));
            HandOut(frames);
        }
        return true;
    });
}

void CConvertor::Feed(const unsigned char* data, int size) {
    if (m_bEnded) m_conversion.Restart();
    // Left standing by a failure: the stream is broken and the next bytes begin a new one.
    m_bEnded = true;
    m_conversion.Write(data, static_cast<std::size_t>(size));
    m_bEnded = false;
    m_nLastInput = size;
}

void CConvertor::HandOut(std::int64_t frames) {
    const std::int64_t ready = std::min(frames, static_cast<std::int64_t>(m_conversion.FramesWaiting()));
    m_pData = m_conversion.Take(static_cast<std::size_t>(ready));
    m_nLength = static_cast<int>(ready) * m_nFrameBytes;
}

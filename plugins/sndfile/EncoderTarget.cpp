// One sound file that is about to be written.
#include "plugins/sndfile/EncoderTarget.h"

#include "com/ComPtr.h"
#include "com/QueryTable.h"
#include "plugins/sndfile/EncoderStream.h"
#include "plugins/sndfile/Refusal.h"

unsigned int CEncoderTarget::Release() {
    const unsigned int count = m_references.Decrement();
    if (count == 0) delete this;
    return count;
}

int CEncoderTarget::QueryInterface(unsigned long identity, void** face) {
    return AnswerQuery(*this, identity, face, {{IID_IUnknown, static_cast<IAudioTarget*>(this)}});
}

bool CEncoderTarget::CreateTarget(IUnknown** stream, const SWavFormat& format, IStatus** status) {
    return Guarded(status, [&] {
        if (stream == nullptr) {
            ReportStatus(status, AE_BAD_ARGUMENT);
            return false;
        }
        if (format.nBitsPerSample < 1) return Refuse(status, m_strPath, "samples without bits cannot be written");
        const SWavFormat accepted = AcceptedFormat(m_output, format);
        const std::string reason = ReasonAgainst(OutputInfo(m_output, accepted));
        if (!reason.empty()) {
            return Refuse(status, m_strPath,
                          std::string(m_output.m_strName) + " does not take " + std::to_string(accepted.nChannels) +
                              " channels at " + std::to_string(accepted.nSampleRate) + " Hz: " + reason);
        }
        *stream = CComPtr<IAggregatable>(new CEncoderStream(m_strPath, m_output, accepted)).Detach();
        return true;
    });
}

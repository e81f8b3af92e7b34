// An encoder stream that does what its test says, and the factory that makes it.
#pragma once

#include <vector>

#include "stream/RawWriter.h"
#include "stream/URLAudioTargetFactory.h"
#include "tests/support/FakeStream.h"

namespace support {

// What a raw write was given.
struct SWriteCall {
    const unsigned char* m_pData;
    std::vector<unsigned char> m_bytes;
    EAudioRawState m_eState;
    IStatus** m_ppStatus;
};

struct SEncoderScript : SStreamScript {
    SWavFormat m_format{44100, 16, 2};
    bool m_bFormatThrows = false;
    bool m_bWriteResult = true;
    const char* m_pWriteReason = nullptr;  // stored as a status by each write
    EAudioRawState m_eAnswer = ARS_MORE;   // stored into the caller's state when m_bAnswers
    bool m_bAnswers = false;
    std::vector<SWriteCall> m_writeCalls;
};

class CFakeEncoder final : public CFakeStream<SEncoderScript> {
public:
    explicit CFakeEncoder(SEncoderScript& script) : CFakeStream(script), m_writer(*this, "IAudioRawWriter") {}

protected:
    void* FaceOf(unsigned long identity) override {
        return identity == IID_IAudioRawWriter ? static_cast<IAudioRawWriter*>(&m_writer) : nullptr;
    }

private:
    class CWriterFace final : public CLoggedFace<IAudioRawWriter, CFakeEncoder> {
    public:
        using CLoggedFace::CLoggedFace;
        bool RawWrite(unsigned char* data, int size, EAudioRawState& state, IStatus** status) override {
            SEncoderScript& script = m_owner.Script();
            script.m_writeCalls.push_back({data, std::vector<unsigned char>(data, data + size), state, status});
            if (script.m_bAnswers) state = script.m_eAnswer;
            Play({EOutcome::Succeeds, script.m_pWriteReason}, status);
            return script.m_bWriteResult;
        }
        SWavFormat GetRawFormat() override {
            if (m_owner.Script().m_bFormatThrows) throw 7;
            return m_owner.Script().m_format;
        }
    };

    CWriterFace m_writer;
};

inline IUnknown* NewEncoder(SEncoderScript& script) { return NewStream<CFakeEncoder>(script); }

// Hands out an encoder of `m_pEncoder`, or none when that is null.
class CFakeTargetFactory final : public IURLAudioTargetFactory {
public:
    void ReservedFirst() override { ++m_nReservedCalls; }
    void ReservedSecond() override { ++m_nReservedCalls; }
    bool CreateTarget(IUnknown** stream, const SWavFormat& format, IStatus** status) override {
        m_ppStream = stream;
        m_ppStatus = status;
        m_formats.push_back(format);
        if (!Play(m_create, status)) return false;
        *stream = m_pEncoder != nullptr ? NewEncoder(*m_pEncoder) : nullptr;
        return true;
    }

    SScriptedCall m_create;
    SEncoderScript* m_pEncoder = nullptr;
    IUnknown** m_ppStream = nullptr;
    IStatus** m_ppStatus = nullptr;
    std::vector<SWavFormat> m_formats;
    int m_nReservedCalls = 0;
};

}  // namespace support

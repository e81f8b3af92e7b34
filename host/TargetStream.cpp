// One output stream, created and written through the manager.
#include "host/TargetStream.h"

#include <utility>

#include "com/InterfaceIds.h"
#include "host/Failure.h"
#include "host/FailureText.h"
#include "host/FormatText.h"
#include "stream/Convertor.h"

namespace {

// Passes the manager's call on to the encoder's factory and notes the format that the bare encoder accepts: once it is
// wrapped, its writer speaks of the host's format alone.
class CObservingFactory final : public IURLAudioTargetFactory {
public:
    explicit CObservingFactory(IURLAudioTargetFactory& factory) : m_factory(factory) {}

    void ReservedFirst() override { m_factory.ReservedFirst(); }
    void ReservedSecond() override { m_factory.ReservedSecond(); }

    bool CreateTarget(IUnknown** stream, const SWavFormat& format, IStatus** status) override {
        if (!m_factory.CreateTarget(stream, format, status)) return false;
        const auto writer = CComPtr<IAudioRawWriter>::Query(*stream, IID_IAudioRawWriter);
        if (writer) m_format = writer->GetRawFormat();
        return true;
    }

    const SWavFormat& GetFormat() const { return m_format; }

private:
    IURLAudioTargetFactory& m_factory;
    SWavFormat m_format{};
};

}  // namespace

CTargetStream::CTargetStream(const CPluginSession& session, IAudioTargetOpener& encoder, STargetPlace place,
                             const SWavFormat& format)
    : m_session(session),
      m_place(std::move(place)),
      m_format(format),
      m_pTarget(OpenTarget(encoder)),
      m_pStream(CreateStream()),
      m_pWriter(CComPtr<IAudioRawWriter>::Query(m_pStream.Get(), IID_IAudioRawWriter)),
      m_process(CComPtr<IProcess>::Query(m_pStream.Get(), IID_IProcess)) {}

CComPtr<IAudioTarget> CTargetStream::OpenTarget(IAudioTargetOpener& encoder) const {
    CComPtr<IAudioTarget> target;
    CComPtr<IStatus> status;
    if (encoder.OpenTarget(m_place.m_strPath.c_str(), m_place.m_strExtension.c_str(), target.Out(), status.Out()) &&
        target) {
        return target;
    }
    throw CFailure(m_place.m_strOutput, StatusText(status.Get(), "its encoder opens no such file", m_place.m_strPath));
}

CComPtr<IUnknown> CTargetStream::CreateStream() {
    IURLAudioTargetFactory* const encoderFactory = m_pTarget->GetTargetFactory();
    if (encoderFactory == nullptr) throw CFailure(m_place.m_strOutput, "its encoder has no target factory");
    CObservingFactory factory(*encoderFactory);
    CComPtr<IUnknown> stream;
    CComPtr<IStatus> status;
    // After a failure the pointer may hold a bare encoder; it is released here as well.
    if (!m_session.GetManager().CreateURLAudioTarget(&factory, stream.Out(), m_format, status.Out())) {
        throw CFailure(m_place.m_strOutput,
                       "no encoder for " + FormatText(m_format) + ": " +
                           StatusText(status.Get(), "its encoder does not work as a target", m_place.m_strPath));
    }
    m_fileFormat = factory.GetFormat();
    return stream;
}

bool CTargetStream::Converts() const { return SHeldWavFormat{m_format, 0} != SHeldWavFormat{m_fileFormat, 0}; }

void CTargetStream::CoverConvertor() const {
    IConvertorFactory* lent = nullptr;
    if (m_session.GetManager().GetConvertor(&lent) && lent != nullptr) lent->AddRef();
}

void CTargetStream::Start() {
    // A target's Start that needs a conversion takes one reference of the installed factory away, whether it succeeds
    // or not. Without the one added here a later unload would release the convertor component once too often.
    // One too many would be the lesser harm: it only keeps a component alive until the process ends.
    if (Converts()) CoverConvertor();
    CComPtr<IStatus> status;
    if (m_process.Start(status.Out())) return;
    throw CFailure(m_place.m_strOutput, "writing does not start: " +
                                            StatusText(status.Get(), "its encoder tells no reason", m_place.m_strPath));
}

void CTargetStream::Write(unsigned char* data, int size) {
    EAudioRawState state = ARS_MORE;
    CComPtr<IStatus> status;
    // The aggregator passes over a convertor that fails; the status that the convertor leaves is the only sign.
    if (m_pWriter->RawWrite(data, size, state, status.Out()) && !status) return;
    throw CFailure(m_place.m_strOutput,
                   "writing failed: " + StatusText(status.Get(), "its encoder tells no reason", m_place.m_strPath));
}

void CTargetStream::End() {
    CComPtr<IStatus> status;
    if (m_process.End(status.Out())) return;
    throw CFailure(m_place.m_strOutput, "writing failed at the end: " +
                                            StatusText(status.Get(), "its encoder tells no reason", m_place.m_strPath));
}

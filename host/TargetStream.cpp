// One output stream, created and written through the manager.
#include "host/TargetStream.h"

#include <utility>

#include "com/InterfaceIds.h"
#include "com/NamedSettings.h"
#include "host/Failure.h"
#include "host/FailureText.h"
#include "host/FormatText.h"
#include "host/PluginCall.h"
#include "host/PluginSession.h"

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

// "quality (0 to 10), bitrate (6 to 510 kbit/s)".
std::string SettingsText(INamedSettings& settings) {
    std::vector<std::string> texts;
    const int count = settings.GetSettingCount();
    if (!IsPossibleCount(count)) return "an impossible count of them, " + std::to_string(count);
    for (int i = 0; i < count; ++i) {
        const char* const name = settings.GetSettingName(i);
        const char* const values = settings.GetSettingValues(i);
        if (name != nullptr) texts.push_back(name + (values != nullptr ? " (" + std::string(values) + ")" : ""));
    }
    return JoinNames(texts);
}

void ApplySettings(const STargetRequest& request, IAudioTarget& target) {
    const auto named = CComPtr<INamedSettings>::Query(&target, IID_INamedSettings);
    for (const auto& [name, value] : request.m_settings) {
        const std::string subject = request.m_strOutput + ": --set " + name + "=" + value;
        if (!named || named->GetSetting(name.c_str()) == nullptr) {
            throw CFailure(subject, "its encoder has no such setting",
                           " (settings: " + (named ? SettingsText(*named) : "none") + ")");
        }
        CComPtr<IStatus> status;
        if (named->SetSetting(name.c_str(), value.c_str(), status.Out())) continue;
        throw CFailure(subject, StatusText(status.Get(), "its encoder does not take this value", request.m_strPath),
                       " (settings: " + SettingsText(*named) + ")");
    }
}

}  // namespace

CComPtr<IAudioTarget> OpenTarget(const STargetRequest& request) {
    CComPtr<IAudioTarget> target;
    CComPtr<IStatus> status;
    if (!request.m_pEncoder->OpenTarget(request.m_strPath.c_str(), request.m_strExtension.c_str(), target.Out(),
                                        status.Out()) ||
        !target) {
        throw CFailure(request.m_strOutput,
                       StatusText(status.Get(), "its encoder opens no such file", request.m_strPath));
    }
    ApplySettings(request, *target);
    return target;
}

CTargetStream::CTargetStream(const CPluginSession& session, STargetRequest request, const SWavFormat& format)
    : m_session(session),
      m_request(std::move(request)),
      m_format(format),
      m_pTarget(Open()),
      m_pStream(CreateStream()),
      m_pWriter(CComPtr<IAudioRawWriter>::Query(m_pStream.Get(), IID_IAudioRawWriter)),
      m_process(CComPtr<IProcess>::Query(m_pStream.Get(), IID_IProcess)) {}

CComPtr<IAudioTarget> CTargetStream::Open() {
    return CallPlugins(m_request.m_strOutput, [this] {
        CComPtr<IAudioTarget> target = OpenTarget(m_request);
        const auto tags = CComPtr<ITargetTags>::Query(target.Get(), IID_ITargetTags);
        if (tags) m_strWarning = WriteTags(m_request.m_tags, *tags, m_request.m_strPath);
        return target;
    });
}

CComPtr<IUnknown> CTargetStream::CreateStream() {
    return CallPlugins(m_request.m_strOutput, [this] {
        IURLAudioTargetFactory* const encoderFactory = m_pTarget->GetTargetFactory();
        if (encoderFactory == nullptr) throw CFailure(m_request.m_strOutput, "its encoder has no target factory");
        CObservingFactory factory(*encoderFactory);
        CComPtr<IUnknown> stream;
        CComPtr<IStatus> status;
        // After a failure the pointer may hold a bare encoder; it is released here as well.
        if (!m_session.GetManager().CreateURLAudioTarget(&factory, stream.Out(), m_format, status.Out())) {
            Fail("no encoder for " + FormatText(m_format) + ": ", status.Get(),
                 "its encoder does not work as a target");
        }
        m_fileFormat = factory.GetFormat();
        return stream;
    });
}

void CTargetStream::Start() {
    CallPlugins(m_request.m_strOutput, [this] {
        CComPtr<IStatus> status;
        if (!m_process.Start(status.Out())) Fail("writing does not start: ", status.Get());
    });
}

void CTargetStream::Write(unsigned char* data, int size) {
    CallPlugins(m_request.m_strOutput, [&] {
        EAudioRawState state = ARS_MORE;
        CComPtr<IStatus> status;
        // The aggregator passes over a convertor that fails; the status that the convertor leaves is the only sign.
        if (!m_pWriter->RawWrite(data, size, state, status.Out()) || status) Fail("writing failed: ", status.Get());
    });
}

void CTargetStream::End() {
    CallPlugins(m_request.m_strOutput, [this] {
        CComPtr<IStatus> status;
        if (!m_process.End(status.Out())) Fail("writing failed at the end: ", status.Get());
    });
}

void CTargetStream::Fail(const std::string& what, IStatus* status, const std::string& otherwise) const {
    throw CFailure(m_request.m_strOutput, what + StatusText(status, otherwise, m_request.m_strPath));
}

// One source, opened and read through the manager.
#include "host/SourceStream.h"

#include <sys/stat.h>

#include <cerrno>
#include <string>

#include "com/InterfaceIds.h"
#include "host/Failure.h"
#include "host/FailureText.h"
#include "host/FormatText.h"
#include "host/PluginCall.h"
#include "stream/SourceDetails.h"

namespace {

constexpr int kBothPasses = -1;

// A convertor may swallow some blocks before its first output; a source that goes on like that never ends.
constexpr int kMaxEmptyReads = 1000;

constexpr int kMaxSourceChannels = 1024;

std::string AskedText(const CPluginSession& session) {
    return " (asked: " + session.GetDecoderNames() + "; plug-ins from " + session.GetDirectory() + ")";
}

// A decoder may answer for these with words of its own format library; they have plain reasons, and nobody is asked.
void RequirePlainFile(const CSourceName& name) {
    if (name.IsRemote()) return;
    struct stat entry = {};
    if (stat(name.GetURL(), &entry) != 0) throw CFailure(name.GetGiven(), SystemErrorText(errno));
    if (S_ISDIR(entry.st_mode)) throw CFailure(name.GetGiven(), SystemErrorText(EISDIR));
    if (S_ISREG(entry.st_mode) && entry.st_size == 0) throw CFailure(name.GetGiven(), "the file is empty");
}

std::string OpenFailureText(const CSourceName& name, IStatus* status) {
    if (status == nullptr) return "its decoder does not work as a converting source";
    if (status->GetSysError() != 0) return StatusText(status, "", name.GetURL());
    if (name.IsRemote() && status->GetAudioError() == AE_NO_DECODER) {
        return "no plug-in fetched it or no decoder opened it";
    }
    return StatusText(status, "no decoder opened it", name.GetURL());
}

std::string StartFailureText(IStatus* status, const char* path, const SWavFormat& real, const SWavFormat& wanted) {
    if (SHeldWavFormat{real, 0} == SHeldWavFormat{wanted, 0})
        return StatusText(status, "its decoder does not start", path);
    return "no conversion from " + FormatText(real) + " to " + FormatText(wanted) + ": " +
           StatusText(status, "no plug-in converts it", path);
}

// Sizes are computed from the format; a decoder's word for it is not trusted further than this.
bool IsPossible(const SWavFormat& format) {
    return format.nSampleRate > 0 && format.nBitsPerSample >= 8 && format.nBitsPerSample <= 64 &&
           format.nChannels > 0 && format.nChannels <= kMaxSourceChannels;
}

SWavFormat RealFormatOf(IAudioRawReader& reader) {
    const auto real = CComPtr<IRealFormat>::Query(&reader, IID_IRealFormat);
    return real ? real->GetRealFormat() : reader.GetRawFormat();
}

}  // namespace

template <typename TCall>
auto CSourceStream::Ask(const TCall& call) const {
    return CallPlugins(m_name.GetGiven(), call, [this] { return AskedText(m_session); });
}

CSourceStream::CSourceStream(const CPluginSession& session, const CSourceName& name, const SWavFormat* wanted)
    : CSourceStream(session, name, Open(session, name, wanted)) {}

CSourceStream::CSourceStream(const CPluginSession& session, const CSourceName& name, const CComPtr<IUnknown>& stream)
    : m_session(session),
      m_name(name),
      m_pReader(CComPtr<IAudioRawReader>::Query(stream.Get(), IID_IAudioRawReader)),
      m_pBlockInfo(CComPtr<IAudioRawBlockInfo>::Query(stream.Get(), IID_IAudioRawBlockInfo)),
      m_process(CComPtr<IProcess>::Query(stream.Get(), IID_IProcess)) {}

CComPtr<IUnknown> CSourceStream::Open(const CPluginSession& session, const CSourceName& name,
                                      const SWavFormat* wanted) {
    RequirePlainFile(name);
    const auto asked = [&session] { return AskedText(session); };
    return CallPlugins(
        name.GetGiven(),
        [&] {
            CComPtr<IUnknown> stream;
            CComPtr<IStatus> status;
            // After a failure the pointer may hold a bare decoder; it is released here as well.
            if (!session.GetManager().OpenURLAudioFile(name.GetURL(), wanted, stream.Out(), kBothPasses, AUX_CONVERT,
                                                       AUX_NONE, status.Out())) {
                throw CFailure(name.GetGiven(), OpenFailureText(name, status.Get()) + asked());
            }
            return stream;
        },
        asked);
}

void CSourceStream::Fail(const std::string& reason) const {
    throw CFailure(m_name.GetGiven(), reason + AskedText(m_session));
}

SWavFormat CSourceStream::GetFormat() const {
    return Ask([this] {
        const SWavFormat format = m_pReader->GetRawFormat();
        if (!IsPossible(format)) Fail("its decoder tells an impossible format: " + FormatText(format));
        return format;
    });
}

std::uint64_t CSourceStream::GetAnnouncedFrames() const {
    return Ask([this] { return m_pBlockInfo->GetDataLength(); });
}

void CSourceStream::Start() {
    Ask([this] {
        CComPtr<IStatus> status;
        if (m_process.Start(status.Out())) return;
        Fail(StartFailureText(status.Get(), m_name.GetURL(), RealFormatOf(*m_pReader), GetFormat()));
    });
}

int CSourceStream::ReadOnce(unsigned char* buffer, int size, EAudioRawState& state) {
    int read = 0;
    CComPtr<IStatus> status;
    // The aggregator passes over a convertor that fails; the status that the convertor leaves is the only sign.
    if (!m_pReader->RawRead(buffer, size, &read, state, status.Out()) || status) {
        Fail("reading failed: " + StatusText(status.Get(), "its decoder tells no reason", m_name.GetURL()));
    }
    if (read < 0 || read > size) Fail("its decoder counts more bytes than it was asked");
    return read;
}

int CSourceStream::Read(unsigned char* buffer, int size) {
    return Ask([&] {
        for (int i = 0; i < kMaxEmptyReads; ++i) {
            EAudioRawState state = ARS_MORE;
            const int read = ReadOnce(buffer, size, state);
            // A nonzero state beside bytes is not yet the end: a convertor may hold more.
            if (read > 0 || state != ARS_MORE) return read;
        }
        Fail("its decoder delivers nothing and does not end");
    });
}

void CSourceStream::End() {
    Ask([this] {
        CComPtr<IStatus> status;
        if (m_process.End(status.Out())) return;
        Fail("ending failed: " + StatusText(status.Get(), "its decoder tells no reason", m_name.GetURL()));
    });
}

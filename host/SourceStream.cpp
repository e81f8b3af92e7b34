// One source, opened and read through the manager.
#include "host/SourceStream.h"

#include <sys/stat.h>

#include <cerrno>
#include <string>

#include "com/InterfaceIds.h"
#include "host/Failure.h"
#include "host/FailureText.h"
#include "host/FormatText.h"
#include "stream/SourceDetails.h"

namespace {

constexpr int kBothPasses = -1;

// A convertor may swallow some blocks before its first output; a source that goes on like that never ends.
constexpr int kMaxEmptyReads = 1000;

std::string AskedText(const CPluginSession& session) {
    return " (asked: " + session.GetDecoderNames() + "; plug-ins from " + session.GetDirectory() + ")";
}

// A decoder may answer for these with words of its own format library; they have plain reasons.
void RequirePlainFile(const CSourceName& name) {
    struct stat entry = {};
    if (name.IsRemote() || stat(name.GetURL(), &entry) != 0) return;
    if (S_ISDIR(entry.st_mode)) throw CFailure(name.GetGiven(), SystemErrorText(EISDIR));
    if (S_ISREG(entry.st_mode) && entry.st_size == 0) throw CFailure(name.GetGiven(), "the file is empty");
}

std::string OpenFailureText(const CPluginSession& session, const CSourceName& name, IStatus* status) {
    if (status == nullptr) return "its decoder does not work as a converting source" + AskedText(session);
    if (status->GetSysError() != 0) return StatusText(status, "", name.GetURL());
    if (name.IsRemote() && status->GetAudioError() == AE_NO_DECODER) {
        return "no plug-in fetched it or no decoder opened it" + AskedText(session);
    }
    return StatusText(status, "no decoder opened it", name.GetURL()) + AskedText(session);
}

std::string StartFailureText(IStatus* status, const char* path, const SWavFormat& real, const SWavFormat& wanted) {
    if (SHeldWavFormat{real, 0} == SHeldWavFormat{wanted, 0})
        return StatusText(status, "its decoder does not start", path);
    return "no conversion from " + FormatText(real) + " to " + FormatText(wanted) + ": " +
           StatusText(status, "no plug-in converts it", path);
}

SWavFormat RealFormatOf(IAudioRawReader& reader) {
    const auto real = CComPtr<IRealFormat>::Query(&reader, IID_IRealFormat);
    return real ? real->GetRealFormat() : reader.GetRawFormat();
}

}  // namespace

CSourceStream::CSourceStream(const CPluginSession& session, const CSourceName& name, const SWavFormat* wanted)
    : CSourceStream(name, Open(session, name, wanted)) {}

CSourceStream::CSourceStream(const CSourceName& name, const CComPtr<IUnknown>& stream)
    : m_name(name),
      m_pReader(CComPtr<IAudioRawReader>::Query(stream.Get(), IID_IAudioRawReader)),
      m_pBlockInfo(CComPtr<IAudioRawBlockInfo>::Query(stream.Get(), IID_IAudioRawBlockInfo)),
      m_process(CComPtr<IProcess>::Query(stream.Get(), IID_IProcess)) {}

CComPtr<IUnknown> CSourceStream::Open(const CPluginSession& session, const CSourceName& name,
                                      const SWavFormat* wanted) {
    RequirePlainFile(name);
    CComPtr<IUnknown> stream;
    CComPtr<IStatus> status;
    // After a failure the pointer may hold a bare decoder; it is released here as well.
    if (session.GetManager().OpenURLAudioFile(name.GetURL(), wanted, stream.Out(), kBothPasses, AUX_CONVERT, AUX_NONE,
                                              status.Out())) {
        return stream;
    }
    throw CFailure(name.GetGiven(), OpenFailureText(session, name, status.Get()));
}

void CSourceStream::Start() {
    CComPtr<IStatus> status;
    if (m_process.Start(status.Out())) return;
    throw CFailure(m_name.GetGiven(),
                   StartFailureText(status.Get(), m_name.GetURL(), RealFormatOf(*m_pReader), GetFormat()));
}

int CSourceStream::Read(unsigned char* buffer, int size) {
    for (int i = 0; i < kMaxEmptyReads; ++i) {
        int read = 0;
        EAudioRawState state = ARS_MORE;
        CComPtr<IStatus> status;
        if (!m_pReader->RawRead(buffer, size, &read, state, status.Out())) {
            throw CFailure(
                m_name.GetGiven(),
                "reading failed: " + StatusText(status.Get(), "its decoder tells no reason", m_name.GetURL()));
        }
        if (read < 0 || read > size)
            throw CFailure(m_name.GetGiven(), "its decoder counts more bytes than it was asked");
        // A nonzero state beside bytes is not yet the end: a convertor may hold more.
        if (read > 0 || state != ARS_MORE) return read;
    }
    throw CFailure(m_name.GetGiven(), "its decoder delivers nothing and does not end");
}

void CSourceStream::End() {
    CComPtr<IStatus> status;
    if (m_process.End(status.Out())) return;
    throw CFailure(m_name.GetGiven(),
                   "ending failed: " + StatusText(status.Get(), "its decoder tells no reason", m_name.GetURL()));
}

// One source, opened and read through the manager.
#include "host/SourceStream.h"

#include <dlfcn.h>
#include <sys/stat.h>

#include <cerrno>
#include <memory>
#include <string>
#include <utility>

#include "com/FeatureSupport.h"
#include "com/InterfaceIds.h"
#include "host/Failure.h"
#include "host/FailureText.h"
#include "host/FormatText.h"
#include "host/PluginCall.h"
#include "host/RescaledFrames.h"
#include "stream/SrcConvAggregator.h"

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
    if (stat(name.GetURL(), &entry) != 0) throw CFailure(name.GetGiven(), name.FailureTextOf(errno));
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

// Sizes are computed from the format; a decoder's word for it is not trusted further than this.
bool IsPossible(const SWavFormat& format) {
    return format.nSampleRate > 0 && format.nBitsPerSample >= 8 && format.nBitsPerSample <= 64 &&
           format.nChannels > 0 && format.nChannels <= kMaxSourceChannels;
}

// What a source aggregator around the decoder will take its samples for.
SHeldWavFormat RealFormatOf(IAudioPluginMgr& manager, IAudioRawReader& reader) {
    const auto features = CComPtr<IFeatureSupport>::Query(&manager, IID_IFeatureSupport);
    const auto advanced = CComPtr<IAdvancedFormat>::Query(&reader, IID_IAdvancedFormat);
    if (advanced && features && features->IsSupported(AF_ADVANCED_FORMATS)) return advanced->GetAdvancedFormat().m_held;
    return {reader.GetRawFormat(), kIntegerSamples};
}

// The decoder's interfaces, as far as a source without them makes no sense.
template <typename TFace>
CComPtr<TFace> Require(IUnknown* stream, unsigned long identity, const CSourceName& name) {
    auto face = CComPtr<TFace>::Query(stream, identity);
    if (!face) throw CFailure(name.GetGiven(), "its decoder lacks interface " + std::to_string(identity));
    return face;
}

}  // namespace

template <typename TCall>
auto CSourceStream::Ask(const TCall& call) const {
    return CallPlugins(m_name.GetGiven(), call, [this] { return AskedText(m_session); });
}

CSourceStream::CSourceStream(const CPluginSession& session, const CSourceName& name)
    : m_session(session), m_name(name) {
    RequirePlainFile(name);
    Ask([this] {
        m_pStream = Open(nullptr);
        m_pReader = Require<IAudioRawReader>(m_pStream.Get(), IID_IAudioRawReader, m_name);
        m_pBlockInfo = Require<IAudioRawBlockInfo>(m_pStream.Get(), IID_IAudioRawBlockInfo, m_name);
        m_process = CRunningProcess(Require<IProcess>(m_pStream.Get(), IID_IProcess, m_name));
        m_pSeekable = CComPtr<ISeekable>::Query(m_pStream.Get(), IID_ISeekable);
        ReadFormats();
        // Asked of the decoder: an aggregator would make titles up from the name of the file.
        const auto tags = CComPtr<IInfoReader>::Query(m_pStream.Get(), IID_IInfoReader);
        if (tags) m_tags = ReadTags(*tags);
    });
}

// The bare decoder, or, for a wanted format, the manager's own source around a decoder that can be wrapped.
CComPtr<IUnknown> CSourceStream::Open(const SWavFormat* wanted) const {
    CComPtr<IUnknown> stream;
    CComPtr<IStatus> status;
    const EAuxFlags required = wanted != nullptr ? AUX_CONVERT : AUX_NONE;
    // After a failure the pointer may hold a bare decoder; it is released here as well.
    if (m_session.GetManager().OpenURLAudioFile(m_name.GetURL(), wanted, stream.Out(), kBothPasses, required, AUX_NONE,
                                                status.Out())) {
        return stream;
    }
    Fail(OpenFailureText(m_name, status.Get()));
}

void CSourceStream::ReadFormats() {
    m_realFormat = RealFormatOf(m_session.GetManager(), *m_pReader);
    m_plainFormat = m_pReader->GetRawFormat();
    for (const SWavFormat& format : {m_realFormat.m_format, m_plainFormat}) {
        if (!IsPossible(format)) Fail("its decoder tells an impossible format: " + FormatText(format));
    }
    m_wanted = m_realFormat.m_format;
    m_nLengthRate = m_wanted.nSampleRate;
}

void CSourceStream::Fail(const std::string& reason) const {
    throw CFailure(m_name.GetGiven(), reason, AskedText(m_session));
}

std::uint64_t CSourceStream::GetAnnouncedFrames() const {
    return Ask([this] {
        const std::uint64_t length = m_pBlockInfo->GetDataLength();
        const std::int32_t rate = m_realFormat.m_format.nSampleRate;
        return m_nLengthRate == rate ? length : RescaledFrames(length, m_nLengthRate, rate);
    });
}

std::vector<std::uint64_t> CSourceStream::GetIndexPoints() const {
    return Ask([this] {
        std::vector<std::uint64_t> points;
        const auto index = CComPtr<IIndexArray>::Query(m_pStream.Get(), IID_IIndexArray);
        const int count = index ? index->GetIndexNumber() : 0;
        RequireCount(m_name.GetGiven(), count, "index points");
        for (int i = 0; i < count; ++i) {
            const std::uint64_t point = index->GetIndex(i);
            if (point != kNoIndexPoint) points.push_back(point);
        }
        return points;
    });
}

std::string CSourceStream::GetLocalPath() const {
    return Ask([this]() -> std::string {
        const auto named = CComPtr<ISourceName>::Query(m_pStream.Get(), IID_ISourceName);
        const char* const path = named ? named->GetSourceName() : nullptr;
        return path != nullptr ? path : "";
    });
}

std::string CSourceStream::GetPluginFile() const {
    // The manager does not say which decoder has opened a source; the table of the stream's operations lies in it.
    const void* const operations = *reinterpret_cast<void* const*>(m_pStream.Get());
    Dl_info place = {};
    if (dladdr(operations, &place) == 0 || place.dli_fname == nullptr) return {};
    const std::string path = place.dli_fname;
    return path.substr(path.rfind('/') + 1);
}

void CSourceStream::Deliver(const SWavFormat& wanted) {
    Ask([&] {
        m_wanted = wanted;
        m_process = CRunningProcess();
        m_pReader.Reset();
        const bool converts = m_realFormat != SHeldWavFormat{wanted, kIntegerSamples};
        if (!Wrap(wanted) && converts) {
            m_pSeekable.Reset();
            m_pBlockInfo.Reset();
            // The first decoder cannot be wrapped; another one may.
            m_pStream = Open(&wanted);
            m_pBlockInfo = CComPtr<IAudioRawBlockInfo>::Query(m_pStream.Get(), IID_IAudioRawBlockInfo);
            // The aggregator's, which counts what it delivers.
            m_nLengthRate = wanted.nSampleRate;
        }
        m_pReader = CComPtr<IAudioRawReader>::Query(m_pStream.Get(), IID_IAudioRawReader);
        m_process = CRunningProcess(CComPtr<IProcess>::Query(m_pStream.Get(), IID_IProcess));
    });
}

bool CSourceStream::Wrap(const SWavFormat& wanted) {
    IUnknown* stream = m_pStream.Get();
    auto source = std::make_unique<CSrcConvAggregator>(&m_session.GetManager(), &stream, &wanted);
    if (!source->IsValid()) return false;
    // The decoder's reference is the aggregator's from here on.
    static_cast<void>(source.release());
    static_cast<void>(m_pStream.Detach());
    m_pStream = CComPtr<IUnknown>::Adopt(stream);
    return true;
}

std::string CSourceStream::StartFailureText(IStatus* status) const {
    const char* const path = m_name.GetURL();
    if (m_realFormat == SHeldWavFormat{m_wanted, kIntegerSamples}) {
        return StatusText(status, "its decoder does not start", path);
    }
    return "no conversion from " + FormatText(m_realFormat) + " to " + FormatText(m_wanted) + ": " +
           StatusText(status, "no plug-in converts it", path);
}

void CSourceStream::Start() {
    Ask([this] {
        CComPtr<IStatus> status;
        if (!m_process.Start(status.Out())) Fail(StartFailureText(status.Get()));
    });
}

bool CSourceStream::SeekTo(std::uint64_t frame) {
    return Ask([&] {
        if (!m_pSeekable) return false;
        CComPtr<IStatus> status;
        if (m_pSeekable->Seek(frame, status.Out())) return true;
        Fail("seeking failed: " + StatusText(status.Get(), "its decoder tells no reason", m_name.GetURL()));
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

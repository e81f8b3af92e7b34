// The manager's side of sources, targets and the convertor factory.
#include <errno.h>
#include <fcntl.h>
#include <unistd.h>

#include <utility>

#include "com/InterfaceIds.h"
#include "com/StatusObject.h"
#include "pluginmgr/AudioPluginMgr.h"
#include "pluginmgr/GiveUp.h"
#include "stream/GuardedCall.h"
#include "stream/SourceOpening.h"
#include "stream/SrcConvAggregator.h"
#include "stream/TargetAggregator.h"
#include "stream/URLAudioTargetFactory.h"
#include "stream/URLType.h"

namespace {

// 0, or the errno value that opening the file for reading gave.
int TryReading(const char* path) {
    const int descriptor = open64(path, O_RDONLY | O_CLOEXEC);
    if (descriptor == -1) return errno;
    close(descriptor);
    return 0;
}

bool FailToOpen(IUnknown** stream, CComPtr<IStatus> refusal, IStatus** status) {
    *stream = nullptr;
    if (status != nullptr && refusal) {
        *status = refusal.Detach();
    } else {
        ReportStatus(status, AE_NO_DECODER);
    }
    return false;
}

// How many remote names of this thread lead to another one: a handler may leave a remote name, even the same for ever.
class CRemoteDepth {
public:
    CRemoteDepth() { ++s_nDepth; }
    ~CRemoteDepth() { --s_nDepth; }

    CRemoteDepth(const CRemoteDepth&) = delete;
    CRemoteDepth& operator=(const CRemoteDepth&) = delete;

    bool IsEndless() const { return s_nDepth > kMostRemoteNames; }

private:
    static constexpr int kMostRemoteNames = 32;
    static thread_local int s_nDepth;
};

thread_local int CRemoteDepth::s_nDepth = 0;

}  // namespace

bool CAudioPluginMgr::SetConvertor(IConvertorFactory* factory, IStatus** status) {
    if (status != nullptr) *status = nullptr;
    if (factory == nullptr) {
        ReportStatus(status, AE_BAD_ARGUMENT);
        return false;
    }
    CComPtr<IConvertorFactory> next(factory);
    GiveUp(m_pConvertorFactory);  // whose end may install another
    m_pConvertorFactory = std::move(next);
    return true;
}

bool CAudioPluginMgr::GetConvertor(IConvertorFactory** factory) {
    if (factory == nullptr) return false;
    *factory = m_pConvertorFactory.Get();  // lent: no reference is added
    return true;
}

int CAudioPluginMgr::GetURLType(const char* url) { return ClassifyURL(url); }

bool CAudioPluginMgr::OpenURLAudioFile(const char* url, IUnknown** stream, int pass, EAuxFlags required,
                                       EAuxFlags excluded, IStatus** status) {
    switch (GetURLType(url)) {
        case URL_LOCAL_PATH:
            return OpenLocal(url, stream, pass, required, excluded, status);
        case URL_HTTP:
        case URL_FTP:
            return OpenRemote(url, stream, pass, required, excluded, status);
        default:
            ReportStatus(status, AE_UNKNOWN_URL);
            return false;
    }
}

bool CAudioPluginMgr::OpenLocal(const char* path, IUnknown** stream, int pass, EAuxFlags required, EAuxFlags excluded,
                                IStatus** status) {
    if (const int error = TryReading(path); error != 0) {
        ReportStatus(status, static_cast<unsigned int>(error));
        return false;
    }
    CComPtr<IComponentEnum> decoders;
    CComPtr<IStatus> refusal;
    if (!Get(ACT_DECODER, decoders.Out()) || !decoders) return FailToOpen(stream, nullptr, status);
    if (OpenWithDecoders(*decoders, {path, stream, pass, required, excluded}, refusal)) return true;
    return FailToOpen(stream, refusal, status);
}

bool CAudioPluginMgr::OpenRemote(const char* url, IUnknown** stream, int pass, EAuxFlags required, EAuxFlags excluded,
                                 IStatus** status) {
    const CComPtr<IComponentEnum> registry(static_cast<IComponentEnum*>(this));
    char localPath[kLocalPathCapacity] = "";
    CPassedStatus passed(status);
    const SFetchedSource source =
        FetchRemote(*registry, url, static_cast<EURLType>(GetURLType(url)), localPath, passed);
    localPath[kLocalPathCapacity - 1] = '\0';
    const CRemoteDepth depth;
    if (!source.m_pHandler || depth.IsEndless()) return FailToOpen(stream, nullptr, status);
    return OpenURLAudioFile(localPath, stream, pass, required, excluded, status);
}

bool CAudioPluginMgr::OpenURLAudioFile(const char* url, const SWavFormat* wanted, IUnknown** stream, int pass,
                                       EAuxFlags required, EAuxFlags excluded, IStatus** status) {
    if (!OpenURLAudioFile(url, stream, pass, required, excluded, status)) return false;
    if ((required & AUX_CONVERT) == 0) return true;
    auto source = std::make_unique<CSrcConvAggregator>(this, stream, wanted);
    if (!source->IsValid()) return false;  // the caller still has the decoder in `*stream`
    static_cast<void>(source.release());   // counted from here on, through the reference in `*stream`
    return true;
}

bool CAudioPluginMgr::CreateURLAudioTarget(IURLAudioTargetFactory* factory, IUnknown** stream, const SWavFormat& format,
                                           IStatus** status) {
    if (!CallGuarded([&] { return factory->CreateTarget(stream, format, status); }) || *stream == nullptr) return false;
    auto target = std::make_unique<CTargetAggregator>(this, stream, format);
    if (!target->IsValid()) return false;  // the caller still has the encoder in `*stream`
    static_cast<void>(target.release());   // counted from here on, through the reference in `*stream`
    return true;
}

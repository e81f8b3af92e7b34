// The decoder component.
#include "plugins/sndfile/Decoder.h"

#include <libintl.h>

#include "com/ComPtr.h"
#include "com/QueryTable.h"
#include "plugins/sndfile/DecoderStream.h"
#include "plugins/sndfile/Refusal.h"
#include "plugins/sndfile/SourceFormat.h"

CDecoder::CDecoder() : m_vExtensions(ReadableExtensions()) {}

int CDecoder::QueryInterface(unsigned long identity, void** face) {
    return AnswerQuery(*this, identity, face,
                       {{IID_IUnknown, static_cast<IAudioComponent*>(this)},
                        {IID_IAudioFileOpener, static_cast<IAudioFileOpenerOperations*>(this)},
                        {IID_IExtensionList, static_cast<IExtensionList*>(this)},
                        {IID_IComponentAbout, static_cast<IComponentAbout*>(this)}});
}

bool CDecoder::Open(const char* path, IUnknown** stream, EAuxFlags /*required*/, EAuxFlags /*excluded*/,
                    IStatus** status) {
    return Guarded(status, [&] {
        if (path == nullptr || stream == nullptr) {
            ReportStatus(status, AE_BAD_ARGUMENT);
            return false;
        }
        std::string reason;
        std::unique_ptr<CSoundFile> file = CSoundFile::Open(path, reason);
        if (file == nullptr) return Refuse(status, path, reason);
        *stream = CComPtr<IAggregatable>(new CDecoderStream(path, std::move(file))).Detach();
        return true;
    });
}

const char* CDecoder::GetAt(int n) {
    return n >= 0 && n < GetCount() ? m_vExtensions[static_cast<std::size_t>(n)] : nullptr;
}

const char* CDecoder::AboutFormat() const { return dgettext(kTextDomain, "Reads sound files with %s."); }

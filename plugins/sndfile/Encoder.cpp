// The encoder component.
#include "plugins/sndfile/Encoder.h"

#include <libintl.h>

#include "com/QueryTable.h"
#include "plugins/sndfile/EncoderTarget.h"
#include "plugins/sndfile/OutputFormat.h"
#include "plugins/sndfile/Refusal.h"

int CEncoder::QueryInterface(unsigned long identity, void** face) {
    return AnswerQuery(*this, identity, face,
                       {{IID_IUnknown, static_cast<IAudioComponent*>(this)},
                        {IID_IExtensionList, static_cast<IExtensionList*>(this)},
                        {IID_IAudioTargetOpener, static_cast<IAudioTargetOpener*>(this)},
                        {IID_IComponentAbout, static_cast<IComponentAbout*>(this)}});
}

int CEncoder::GetCount() { return OutputFormatCount(); }

const char* CEncoder::GetAt(int n) {
    const SOutputFormat* const output = OutputFormatAt(n);
    return output != nullptr ? output->m_strExtension : nullptr;
}

bool CEncoder::OpenTarget(const char* path, const char* extension, IAudioTarget** target, IStatus** status) {
    return Guarded(status, [&] {
        if (path == nullptr || extension == nullptr || target == nullptr) {
            ReportStatus(status, AE_BAD_ARGUMENT);
            return false;
        }
        const SOutputFormat* const output = FindOutputFormat(extension);
        if (output == nullptr) {
            return Refuse(status, path, std::string("no encoder for \".") + extension + "\"; it writes wav and flac");
        }
        *target = new CEncoderTarget(path, *output);
        return true;
    });
}

const char* CEncoder::AboutFormat() const { return dgettext(kTextDomain, "Writes WAV and FLAC files with %s."); }

// Reasons in words.
#include "host/FailureText.h"

#include <algorithm>
#include <cstdio>
#include <string_view>
#include <system_error>

#include "host/Printable.h"

namespace {

struct SAudioErrorWords {
    EAudioError m_eError;
    const char* m_szWords;
};

constexpr SAudioErrorWords kAudioErrorWords[] = {
    {AE_BAD_ARGUMENT, "a null pointer or a size of zero was passed"},
    {AE_BUFFER_TOO_SMALL, "the read buffer is too small for a converted sample frame"},
    {AE_UNKNOWN_URL, "neither a file path nor an http:// or ftp:// address"},
    {AE_NO_DECODER, "no decoder opened it"},
    {AE_PLUGINS_LOADED, "refused while plug-ins are loaded"},
};

// A name may hold line breaks and a plug-in's text may too; the report stays one line.
void PutPrintable(const char* text) noexcept {
    for (std::string_view left = text; !left.empty();) {
        const std::size_t control = ControlLength(left);
        std::fputc(control > 0 ? '?' : left.front(), stderr);
        left.remove_prefix(std::max<std::size_t>(control, 1));
    }
}

std::string WithoutName(const std::string& text, const std::string& path) {
    for (const std::string& name : {path, path.substr(path.rfind('/') + 1)}) {
        const std::string prefix = name + ": ";
        if (text.compare(0, prefix.size(), prefix) == 0) return text.substr(prefix.size());
    }
    return text;
}

}  // namespace

std::string SystemErrorText(int error) { return std::generic_category().message(error); }

std::string AudioErrorText(EAudioError error) {
    for (const SAudioErrorWords& entry : kAudioErrorWords) {
        if (entry.m_eError == error) return entry.m_szWords;
    }
    char text[32];
    std::snprintf(text, sizeof(text), "error 0x%08X", static_cast<unsigned int>(error));
    return text;
}

std::string StatusText(IStatus* status, const std::string& otherwise, const std::string& path) {
    if (status == nullptr) return otherwise;
    const char* const description = status->GetDescription();
    if (description != nullptr && *description != '\0') return WithoutName(description, path);
    if (status->GetSysError() != 0) return SystemErrorText(static_cast<int>(status->GetSysError()));
    if (status->GetAudioError() != AE_NONE) return AudioErrorText(status->GetAudioError());
    return otherwise;
}

std::string JoinNames(const std::vector<std::string>& names) {
    std::string joined;
    for (const std::string& name : names) joined += (joined.empty() ? "" : ", ") + name;
    return joined.empty() ? "none" : joined;
}

void ReportFailure(const char* subject, const char* reason) noexcept {
    // Threads report at the same time, each line in one piece.
    flockfile(stderr);
    std::fputs("keloaudio: ", stderr);
    if (subject != nullptr) {
        PutPrintable(subject);
        std::fputs(": ", stderr);
    }
    PutPrintable(reason);
    std::fputc('\n', stderr);
    funlockfile(stderr);
}

// A sound file opened for reading.
#include "plugins/sndfile/SoundFile.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cstring>

#include "plugins/sndfile/Refusal.h"

namespace {

struct SSignature {
    const char* m_strStart;
    const char* m_strForm;  // at byte 8; empty when the start is enough
    const char* m_strName;
};

constexpr SSignature kSignatures[] = {
    {"RIFF", "WAVE", "WAV"},  {"RIFX", "WAVE", "WAV"}, {"RF64", "WAVE", "WAV"}, {"FORM", "AIFF", "AIFF"},
    {"FORM", "AIFC", "AIFC"}, {".snd", "", "AU"},      {"caff", "", "CAF"},     {"riff", "", "W64"},
    {"fLaC", "", "FLAC"},     {"OggS", "", "Ogg"},     {"ID3", "", "MP3"},
};

std::string FormatNameOf(int descriptor) {
    char start[12] = {};
    if (::pread(descriptor, start, sizeof start, 0) <= 0) return {};
    for (const SSignature& signature : kSignatures) {
        if (std::memcmp(start, signature.m_strStart, std::strlen(signature.m_strStart)) == 0 &&
            std::memcmp(start + 8, signature.m_strForm, std::strlen(signature.m_strForm)) == 0) {
            return signature.m_strName;
        }
    }
    return {};
}

// What is wrong with the file before a codec looks at it; empty when nothing is.
std::string ReasonAgainst(const CFileDescriptor& descriptor) {
    struct stat facts = {};
    if (!descriptor.IsOpen() || ::fstat(descriptor.Get(), &facts) != 0) return SystemReason(errno);
    if (S_ISDIR(facts.st_mode)) return SystemReason(EISDIR);
    // libsndfile 1.2.0 reads outside its memory when MPEG audio comes out of a pipe.
    if (!descriptor.IsSeekable()) return "not readable as audio: a pipe is no file";
    if (S_ISREG(facts.st_mode) && facts.st_size == 0) return "not readable as audio: the file is empty";
    return {};
}

}  // namespace

std::unique_ptr<CSoundFile> CSoundFile::Open(const char* path, std::string& reason) {
    CFileDescriptor descriptor(::open(path, O_RDONLY | O_CLOEXEC));
    reason = ReasonAgainst(descriptor);
    if (!reason.empty()) return nullptr;

    // The codec gets no name: by some names it would take any bytes for headerless audio.
    std::string formatName = FormatNameOf(descriptor.Get());
    SF_INFO info = {};
    CSndFileHandle handle(sf_open_fd(descriptor.Get(), SFM_READ, &info, SF_FALSE));
    if (handle == nullptr) {
        // libsndfile keeps this error for the whole process: of two failures at once, one may show the other's reason.
        reason = "not readable as " + (formatName.empty() ? "" : formatName + " ") + "audio: " + sf_strerror(nullptr);
        return nullptr;
    }
    return std::make_unique<CSoundFile>(std::move(descriptor), std::move(handle), info, std::move(formatName));
}

CSoundFile::CSoundFile(CFileDescriptor descriptor, CSndFileHandle handle, const SF_INFO& info, std::string formatName)
    : m_descriptor(std::move(descriptor)),
      m_handle(std::move(handle)),
      m_info(info),
      m_strFormatName(std::move(formatName)) {}

bool CSoundFile::Reopen() {
    m_handle.reset();
    if (::lseek(m_descriptor.Get(), 0, SEEK_SET) != 0) return false;
    SF_INFO info = {};
    m_handle.reset(sf_open_fd(m_descriptor.Get(), SFM_READ, &info, SF_FALSE));
    return m_handle != nullptr;
}

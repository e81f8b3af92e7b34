// A sound file opened for writing.
#include "plugins/sndfile/OutputFile.h"

#include <fcntl.h>
#include <sys/stat.h>

#include "plugins/sndfile/Refusal.h"

std::unique_ptr<COutputFile> COutputFile::Create(const std::string& path, const SF_INFO& info, std::string& reason) {
    auto file = std::make_unique<COutputFile>(
        CFileDescriptor(::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666)));
    if (!file->m_descriptor.IsOpen()) {
        reason = SystemReason(errno);
        return nullptr;
    }
    // Headers are completed at the end.
    if (!file->m_descriptor.IsSeekable()) {
        reason = errno == ESPIPE ? "a pipe is no file" : SystemReason(errno);
        return nullptr;
    }
    SF_VIRTUAL_IO operations = {Length, Seek, nullptr, Write, Tell};
    SF_INFO request = info;
    file->m_handle.reset(sf_open_virtual(&operations, SFM_WRITE, &request, file.get()));
    reason = file->m_handle == nullptr && file->m_nError == 0 ? sf_strerror(nullptr) : file->Reason();
    return reason.empty() ? std::move(file) : nullptr;
}

std::string COutputFile::Reason() const {
    if (m_nError != 0) return SystemReason(m_nError);
    return m_handle != nullptr && sf_error(Handle()) != SF_ERR_NO_ERROR ? sf_strerror(Handle()) : "";
}

std::string COutputFile::Close() {
    const std::string before = Reason();
    const int codecError = sf_close(m_handle.release());
    NoteError(m_descriptor.Close());
    if (!before.empty() || m_nError != 0) return before.empty() ? Reason() : before;
    return codecError == SF_ERR_NO_ERROR ? "" : sf_error_number(codecError);
}

void COutputFile::NoteError(int error) {
    if (m_nError == 0) m_nError = error;
}

sf_count_t COutputFile::Length(void* self) {
    struct stat facts = {};
    return ::fstat(static_cast<COutputFile*>(self)->m_descriptor.Get(), &facts) == 0 ? facts.st_size : -1;
}

sf_count_t COutputFile::Seek(sf_count_t offset, int whence, void* self) {
    auto& file = *static_cast<COutputFile*>(self);
    const sf_count_t position = ::lseek(file.m_descriptor.Get(), offset, whence);
    if (position < 0) file.NoteError(errno);
    return position;
}

sf_count_t COutputFile::Write(const void* data, sf_count_t count, void* self) {
    auto& file = *static_cast<COutputFile*>(self);
    const char* const bytes = static_cast<const char*>(data);
    sf_count_t written = 0;
    while (written < count) {
        const ssize_t step =
            ::write(file.m_descriptor.Get(), bytes + written, static_cast<std::size_t>(count - written));
        if (step < 0 && errno == EINTR) continue;
        if (step <= 0) {
            file.NoteError(step < 0 ? errno : ENOSPC);
            break;
        }
        written += step;
    }
    return written;
}

sf_count_t COutputFile::Tell(void* self) { return Seek(0, SEEK_CUR, self); }

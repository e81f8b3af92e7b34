// A sound file opened for writing.
#include "plugins/sndfile/OutputFile.h"

#include <fcntl.h>
#include <sys/stat.h>

#include "sdk/Guard.h"

namespace {

// No header is longer: its tags are short.
constexpr sf_count_t kMostHeaderBytes = 65536;

}  // namespace

COutputFile::COutputFile(const std::string& path, const std::string& lead, const SF_INFO& info)
    : m_descriptor(::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666)),
      m_nLead(static_cast<sf_count_t>(lead.size())) {
    if (!m_descriptor.IsOpen()) Refuse(SystemReason(errno));
    // Headers are completed at the end.
    if (!m_descriptor.IsSeekable()) Refuse(errno == ESPIPE ? "a pipe is no file" : SystemReason(errno));
    // The codec's own code calls Write, and no exception may pass through it.
    m_strHeader.reserve(kMostHeaderBytes);
    WriteAt(lead.data(), m_nLead, 0);
    SF_VIRTUAL_IO operations = {Length, Seek, nullptr, Write, Tell};
    SF_INFO request = info;
    m_handle.reset(sf_open_virtual(&operations, SFM_WRITE, &request, this));
    const std::string reason = m_handle == nullptr && m_nError == 0 ? sf_strerror(nullptr) : Reason();
    if (!reason.empty()) Refuse(reason);
}

std::string COutputFile::Reason() const {
    if (m_nError != 0) return SystemReason(m_nError);
    if (m_nCodecError != SF_ERR_NO_ERROR) return sf_error_number(m_nCodecError);
    return m_handle != nullptr && sf_error(Handle()) != SF_ERR_NO_ERROR ? sf_strerror(Handle()) : "";
}

void COutputFile::CloseHandle() {
    const int before = sf_error(Handle());
    m_nCodecError = sf_close(m_handle.release());
    if (before != SF_ERR_NO_ERROR) m_nCodecError = before;
}

std::uint64_t COutputFile::Size() const {
    struct stat facts = {};
    return ::fstat(m_descriptor.Get(), &facts) == 0 ? static_cast<std::uint64_t>(facts.st_size) : 0;
}

void COutputFile::ReplaceStart(const std::string& bytes) {
    WriteAt(bytes.data(), static_cast<sf_count_t>(bytes.size()), 0);
}

void COutputFile::NoteError(int error) {
    if (m_nError == 0) m_nError = error;
}

void COutputFile::WriteAt(const char* bytes, sf_count_t count, sf_count_t position) {
    while (count > 0 && m_nError == 0) {
        const ssize_t step = ::pwrite(m_descriptor.Get(), bytes, static_cast<std::size_t>(count), position);
        if (step < 0 && errno == EINTR) continue;
        if (step <= 0) return NoteError(step < 0 ? errno : ENOSPC);
        bytes += step;
        position += step;
        count -= step;
    }
}

sf_count_t COutputFile::Length(void* self) {
    const auto& file = *static_cast<COutputFile*>(self);
    return static_cast<sf_count_t>(file.Size()) - file.m_nLead;
}

sf_count_t COutputFile::Seek(sf_count_t offset, int whence, void* self) {
    auto& file = *static_cast<COutputFile*>(self);
    const sf_count_t base = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? file.m_nPosition : Length(self);
    if (offset < -base || offset > SF_COUNT_MAX - base) return -1;
    return file.m_nPosition = base + offset;
}

sf_count_t COutputFile::Write(const void* data, sf_count_t count, void* self) {
    auto& file = *static_cast<COutputFile*>(self);
    const auto* const bytes = static_cast<const char*>(data);
    file.WriteAt(bytes, count, file.m_nLead + file.m_nPosition);
    if (file.m_nPosition == 0 && count <= kMostHeaderBytes) file.m_strHeader.assign(bytes, bytes + count);
    file.m_nPosition += count;
    return count;
}

sf_count_t COutputFile::Tell(void* self) { return static_cast<COutputFile*>(self)->m_nPosition; }

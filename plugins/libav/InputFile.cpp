// The bytes of a file for libavformat.
#include "plugins/libav/InputFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "sdk/Guard.h"

namespace {

constexpr int kBufferSize = 65536;

std::int64_t SizeOf(int descriptor) {
    struct stat facts = {};
    return ::fstat(descriptor, &facts) == 0 ? facts.st_size : AVERROR(errno);
}

// What is wrong with the file before libavformat looks at it; empty when nothing is.
std::string ReasonAgainst(int descriptor) {
    struct stat facts = {};
    if (descriptor < 0 || ::fstat(descriptor, &facts) != 0) return SystemReason(errno);
    if (S_ISDIR(facts.st_mode)) return SystemReason(EISDIR);
    if (!S_ISREG(facts.st_mode)) return "not readable as audio: not a regular file";
    return facts.st_size == 0 ? "not readable as audio: the file is empty" : "";
}

}  // namespace

// Without blocking, for a pipe that nobody writes to.
CInputFile::CInputFile(const std::string& path)
    : m_nDescriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {
    const std::string reason = ReasonAgainst(m_nDescriptor);
    if (reason.empty()) return;
    if (m_nDescriptor >= 0) ::close(m_nDescriptor);
    Refuse(reason);
}

CInputFile::~CInputFile() { ::close(m_nDescriptor); }

CFileReader::CFileReader(std::shared_ptr<const CInputFile> file) : m_file(std::move(file)) {
    auto* const buffer = static_cast<unsigned char*>(Allocated(av_malloc(kBufferSize)));
    m_pContext = avio_alloc_context(buffer, kBufferSize, 0, this, Read, nullptr, Seek);
    if (m_pContext == nullptr) av_free(buffer);
    Allocated(m_pContext);
}

// The context may have replaced the buffer.
CFileReader::~CFileReader() {
    av_freep(&m_pContext->buffer);
    avio_context_free(&m_pContext);
}

int CFileReader::Read(void* self, std::uint8_t* buffer, int size) {
    auto& reader = *static_cast<CFileReader*>(self);
    ssize_t count = 0;
    do {
        count = ::pread(reader.m_file->Descriptor(), buffer, static_cast<std::size_t>(size), reader.m_nPosition);
    } while (count < 0 && errno == EINTR);
    if (count < 0) return AVERROR(errno);
    reader.m_nPosition += count;
    return count == 0 ? AVERROR_EOF : static_cast<int>(count);
}

std::int64_t CFileReader::Seek(void* self, std::int64_t offset, int whence) {
    auto& reader = *static_cast<CFileReader*>(self);
    const std::int64_t size = SizeOf(reader.m_file->Descriptor());
    const int from = whence & ~AVSEEK_FORCE;
    if (size < 0 || from == AVSEEK_SIZE) return size;
    const std::int64_t base = from == SEEK_SET ? 0 : from == SEEK_CUR ? reader.m_nPosition : size;
    if (offset < -base || offset > INT64_MAX - base) return AVERROR(EINVAL);
    return reader.m_nPosition = base + offset;
}

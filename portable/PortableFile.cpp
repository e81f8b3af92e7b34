// The life of a file object: naming, opening, transfer, closing.
#include "portable/PortableFile.h"

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <unistd.h>

#include <cstring>

#include "portable/ResolvedFile.h"

namespace {

constexpr mode_t kCreationMode = 0660;

int OpenFlags(CPortableFile::OpenMode mode) {
    switch (mode) {
        case CPortableFile::OM_WRITE:
            return O_WRONLY | O_CREAT;
        case CPortableFile::OM_READ_WRITE:
            return O_RDWR | O_CREAT;
        default:
            return O_RDONLY;
    }
}

}  // namespace

CAbstractErrorReporter* CPortableFile::m_pErrorReporter = nullptr;

CPortableFile::CPortableFile(const char* name, CPortableFile::OpenMode mode) { CommonConstructor(name, mode); }

void CPortableFile::CommonConstructor(const char* name, CPortableFile::OpenMode mode) {
    m_nStatus = 0;
    m_eMode = mode;
    m_nDescriptor = -1;
    m_strName = MakeAbsolute(name);
}

CPortableFile& CPortableFile::operator=(CPortableFile& other) {
    if (this == &other) return *this;
    m_eMode = other.m_eMode;
    m_strName = other.m_strName;
    m_nDescriptor = -1;
    return *this;
}

CPortableFile::~CPortableFile() { CPortableFile::CloseFile(); }

CPortableFile* CPortableFile::Clone() { return SResolvedFile::Make(m_strName.GetText()).release(); }

int CPortableFile::OpenFile(CPortableFile::OpenMode mode) {
    m_nDescriptor = open64(GetName(), OpenFlags(mode), kCreationMode);
    m_eMode = mode;
    return KeepResult(m_nDescriptor != -1);
}

int CPortableFile::CloseFile() {
    const bool closed = m_nDescriptor == -1 || close(m_nDescriptor) == 0;
    m_nDescriptor = -1;
    return KeepResult(closed);
}

int CPortableFile::Read(void* buffer, unsigned int size, unsigned int* done) {
    if (size != 0) std::memset(buffer, 0, size);
    *done = 0;
    if (!IsOpenAfterLazyOpening()) return Status();
    const ssize_t count = read(m_nDescriptor, buffer, size);
    if (count > 0) *done = static_cast<unsigned int>(count);
    return KeepResult(count != -1);
}

int CPortableFile::Write(void* buffer, unsigned int size, unsigned int* done) {
    *done = 0;
    if (!IsOpenAfterLazyOpening()) return Status();
    const ssize_t count = write(m_nDescriptor, buffer, size);
    if (count > 0) *done = static_cast<unsigned int>(count);
    return KeepResult(count != -1);
}

int CPortableFile::DeleteFile() { return KeepResult(remove(GetName()) == 0); }

int CPortableFile::Status() { return static_cast<const CPortableFile*>(this)->Status(); }

int CPortableFile::Status() const { return m_nStatus; }

const char* CPortableFile::GetName() { return m_strName.GetText(); }

const char* CPortableFile::GetName() const { return m_strName.GetText(); }

CPortableFile::OpenMode CPortableFile::GetAccessMode() const { return m_eMode; }

int CPortableFile::GetDrive() { return PFile::GetDrive(); }

void CPortableFile::SetErrorReporter(CAbstractErrorReporter* reporter) { m_pErrorReporter = reporter; }

// False, with the reason in the status, when the file cannot be opened.
bool CPortableFile::IsOpenAfterLazyOpening() {
    // A subclass may answer what it likes about a file that came open.
    return m_nDescriptor != -1 || OpenFile(m_eMode) == 0 || m_nDescriptor != -1;
}

// Stores 0 or errno as the status and answers what Status() makes of it.
int CPortableFile::KeepResult(bool succeeded) {
    m_nStatus = succeeded ? 0 : errno;
    return Status();
}

CPortableInvalidFile::CPortableInvalidFile() : CPortableFile(nullptr, OM_READ_WRITE) {}

CPortableInvalidFile::~CPortableInvalidFile() = default;

int CPortableInvalidFile::FileExists() const { return 0; }

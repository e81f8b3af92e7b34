// Positions and the end of a file.
#include <errno.h>
#include <unistd.h>

#include "portable/PortableFile.h"

namespace {

int SeekOrigin(PFile::POSMODE mode) {
    switch (mode) {
        case PFile::PM_END:
            return SEEK_END;
        case PFile::PM_CURRENT:
            return SEEK_CUR;
        default:
            return SEEK_SET;
    }
}

}  // namespace

int CPortableFile::GetFilePos(long* position) {
    *position = 0;
    if (!IsOpenAfterLazyOpening()) return Status();
    const off64_t found = lseek64(m_nDescriptor, 0, SEEK_CUR);
    if (found != -1) *position = found;
    return KeepResult(found != -1);
}

int CPortableFile::SetFilePos(PFile::POSMODE mode, long offset) {
    const bool open = IsOpenAfterLazyOpening();
    if (mode != PM_NO_SEEK && offset < 0) return open ? SeekBackwards(mode, offset) : Status();
    // The result of the seek is dropped: part of the contract.
    if (mode != PM_NO_SEEK) lseek64(m_nDescriptor, offset, SeekOrigin(mode));
    return KeepResult(true);
}

// Seeks by a negative offset, from the start of the file.
int CPortableFile::SeekBackwards(PFile::POSMODE mode, long offset) {
    long base = 0;
    if (mode == PM_CURRENT) GetFilePos(&base);
    if (mode == PM_END) GetLength(&base);
    return KeepResult(lseek64(m_nDescriptor, base + offset, SEEK_SET) != -1);
}

int CPortableFile::SetEndOfFile() {
    IsOpenAfterLazyOpening();
    long position = 0;
    const int found = GetFilePos(&position);
    if (found != 0) return KeepResult(found != -1);
    // Length zero, not the position: part of the contract.
    return KeepResult(ftruncate64(m_nDescriptor, 0) == 0);
}

// Copying of a file's bytes.
#include <fcntl.h>
#include <unistd.h>

#include "portable/FileDescriptor.h"
#include "portable/PortableFile.h"

namespace {

constexpr std::size_t kBlockSize = 32768;
constexpr mode_t kCreationMode = 0700;

bool WriteBlock(int target, const char* block, std::size_t size) {
    while (size > 0) {
        const ssize_t count = write(target, block, size);
        if (count <= 0) return false;
        block += count;
        size -= static_cast<std::size_t>(count);
    }
    return true;
}

bool CopyContent(int source, int target) {
    char block[kBlockSize];
    for (bool written = true;;) {
        const ssize_t count = read(source, block, sizeof(block));
        if (count <= 0) return written && count == 0;
        // A failed write ends the copy after one more read: part of the contract.
        if (!written) return false;
        written = WriteBlock(target, block, static_cast<std::size_t>(count));
    }
}

}  // namespace

int CPortableFile::CopyFile(const char* source, const char* target, int failIfExists) {
    if (source == nullptr || target == nullptr) return 0;
    const CFileDescriptor from(open64(source, O_RDONLY));
    if (!from.IsOpen()) return 0;
    const int exclusive = failIfExists != 0 ? O_EXCL : 0;
    const CFileDescriptor to(open64(target, O_WRONLY | O_CREAT | exclusive, kCreationMode));
    if (!to.IsOpen()) return 0;
    return CopyContent(from.Get(), to.Get()) ? 1 : 0;
}

// What a file system can hold.
#include <stdlib.h>
#include <sys/vfs.h>
#include <unistd.h>

#include "portable/FileDescriptor.h"
#include "portable/PortableFile.h"

namespace {

constexpr long kSmallestMaximum = 0x7FFFFFFF;
constexpr long kProbedMaxima[] = {kSmallestMaximum, 0xFFFFFFFF, 0x1FFFFFFFF, 0x3FFFFFFFF};

}  // namespace

std::uint64_t CPortableFile::GetDiscFreeSpace(const char* path) {
    struct statfs64 status = {};
    if (statfs64(MakeAbsolute(path).GetText(), &status) != 0) return 0;
    return static_cast<std::uint64_t>(status.f_bavail) * static_cast<std::uint64_t>(status.f_bsize);
}

int CPortableFile::GetMaximumFileLength(const char* path, long& maximum) {
    maximum = kSmallestMaximum;
    CBasicString<char> name = Split_GetPath(path);
    name += "/kelo_XXXXXX";
    {
        const CFileDescriptor file(mkstemp64(name.GetBuffer()));
        if (!file.IsOpen()) return 1;
        for (const long offset : kProbedMaxima) {
            if (lseek64(file.Get(), offset, SEEK_SET) == offset) maximum = offset;
        }
    }
    unlink(name.GetText());
    return 1;
}

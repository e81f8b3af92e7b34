// Current, home, root and temporary directories.
#include <errno.h>
#include <stdlib.h>
#include <unistd.h>

#include <cstdio>
#include <memory>

#include "portable/PortableFile.h"

namespace {

constexpr int kDirectoryStep = 256;

struct SMallocDeleter {
    void operator()(char* text) const noexcept { std::free(text); }
};

}  // namespace

int CPortableFile::GetCurrentDirectory(int size, char* buffer) {
    if (buffer == nullptr || size < 0) return 0;
    return getcwd(buffer, static_cast<std::size_t>(size)) != nullptr ? 1 : 0;
}

int CPortableFile::GetCurrentDirectory(CBasicString<char>& result) {
    int size = kDirectoryStep;
    result.Reserve(size);
    while (getcwd(result.GetBuffer(), static_cast<std::size_t>(size)) == nullptr && errno == ERANGE) {
        size += kDirectoryStep;
        result.Reserve(size);
    }
    result.UpdateLength();
    return 1;
}

int CPortableFile::SetCurrentDirectory(const char* path) { return path != nullptr && chdir(path) == 0 ? 1 : 0; }

CBasicString<char> CPortableFile::GetDefaultDirectory() {
    const char* const home = std::getenv("HOME");
    return {home != nullptr ? home : "/"};
}

CBasicString<char> CPortableFile::GetDefaultRootDirectory() { return {"/"}; }

CBasicString<char> CPortableFile::GetTempPath() {
    const CBasicString<char> name = CreateTempName(nullptr, nullptr);
    return name.IsEmpty() ? name : Split_GetPath(name.GetText());
}

CBasicString<char> CPortableFile::CreateTempName(const char* directory, const char* prefix) {
    const std::unique_ptr<char, SMallocDeleter> name(tempnam(directory, prefix));
    return {name.get()};
}

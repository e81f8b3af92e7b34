// Splitting of paths into components, directory, name and extension.
#include <cstring>

#include "portable/PortableFile.h"

namespace {

const char* TextOf(const char* path) { return path == nullptr ? "" : path; }

// Where the component after `position` starts; null when there is none. A trailing slash does not start a component.
const char* NextComponent(const char* position) {
    const char* const slash = std::strchr(position, '/');
    return slash == nullptr || slash[1] == '\0' ? nullptr : slash + 1;
}

// Where component `n` starts, the first one for an `n` below 1; null when there are not so many.
const char* SkipPathComponents(const char* path, int n) {
    const char* position = path + std::strspn(path, "/");
    for (; n > 0 && position != nullptr; --n) position = NextComponent(position);
    return position;
}

CBasicString<char> FirstCharacters(const char* text, std::ptrdiff_t count) {
    return CBasicString<char>(text, static_cast<int>(count));
}

}  // namespace

int CPortableFile::Split_GetPathComponentCount(const char* path) {
    path = TextOf(path);
    if (*path == '\0') return 0;
    int count = 0;
    for (const char* position = SkipPathComponents(path, 0); position != nullptr; position = NextComponent(position)) {
        ++count;
    }
    return count;
}

CBasicString<char> CPortableFile::Split_GetPathComponent(const char* path, int n) {
    const char* const start = SkipPathComponents(TextOf(path), n);
    if (start == nullptr) return {};
    return FirstCharacters(start, static_cast<std::ptrdiff_t>(std::strcspn(start, "/")));
}

CBasicString<char> CPortableFile::Split_CutLeft(const char* path, int n) {
    return {SkipPathComponents(TextOf(path), n)};
}

CBasicString<char> CPortableFile::Split_CutRight(const char* path, int n) {
    path = TextOf(path);
    const char* end = path + std::strlen(path);
    if (n > 0) {
        // The components before the count's last n; never null, for the count is larger than what is skipped.
        const char* const cut = SkipPathComponents(path, Split_GetPathComponentCount(path) - n);
        if (cut != nullptr) end = cut;
    }
    if (end != path && end[-1] == '/') --end;
    return FirstCharacters(path, end - path);
}

CBasicString<char> CPortableFile::Split_GetPath(const char* path) {
    if (IsDirectory(path) != 0) return {path};
    CBasicString<char> directory = Split_CutRight(path, 1);
    if (directory.IsEmpty()) directory = "/";
    return directory;
}

CBasicString<char> CPortableFile::Split_GetFileName(const char* path) {
    if (IsDirectory(path) != 0) return {};
    return Split_GetPathComponent(path, Split_GetPathComponentCount(path) - 1);
}

CBasicString<char> CPortableFile::Split_GetExtension(const char* path) {
    const CBasicString<char> name = Split_GetFileName(path);
    return {std::strrchr(name.GetText(), '.')};
}

CBasicString<char> CPortableFile::Split_GetFileWithoutExt(const char* path) {
    const CBasicString<char> name = Split_GetFileName(path);
    const char* const dot = std::strrchr(name.GetText(), '.');
    return dot == nullptr ? name : FirstCharacters(name.GetText(), dot - name.GetText());
}

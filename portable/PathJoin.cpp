// Joining of path components and absolute paths.
#include <limits.h>
#include <stdlib.h>

#include <cstdarg>
#include <cstring>

#include "portable/PortableFile.h"

namespace {

constexpr char kRoot[] = "/";
constexpr char kRelativePrefix[] = "./";
constexpr int kResolvedCapacity = 4096;
static_assert(kResolvedCapacity >= PATH_MAX, "realpath fills up to PATH_MAX bytes");

void RemoveTrailingSlash(CBasicString<char>& path) {
    const int length = path.GetLength();
    if (length == 0 || path.GetText()[length - 1] != '/') return;
    path.GetBuffer()[length - 1] = '\0';
    path.UpdateLength();
}

// Appends one component and a slash.
void AppendComponent(CBasicString<char>& path, const char* component, bool first) {
    if (component == nullptr || *component == '\0') return;
    if (*component == '/') {
        // Only the first component can restart the path: part of the contract.
        if (first) path = kRoot;
        ++component;
        if (*component == '\0') return;
    }
    CBasicString<char> text(component);
    RemoveTrailingSlash(text);
    path += text.GetText();
    path += kRoot;
}

}  // namespace

CBasicString<char> CPortableFile::CombinePathComponents(int rooted, int count, ...) {
    CBasicString<char> path(rooted != 0 ? kRoot : "");
    std::va_list components;
    va_start(components, count);
    for (int i = 0; i < count; ++i) AppendComponent(path, va_arg(components, const char*), i == 0);
    va_end(components);
    RemoveTrailingSlash(path);
    return path;
}

CBasicString<char> CPortableFile::MakeAbsolute(const char* path) {
    if (path == nullptr) return {};
    if (std::strcmp(path, kRoot) == 0) return {kRoot};

    CBasicString<char> prefixed(*path == '/' ? "" : kRelativePrefix);
    prefixed += path;
    char directory[kResolvedCapacity];
    if (realpath(Split_GetPath(prefixed.GetText()).GetText(), directory) == nullptr) return {};
    return CombinePathComponents(0, 2, directory, Split_GetFileName(prefixed.GetText()).GetText());
}

CBasicString<char> CPortableFile::MakeShortPathName(const char* /*path*/) { return {}; }

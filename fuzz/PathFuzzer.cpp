// Splitting and joining of paths: a count, then texts, of which the first is split and all are joined.
#include <limits.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <algorithm>
#include <string>
#include <vector>

#include "fuzz/FuzzTarget.h"
#include "fuzz/FuzzedInput.h"
#include "fuzz/Require.h"
#include "portable/PortableFile.h"

namespace {

constexpr std::size_t kMostPath = 512;

std::string TextOf(const CBasicString<char>& text) {
    const std::string result = text.GetText();
    fuzz::RequireEqual("the length", text.GetLength(), static_cast<int>(result.size()));
    return result;
}

// Where a component starts; npos when there are not so many.
std::size_t ModelSkip(const std::string& path, int n) {
    std::size_t at = std::min(path.find_first_not_of('/'), path.size());
    for (; n > 0; --n) {
        at = path.find('/', at);
        if (at == std::string::npos || at + 1 == path.size()) return std::string::npos;
        ++at;
    }
    return at;
}

int ModelCount(const std::string& path) {
    if (path.empty()) return 0;
    int count = 0;
    while (ModelSkip(path, count) != std::string::npos) ++count;
    return count;
}

std::string ModelComponent(const std::string& path, int n) {
    const std::size_t at = ModelSkip(path, n);
    return at == std::string::npos ? "" : path.substr(at, path.find('/', at) - at);
}

std::string ModelCutLeft(const std::string& path, int n) {
    const std::size_t at = ModelSkip(path, n);
    return at == std::string::npos ? "" : path.substr(at);
}

std::string WithoutSlash(std::string path) {
    if (!path.empty() && path.back() == '/') path.pop_back();
    return path;
}

std::string ModelCutRight(const std::string& path, int n) {
    const std::size_t cut = n > 0 ? ModelSkip(path, ModelCount(path) - n) : std::string::npos;
    return WithoutSlash(path.substr(0, cut));
}

bool IsDirectory(const std::string& path) {
    struct stat facts = {};
    return lstat(path.c_str(), &facts) == 0 && S_ISDIR(facts.st_mode);
}

std::string ModelPath(const std::string& path) {
    if (IsDirectory(path)) return path;
    const std::string directory = ModelCutRight(path, 1);
    return directory.empty() ? "/" : directory;
}

std::string ModelFileName(const std::string& path) {
    return IsDirectory(path) ? "" : ModelComponent(path, ModelCount(path) - 1);
}

std::string ModelExtension(const std::string& path) {
    const std::string name = ModelFileName(path);
    return name.substr(std::min(name.rfind('.'), name.size()));
}

std::string ModelWithoutExtension(const std::string& path) {
    const std::string name = ModelFileName(path);
    return name.substr(0, name.rfind('.'));
}

std::string ModelJoin(bool rooted, const std::vector<std::string>& components) {
    std::string path = rooted ? "/" : "";
    for (std::size_t i = 0; i < components.size(); ++i) {
        std::string component = components[i];
        if (component.empty()) continue;
        if (component[0] == '/') {
            if (i == 0) path = "/";
            component.erase(0, 1);
        }
        if (!component.empty()) path += WithoutSlash(component) + '/';
    }
    return WithoutSlash(path);
}

std::string ModelAbsolute(const std::string& path) {
    if (path == "/") return "/";
    const std::string prefixed = path.compare(0, 1, "/") == 0 ? path : "./" + path;
    char directory[PATH_MAX];
    if (realpath(ModelPath(prefixed).c_str(), directory) == nullptr) return "";
    return ModelJoin(false, {directory, ModelFileName(prefixed)});
}

void CheckSplitting(const std::string& text, int n) {
    const std::vector<char> exact = ExactCopy(text);
    const char* const path = exact.data();
    using CFile = CPortableFile;
    fuzz::RequireEqual("the count", CFile::Split_GetPathComponentCount(path), ModelCount(text));
    fuzz::RequireEqual("the component", TextOf(CFile::Split_GetPathComponent(path, n)), ModelComponent(text, n));
    fuzz::RequireEqual("what is left", TextOf(CFile::Split_CutLeft(path, n)), ModelCutLeft(text, n));
    fuzz::RequireEqual("what is right", TextOf(CFile::Split_CutRight(path, n)), ModelCutRight(text, n));
    fuzz::RequireEqual("the directory", TextOf(CFile::Split_GetPath(path)), ModelPath(text));
    fuzz::RequireEqual("the file name", TextOf(CFile::Split_GetFileName(path)), ModelFileName(text));
    fuzz::RequireEqual("the extension", TextOf(CFile::Split_GetExtension(path)), ModelExtension(text));
    fuzz::RequireEqual("the bare name", TextOf(CFile::Split_GetFileWithoutExt(path)), ModelWithoutExtension(text));
    fuzz::RequireEqual("the absolute path", TextOf(CFile::MakeAbsolute(path)), ModelAbsolute(text));
}

// A path without empty components is the same again when its components are joined.
void CheckRoundTrip(const std::string& path) {
    const std::string rest = path.substr(std::min(path.find_first_not_of('/'), path.size()));
    if (rest.empty() || rest.find("//") != std::string::npos) return;
    const bool rooted = path[0] == '/';
    std::string joined;
    for (int i = 0; i < CPortableFile::Split_GetPathComponentCount(path.c_str()); ++i) {
        const std::string component = TextOf(CPortableFile::Split_GetPathComponent(path.c_str(), i));
        joined = TextOf(i == 0 ? CPortableFile::CombinePathComponents(rooted ? 1 : 0, 1, component.c_str())
                               : CPortableFile::CombinePathComponents(0, 2, joined.c_str(), component.c_str()));
    }
    fuzz::RequireEqual("the path joined again", joined, (rooted ? "/" : "") + WithoutSlash(rest));
}

void CheckJoining(bool rooted, const std::vector<std::string>& components) {
    std::vector<std::vector<char>> exact;
    for (const std::string& component : components) exact.push_back(ExactCopy(component));
    const auto text = [&exact](std::size_t i) { return i < exact.size() ? exact[i].data() : nullptr; };
    const CBasicString<char> joined = CPortableFile::CombinePathComponents(
        rooted ? 1 : 0, static_cast<int>(components.size()), text(0), text(1), text(2), text(3));
    fuzz::RequireEqual("the joined path", TextOf(joined), ModelJoin(rooted, components));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    CFuzzedInput input(data, size);
    const auto n = input.Number<signed char>();
    std::vector<std::string> texts;
    do {
        texts.push_back(input.Text().substr(0, kMostPath));
    } while (!input.IsEmpty() && texts.size() < 4);
    CheckSplitting(texts[0], n);
    CheckRoundTrip(texts[0]);
    CheckJoining(n % 2 != 0, texts);
    return 0;
}

// Who may include whom in the source tree.
#include "tests/build/IncludeRules.h"

#include <algorithm>
#include <fstream>
#include <map>
#include <optional>
#include <regex>

namespace {

namespace fs = std::filesystem;

// From the ground up.
const std::vector<std::string> kLayers = {"portable", "com", "stream", "pluginmgr", "dialog"};
const std::vector<std::string> kClients = {"sdk", "host", "plugins", "examples"};
const std::string kSdk = "sdk";
const std::string kSharedByPlugins = "plugins/shared";
const std::set<std::string> kManagerForClients = {"pluginmgr/AudioPluginMgr.h", "pluginmgr/GetAudioPluginMgr.h"};

struct SInclude {
    std::string m_strPath;
    bool m_bQuoted;
};

using CIncludes = std::map<std::string, std::vector<SInclude>>;

std::string FolderOf(const std::string& path) { return path.substr(0, path.find('/')); }

bool Contains(const std::vector<std::string>& names, const std::string& name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

// Place in the order of layers; none for a folder outside the library.
std::optional<std::ptrdiff_t> RankOf(const std::string& path) {
    const auto layer = std::find(kLayers.begin(), kLayers.end(), FolderOf(path));
    if (layer == kLayers.end()) return std::nullopt;
    return layer - kLayers.begin();
}

bool IsOfTheTree(const SInclude& include) {
    const std::string folder = FolderOf(include.m_strPath);
    return include.m_bQuoted || Contains(kLayers, folder) || Contains(kClients, folder);
}

// "portable/Export.h", neither "Export.h" nor a road through "..".
bool NamesAFileFromTheRoot(const fs::path& root, const std::string& path) {
    return path.find('/') != std::string::npos && path.find("..") == std::string::npos &&
           fs::is_regular_file(root / path);
}

// Each plug-in and each example stands alone, but for what all plug-ins share; the host is one program.
std::string ClientOf(const std::string& path) {
    const std::string folder = FolderOf(path);
    if (folder == "host" || folder == kSdk) return folder;
    return path.substr(0, path.find('/', folder.size() + 1));
}

std::vector<SInclude> ReadIncludes(const fs::path& file) {
    static const std::regex kInclude("^\\s*#\\s*include\\s*([<\"])([^>\"]+)[>\"].*");
    std::vector<SInclude> includes;
    std::ifstream stream(file);
    for (std::string line; std::getline(stream, line);) {
        std::smatch parts;
        if (std::regex_match(line, parts, kInclude)) includes.push_back({parts[2], parts[1] == "\""});
    }
    return includes;
}

std::string Complaint(const std::string& file, const SInclude& include, const std::string& reason) {
    return file + " includes " + include.m_strPath + ": " + reason;
}

std::optional<std::string> LayerComplaint(const std::string& file, const SInclude& include) {
    const auto rank = RankOf(include.m_strPath);
    if (!rank) return Complaint(file, include, "not a part of the library");
    if (*rank > *RankOf(file)) return Complaint(file, include, "a layer above");
    return std::nullopt;
}

std::optional<std::string> ClientComplaint(const std::string& file, const SInclude& include,
                                           const std::set<std::string>& publicHeaders) {
    const std::string folder = FolderOf(include.m_strPath);
    if (!Contains(kLayers, folder)) {
        const std::string client = ClientOf(include.m_strPath);
        const bool shared = client == kSharedByPlugins && FolderOf(file) == "plugins";
        const bool bases = client == kSdk && FolderOf(file) != "host";
        if (shared || bases || client == ClientOf(file)) return std::nullopt;
        return Complaint(file, include, "neither its own nor the library's");
    }
    if (publicHeaders.count(include.m_strPath) == 0) return Complaint(file, include, "not a public header");
    if (folder == "pluginmgr" && kManagerForClients.count(include.m_strPath) == 0) {
        return Complaint(file, include, "not meant for hosts and plug-ins");
    }
    return std::nullopt;
}

// Every chain of includes that comes back to `file`, found by walking `path` on.
void FindCycles(const std::string& file, const CIncludes& tree, std::vector<std::string>& path,
                std::set<std::string>& walked, std::vector<std::string>& cycles) {
    const auto begin = std::find(path.begin(), path.end(), file);
    if (begin != path.end()) {
        std::string cycle = "a cycle:";
        for (auto step = begin; step != path.end(); ++step) cycle += " " + *step;
        cycles.push_back(cycle + " " + file);
        return;
    }
    const auto includes = tree.find(file);
    if (includes == tree.end() || !walked.insert(file).second) return;
    path.push_back(file);
    for (const SInclude& include : includes->second) FindCycles(include.m_strPath, tree, path, walked, cycles);
    path.pop_back();
}

void CheckFile(const std::string& file, const SInclude& include, const fs::path& root,
               const std::set<std::string>& publicHeaders, std::vector<std::string>& violations) {
    if (!IsOfTheTree(include)) return;
    if (!include.m_bQuoted) violations.push_back(Complaint(file, include, "a file of the tree in angle brackets"));
    if (!NamesAFileFromTheRoot(root, include.m_strPath)) {
        violations.push_back(Complaint(file, include, "no file by its path from the root"));
        return;
    }
    const bool isLibrary = RankOf(file).has_value();
    const auto complaint = isLibrary ? LayerComplaint(file, include) : ClientComplaint(file, include, publicHeaders);
    if (complaint) violations.push_back(*complaint);
}

}  // namespace

std::vector<std::string> CheckedFiles(const fs::path& root) {
    std::vector<std::string> files;
    for (const std::vector<std::string>& folders : {kLayers, kClients}) {
        for (const std::string& folder : folders) {
            if (!fs::is_directory(root / folder)) continue;
            for (const fs::directory_entry& entry : fs::recursive_directory_iterator(root / folder)) {
                const fs::path extension = entry.path().extension();
                if (extension != ".h" && extension != ".cpp") continue;
                files.push_back(entry.path().lexically_relative(root).generic_string());
            }
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

std::vector<std::string> FindIncludeViolations(const fs::path& root, const std::set<std::string>& publicHeaders) {
    CIncludes tree;
    for (const std::string& file : CheckedFiles(root)) tree[file] = ReadIncludes(root / file);

    std::vector<std::string> violations;
    std::set<std::string> walked;
    for (const auto& [file, includes] : tree) {
        for (const SInclude& include : includes) CheckFile(file, include, root, publicHeaders, violations);
        std::vector<std::string> path;
        FindCycles(file, tree, path, walked, violations);
    }
    return violations;
}

// Who may change the code that plug-ins bring into the process.
#include "host/PluginTrust.h"

#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <list>
#include <system_error>

#include "host/Failure.h"
#include "host/FailureText.h"

namespace {

namespace fs = std::filesystem;

// The kernel's limit, path_resolution(7).
constexpr int kMaxLinks = 40;

constexpr const char* kWayOut = " (--trust-plugins loads them all the same)";

std::string OwnerText(uid_t owner) {
    const passwd* const entry = getpwuid(owner);
    return entry != nullptr ? entry->pw_name : "user " + std::to_string(owner);
}

// A group that a system makes for one user alone and names like him, as Debian does.
bool IsPrivateGroup(gid_t group) {
    const passwd* const user = getpwuid(geteuid());
    if (user == nullptr || user->pw_gid != group) return false;
    const std::string name = user->pw_name;
    const ::group* const entry = getgrgid(group);
    return entry != nullptr && name == entry->gr_name && entry->gr_mem[0] == nullptr;
}

// Where there is an access list, the group's permissions are the most that it gives to anybody in it, acl(5).
std::string WhoWritesBesideGroup(const fs::path& path) {
    if (getxattr(path.c_str(), "system.posix_acl_access", nullptr, 0) >= 0) {
        return "an access list may let others write to it";
    }
    if (errno == ENODATA || errno == ENOTSUP) return {};
    return "whether an access list lets others write to it cannot be told: " + SystemErrorText(errno);
}

// Who else may write to it, empty when nobody.
std::string WhoElseWrites(const fs::path& path, const struct stat& entry) {
    if (entry.st_uid != 0 && entry.st_uid != geteuid()) return "it belongs to " + OwnerText(entry.st_uid);
    if ((entry.st_mode & S_IWOTH) != 0) return "everybody may write to it";
    if ((entry.st_mode & S_IWGRP) == 0) return {};
    if (entry.st_gid != 0 && !IsPrivateGroup(entry.st_gid)) return "its group may write to it";
    return WhoWritesBesideGroup(path);
}

void RequireTrusted(const fs::path& path, bool allowSticky) {
    struct stat entry = {};
    if (stat(path.c_str(), &entry) != 0) {
        if (errno == ENOENT) return;  // a link to nothing
        throw CFailure(path, SystemErrorText(errno));
    }
    const std::string reason = WhoElseWrites(path, entry);
    // In a directory such as /tmp nobody replaces what belongs to another.
    const bool sticky = (entry.st_mode & S_ISVTX) != 0 && (entry.st_uid == 0 || entry.st_uid == geteuid());
    if (reason.empty() || (allowSticky && sticky)) return;
    throw CFailure(path, "plug-ins are not safe there: " + reason, kWayOut);
}

void RequireTrustedLink(const fs::path& path, const struct stat& entry) {
    if (entry.st_uid == 0 || entry.st_uid == geteuid()) return;
    throw CFailure(path, "plug-ins are not safe there: it belongs to " + OwnerText(entry.st_uid), kWayOut);
}

// Goes from `reached`, which has no links in it, along `path` as the kernel does, path_resolution(7): whoever can
// replace a directory or turn a link on the way decides what is at its end.
void RequireTrustedWay(fs::path reached, const fs::path& path) {
    std::list<fs::path> left(path.begin(), path.end());
    for (int links = 0; !left.empty() && links <= kMaxLinks;) {
        const fs::path next = (reached / left.front()).lexically_normal();
        left.pop_front();
        struct stat entry = {};
        if (lstat(next.c_str(), &entry) != 0) return;  // nothing is there
        if (S_ISLNK(entry.st_mode)) {
            RequireTrustedLink(next, entry);
            const fs::path target = fs::read_symlink(next);
            left.insert(left.begin(), target.begin(), target.end());
            ++links;
            continue;
        }
        if (S_ISDIR(entry.st_mode)) RequireTrusted(next, true);
        reached = next;
    }
}

void RequireTrustedFile(const fs::path& directory, const fs::directory_entry& entry) {
    RequireTrusted(entry.path(), false);
    std::error_code error;
    if (entry.is_symlink(error)) RequireTrustedWay(directory, entry.path().filename());
}

}  // namespace

void RequireTrustedPlugins(const std::string& directory, bool belongsToProgram) {
    std::error_code error;
    const fs::path resolved = fs::canonical(directory, error);
    if (error) return;  // whoever reads the directory has better words for it
    RequireTrusted(resolved, false);
    if (!belongsToProgram) RequireTrustedWay("/", fs::absolute(directory));
    for (const fs::directory_entry& entry : fs::directory_iterator(resolved, error)) {
        if (!entry.is_directory(error)) RequireTrustedFile(resolved, entry);
    }
}

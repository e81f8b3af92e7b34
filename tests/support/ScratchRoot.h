// A child process whose root directory is a scratch directory, for tests that remove trees or list "/".
#pragma once

#include <gtest/gtest.h>
#include <sched.h>
#include <stdio.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include <exception>
#include <fstream>
#include <string>

#include "tests/support/ScratchDirectory.h"

// Where the test's tree lies, seen from inside the child.
class CScratchRoot {
public:
    CScratchRoot(std::string prefix, bool ownMounts) : m_prefix(std::move(prefix)), m_bOwnMounts(ownMounts) {}

    // "/" is the scratch directory. Otherwise every path has to come from operator/.
    bool IsPrivate() const { return m_prefix.empty(); }

    // Mounts made here are seen by nobody else and end with the child.
    bool HasOwnMounts() const { return m_bOwnMounts; }

    std::string operator/(const std::string& name) const { return m_prefix + "/" + name; }

private:
    std::string m_prefix;
    bool m_bOwnMounts;
};

namespace scratch_root {

constexpr int kFailed = 1;
constexpr int kSkipped = 77;

// Becomes root of a user namespace when this process is not root.
inline bool EnterNamespaces() {
    const uid_t user = geteuid();
    const gid_t group = getegid();
    if (unshare(user == 0 ? CLONE_NEWNS : CLONE_NEWUSER | CLONE_NEWNS) != 0) return false;
    if (user != 0) {
        std::ofstream("/proc/self/setgroups") << "deny";
        std::ofstream("/proc/self/uid_map") << "0 " << user << " 1";
        std::ofstream("/proc/self/gid_map") << "0 " << group << " 1";
    }
    return mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

inline CScratchRoot Enter(const std::string& directory) {
    const bool ownMounts = EnterNamespaces();
    const bool entered = chroot(directory.c_str()) == 0;
    if (chdir(entered ? "/" : directory.c_str()) != 0) _exit(kFailed);
    return CScratchRoot(entered ? "" : directory, ownMounts && entered);
}

template <typename Body>
[[noreturn]] void RunChild(const std::string& directory, Body body) {
    try {
        body(Enter(directory));
    } catch (const std::exception& error) {
        ADD_FAILURE() << error.what();
    }
    fflush(stdout);
    fflush(stderr);
    if (testing::Test::HasFailure()) _exit(kFailed);
    _exit(testing::Test::IsSkipped() ? kSkipped : 0);
}

}  // namespace scratch_root

// Runs `body(const CScratchRoot&)` in a child, in an empty scratch root that is also its current directory.
// The child's failures are printed as they happen and fail the calling test; its skip skips the calling test.
template <typename Body>
void RunInScratchRoot(Body body) {
    const CScratchDirectory scratch;
    fflush(stdout);
    const pid_t child = fork();
    ASSERT_NE(child, -1) << "no child process";
    if (child == 0) scratch_root::RunChild(scratch.Path().string(), body);
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status)) << "the child ended by signal " << WTERMSIG(status);
    if (WEXITSTATUS(status) == scratch_root::kSkipped) GTEST_SKIP() << "skipped in the scratch root, see above";
    EXPECT_EQ(WEXITSTATUS(status), 0) << "failed in the scratch root, see above";
}

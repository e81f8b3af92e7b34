// Runs a program and captures what it says.
#include "tests/host/RunProgram.h"

#include <fcntl.h>
#include <spawn.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace {

#if defined(__has_feature)
constexpr bool kLeakChecker = __has_feature(address_sanitizer);
#elif defined(__SANITIZE_ADDRESS__)
constexpr bool kLeakChecker = true;
#else
constexpr bool kLeakChecker = false;
#endif

void PrepareEnvironment() {
    setenv("LC_ALL", "C", 1);
    // libgomp, which libsoxr brings along, leaves 8 bytes behind when it is unloaded with the plug-in; loaded by the
    // program itself it stays, and the leak checker sees that the bytes are in use.
    if (kLeakChecker) setenv("LD_PRELOAD", "libgomp.so.1", 1);
    if (kLeakChecker) setenv("ASAN_OPTIONS", "verify_asan_link_order=0", 1);
}

}  // namespace

CRunningProgram::CRunningProgram(const std::vector<std::string>& command, const std::string& directory) {
    PrepareEnvironment();
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    constexpr int kCreate = O_WRONLY | O_CREAT | O_TRUNC;
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 1, (m_scratch / "out").c_str(), kCreate, 0600);
    posix_spawn_file_actions_addopen(&actions, 2, (m_scratch / "err").c_str(), kCreate, 0600);
    if (!directory.empty()) posix_spawn_file_actions_addchdir_np(&actions, directory.c_str());
    std::vector<std::string> words = command;
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    const int error = posix_spawnp(&m_id, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0) throw std::runtime_error("cannot run " + command.front());
}

SRunResult CRunningProgram::Wait() {
    int status = 0;
    if (waitpid(m_id, &status, 0) != m_id) throw std::runtime_error("lost a child");
    SRunResult result;
    result.m_nExit = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    result.m_strOut = ReadWholeFile(m_scratch / "out");
    result.m_strErr = ReadWholeFile(m_scratch / "err");
    return result;
}

SRunResult RunProgram(const std::vector<std::string>& command, const std::string& directory) {
    return CRunningProgram(command, directory).Wait();
}

std::string ReadWholeFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

bool IsOneLine(const std::string& text) {
    return !text.empty() && std::count(text.begin(), text.end(), '\n') == 1 && text.back() == '\n';
}

std::vector<std::string> NamesIn(const std::string& directory) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(directory)) names.push_back(entry.path().filename());
    std::sort(names.begin(), names.end());
    return names;
}

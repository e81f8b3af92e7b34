// Runs a program and captures what it says.
#include "tests/host/RunProgram.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <stdlib.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <thread>

#include "tests/support/HeldLibgomp.h"

namespace {

void PrepareEnvironment() {
    setenv("LC_ALL", "C", 1);
    // The person who runs the tests may have plug-ins of his own.
    unsetenv("KELO_AUDIO_PLUGINS");
    support::HoldLibgompInPrograms();
}

// Recursion without an end is to come to the end of its stack, also where the limit of whoever runs the tests is none.
void LimitStack() {
    constexpr rlim_t kStackBytes = rlim_t{8} << 20U;
    rlimit stack = {};
    getrlimit(RLIMIT_STACK, &stack);
    stack.rlim_cur = std::min(kStackBytes, stack.rlim_max);
    setrlimit(RLIMIT_STACK, &stack);
}

constexpr std::chrono::milliseconds kPollInterval{2};
constexpr std::chrono::minutes kTimeLimit{1};
constexpr std::chrono::seconds kConditionLimit{30};

class CSpawnActions {
public:
    CSpawnActions(const std::string& directory, const std::string& out, const std::string& err) {
        constexpr int kCreate = O_WRONLY | O_CREAT | O_TRUNC;
        posix_spawn_file_actions_init(&m_actions);
        posix_spawn_file_actions_addopen(&m_actions, 0, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_addopen(&m_actions, 1, out.c_str(), kCreate, 0600);
        posix_spawn_file_actions_addopen(&m_actions, 2, err.c_str(), kCreate, 0600);
        if (!directory.empty()) posix_spawn_file_actions_addchdir_np(&m_actions, directory.c_str());
    }
    ~CSpawnActions() { posix_spawn_file_actions_destroy(&m_actions); }

    CSpawnActions(const CSpawnActions&) = delete;
    CSpawnActions& operator=(const CSpawnActions&) = delete;

    const posix_spawn_file_actions_t* Get() const { return &m_actions; }

private:
    posix_spawn_file_actions_t m_actions;
};

// Whoever runs the tests may ignore or block signals; the program under test inherits none of that.
class CDefaultSignals {
public:
    CDefaultSignals() {
        sigset_t defaults;
        sigset_t mask;
        sigfillset(&defaults);
        sigemptyset(&mask);
        posix_spawnattr_init(&m_attributes);
        posix_spawnattr_setsigdefault(&m_attributes, &defaults);
        posix_spawnattr_setsigmask(&m_attributes, &mask);
        posix_spawnattr_setflags(&m_attributes, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
    }
    ~CDefaultSignals() { posix_spawnattr_destroy(&m_attributes); }

    CDefaultSignals(const CDefaultSignals&) = delete;
    CDefaultSignals& operator=(const CDefaultSignals&) = delete;

    const posix_spawnattr_t* Get() const { return &m_attributes; }

private:
    posix_spawnattr_t m_attributes;
};

}  // namespace

CRunningProgram::CRunningProgram(const std::vector<std::string>& command, const std::string& directory) {
    PrepareEnvironment();
    LimitStack();
    const CSpawnActions actions(directory, m_scratch / "out", m_scratch / "err");
    const CDefaultSignals signals;
    std::vector<std::string> words = command;
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    if (posix_spawnp(&m_id, arguments[0], actions.Get(), signals.Get(), arguments.data(), environ) != 0) {
        throw std::runtime_error("cannot run " + command.front());
    }
}

CRunningProgram::~CRunningProgram() {
    if (m_bEnded) return;
    kill(m_id, SIGKILL);
    waitpid(m_id, nullptr, 0);
}

void CRunningProgram::Signal(int signal) {
    if (!HasEnded()) kill(m_id, signal);
}

bool CRunningProgram::HasEnded() {
    if (m_bEnded) return true;
    const pid_t ended = waitpid(m_id, &m_nStatus, WNOHANG);
    if (ended < 0) throw std::runtime_error("lost a child");
    m_bEnded = ended == m_id;
    return m_bEnded;
}

bool CRunningProgram::CanCountOpening() {
    std::string call;
    std::ifstream file("/proc/" + std::to_string(m_id) + "/syscall");
    return std::getline(file, call) || HasEnded();
}

int CRunningProgram::CountOpening() const {
    int count = 0;
    std::error_code ended;
    for (const auto& task : std::filesystem::directory_iterator("/proc/" + std::to_string(m_id) + "/task", ended)) {
        // The number of the system call comes first, proc_pid_syscall(5).
        long call = -1;
        std::ifstream(task.path() / "syscall") >> call;
        if (call == SYS_openat) ++count;
    }
    return count;
}

bool CRunningProgram::WaitFor(std::chrono::milliseconds limit) {
    const auto end = std::chrono::steady_clock::now() + limit;
    while (!HasEnded()) {
        if (std::chrono::steady_clock::now() >= end) return false;
        std::this_thread::sleep_for(kPollInterval);
    }
    return true;
}

SRunResult CRunningProgram::Wait() {
    if (!WaitFor(kTimeLimit)) throw std::runtime_error("a program does not end");
    SRunResult result;
    result.m_nExit = WIFEXITED(m_nStatus) ? WEXITSTATUS(m_nStatus) : -WTERMSIG(m_nStatus);
    result.m_strOut = ReadWholeFile(m_scratch / "out");
    result.m_strErr = ReadWholeFile(m_scratch / "err");
    return result;
}

SRunResult RunProgram(const std::vector<std::string>& command, const std::string& directory) {
    return CRunningProgram(command, directory).Wait();
}

bool WaitUntil(const std::function<bool()>& condition) {
    const auto end = std::chrono::steady_clock::now() + kConditionLimit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() >= end) return false;
        std::this_thread::sleep_for(kPollInterval);
    }
    return true;
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

// What a process has and is that a plug-in should leave as it was.
#include "host/validate/ProcessState.h"

#include <fenv.h>
#include <locale.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>
#include <xmmintrin.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "host/validate/SignalName.h"

namespace {

namespace fs = std::filesystem;

std::string JoinLines(const CStateLines& from, const CStateLines& without) {
    std::vector<std::string> lines;
    std::set_difference(from.begin(), from.end(), without.begin(), without.end(), std::back_inserter(lines));
    std::string text;
    for (const std::string& line : lines) text += (text.empty() ? "" : ", ") + line;
    return text;
}

}  // namespace

CStateLines Threads() {
    CStateLines lines;
    for (const fs::directory_entry& entry : fs::directory_iterator("/proc/self/task")) {
        std::string name;
        std::getline(std::ifstream(entry.path() / "comm"), name);
        lines.insert("thread " + entry.path().filename().string() + " (" + name + ")");
    }
    return lines;
}

CStateLines OpenDescriptors() {
    CStateLines lines;
    for (const fs::directory_entry& entry : fs::directory_iterator("/proc/self/fd")) {
        std::error_code gone;
        const fs::path target = fs::read_symlink(entry.path(), gone);
        // The listing has one of its own.
        if (gone || target == "/proc/" + std::to_string(getpid()) + "/fd") continue;
        lines.insert("descriptor " + entry.path().filename().string() + " (" + target.string() + ")");
    }
    return lines;
}

CStateLines CurrentDirectory() {
    std::error_code error;
    return {fs::current_path(error).string()};
}

CStateLines Locale() { return {setlocale(LC_ALL, nullptr)}; }

CStateLines SignalActions() {
    CStateLines lines;
    for (int number = 1; number < NSIG; ++number) {
        struct sigaction action = {};
        if (sigaction(number, nullptr, &action) != 0) continue;
        const auto handler = reinterpret_cast<std::uintptr_t>(action.sa_handler);
        lines.insert(SignalName(number) + (handler == 0 ? " by default" : " with a handler or ignored"));
    }
    return lines;
}

CStateLines BlockedSignals() {
    CStateLines lines;
    sigset_t blocked;
    sigemptyset(&blocked);
    sigprocmask(SIG_SETMASK, nullptr, &blocked);
    for (int number = 1; number < NSIG; ++number) {
        if (sigismember(&blocked, number) == 1) lines.insert(SignalName(number));
    }
    return lines;
}

CStateLines FileCreationMask() {
    // There is no way to ask without setting.
    const mode_t mask = umask(0);
    umask(mask);
    return {std::to_string(mask)};
}

CStateLines Environment() {
    CStateLines lines;
    for (char** variable = environ; variable != nullptr && *variable != nullptr; ++variable) lines.insert(*variable);
    return lines;
}

CStateLines FloatingPointMode() {
    constexpr unsigned int kSticky = 0x3F;  // flags of what has happened, no mode
    return {"rounding " + std::to_string(fegetround()), "MXCSR " + std::to_string(_mm_getcsr() & ~kSticky)};
}

std::string ChangeText(const CStateLines& before, const CStateLines& after) {
    const std::string gone = JoinLines(before, after);
    const std::string added = JoinLines(after, before);
    if (gone.empty()) return added.empty() ? "" : "new: " + added;
    return "gone: " + gone + (added.empty() ? "" : "; new: " + added);
}

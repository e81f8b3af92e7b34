// Runs a program and prints what it took: seconds of user and system time, seconds of wall time, peak in KiB. Small
// itself: what the peak of a child begins with is that of whoever started it.
#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstring>

namespace {

double Seconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) return 2;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    const auto begin = std::chrono::steady_clock::now();
    pid_t child = 0;
    int status = 0;
    rusage usage{};
    const int error = posix_spawnp(&child, argv[1], &actions, nullptr, argv + 1, environ);
    if (error != 0) {
        std::fprintf(stderr, "kelo_measured_run: %s: %s\n", argv[1], std::strerror(error));
        return 127;
    }
    wait4(child, &status, 0, &usage);
    const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - begin;
    posix_spawn_file_actions_destroy(&actions);
    std::printf("%f %f %ld\n", Seconds(usage.ru_utime) + Seconds(usage.ru_stime), wall.count(), usage.ru_maxrss);
    if (WIFEXITED(status)) return WEXITSTATUS(status);
    std::fprintf(stderr, "kelo_measured_run: %s: %s\n", argv[1], strsignal(WTERMSIG(status)));
    return 126;
}

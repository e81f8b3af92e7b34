// An X server of a test's own.
#pragma once

#include <signal.h>
#include <stdlib.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <stdexcept>
#include <string>

// Xvfb on a free display, named by DISPLAY for this process and the programs it runs; ended by its process id.
class CVirtualDisplay {
public:
    CVirtualDisplay() {
        int ends[2];
        if (pipe(ends) != 0) throw std::runtime_error("no pipe");
        m_nProcess = fork();
        if (m_nProcess == 0) Serve(ends[0], ends[1]);
        close(ends[1]);
        char number[16] = "";
        const ssize_t length = m_nProcess > 0 ? read(ends[0], number, sizeof number - 1) : 0;
        close(ends[0]);
        if (length <= 1) {
            End();
            throw std::runtime_error("no X server (Debian: xvfb)");
        }
        m_strName = ":" + std::string(number, static_cast<std::size_t>(length) - 1);
        setenv("DISPLAY", m_strName.c_str(), 1);
    }
    ~CVirtualDisplay() { End(); }

    CVirtualDisplay(const CVirtualDisplay&) = delete;
    CVirtualDisplay& operator=(const CVirtualDisplay&) = delete;

    const std::string& Name() const { return m_strName; }

private:
    [[noreturn]] static void Serve(int unused, int descriptor) {
        // A test that Xlib or a failure ends early leaves no server behind.
        prctl(PR_SET_PDEATHSIG, SIGTERM);
        close(unused);
        const std::string number = std::to_string(descriptor);
        execlp("Xvfb", "Xvfb", "-displayfd", number.c_str(), "-screen", "0", "1024x768x24", "-nolisten", "tcp",
               static_cast<char*>(nullptr));
        _exit(127);
    }

    void End() {
        if (m_nProcess <= 0) return;
        kill(m_nProcess, SIGTERM);
        waitpid(m_nProcess, nullptr, 0);
    }

    pid_t m_nProcess = -1;
    std::string m_strName;
};

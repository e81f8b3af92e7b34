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
        const std::string number = m_nProcess > 0 ? ReadLine(ends[0]) : std::string();
        close(ends[0]);
        if (number.empty()) {
            End();
            throw std::runtime_error("no X server (Debian: xvfb)");
        }
        m_strName = ":" + number;
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
        // A server that begins anew when its last client leaves turns away those who come meanwhile.
        execlp("Xvfb", "Xvfb", "-displayfd", number.c_str(), "-screen", "0", "1024x768x24", "-noreset", "-nolisten",
               "tcp", static_cast<char*>(nullptr));
        _exit(127);
    }

    // The server writes the number and the end of its line one after the other; empty when it ends before that.
    static std::string ReadLine(int descriptor) {
        std::string line;
        char character = 0;
        while (read(descriptor, &character, 1) == 1) {
            if (character == '\n') return line;
            line += character;
        }
        return {};
    }

    void End() {
        if (m_nProcess <= 0) return;
        kill(m_nProcess, SIGTERM);
        waitpid(m_nProcess, nullptr, 0);
    }

    pid_t m_nProcess = -1;
    std::string m_strName;
};

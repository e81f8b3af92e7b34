// Real servers on 127.0.0.1.
#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <stdexcept>
#include <string>
#include <vector>

// One of the scripts in servers/ on a free port, ended by its process id with the test, however that ends.
class CLoopbackServer {
public:
    CLoopbackServer(const std::string& script, std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {KELO_PYTHON3, KELO_SERVERS "/" + script});
        int ends[2];
        if (pipe(ends) != 0) throw std::runtime_error("no pipe");
        m_nProcess = fork();
        if (m_nProcess == 0) Serve(ends, arguments);
        close(ends[1]);
        m_strPort = m_nProcess > 0 ? ReadLine(ends[0]) : std::string();
        close(ends[0]);
        if (!m_strPort.empty()) return;
        End();
        throw std::runtime_error("no server " + script + " (Debian: python3 python3-pyftpdlib)");
    }
    ~CLoopbackServer() { End(); }

    CLoopbackServer(const CLoopbackServer&) = delete;
    CLoopbackServer& operator=(const CLoopbackServer&) = delete;

    // "127.0.0.1:40000"
    std::string HostAndPort() const { return "127.0.0.1:" + m_strPort; }

private:
    [[noreturn]] static void Serve(const int* ends, std::vector<std::string>& arguments) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        dup2(ends[1], STDOUT_FILENO);
        close(ends[0]);
        close(ends[1]);
        std::vector<char*> words;
        for (std::string& argument : arguments) words.push_back(argument.data());
        words.push_back(nullptr);
        execv(words[0], words.data());
        _exit(127);
    }

    // Empty when the server ends before it has printed a line.
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
        kill(m_nProcess, SIGKILL);
        waitpid(m_nProcess, nullptr, 0);
    }

    pid_t m_nProcess = -1;
    std::string m_strPort;
};

// A port that is taken: it refuses every connection, takes it and says nothing, or does not even answer who asks for
// one.
class CMutePort {
public:
    enum class EManner { Refuses, SaysNothing, NeverAnswers };

    explicit CMutePort(EManner manner) {
        socklen_t size = sizeof m_address;
        m_address.sin_family = AF_INET;
        m_address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        if (bind(NewSocket(), Address(), size) != 0 || getsockname(m_vSockets[0], Address(), &size) != 0) {
            throw std::runtime_error("no port");
        }
        if (manner != EManner::Refuses) listen(m_vSockets[0], manner == EManner::SaysNothing ? 8 : 0);
        if (manner == EManner::NeverAnswers) FillQueue();
    }
    ~CMutePort() {
        for (const int descriptor : m_vSockets) close(descriptor);
    }

    CMutePort(const CMutePort&) = delete;
    CMutePort& operator=(const CMutePort&) = delete;

    std::string Port() const { return std::to_string(ntohs(m_address.sin_port)); }
    std::string HostAndPort() const { return "127.0.0.1:" + Port(); }

private:
    int NewSocket() {
        m_vSockets.push_back(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
        return m_vSockets.back();
    }

    sockaddr* Address() { return reinterpret_cast<sockaddr*>(&m_address); }

    // Linux queues one connection more than listen(2) asks for, and lets the next ones wait.
    void FillQueue() {
        for (int i = 0; i < 2; ++i) static_cast<void>(connect(NewSocket(), Address(), sizeof m_address));
    }

    sockaddr_in m_address = {};
    std::vector<int> m_vSockets;
};

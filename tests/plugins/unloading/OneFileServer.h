// An HTTP server on 127.0.0.1 that answers one request with one file.
#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <thread>

class COneFileServer {
public:
    explicit COneFileServer(const std::string& path) : m_nListening(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        m_address.sin_family = AF_INET;
        m_address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof m_address;
        if (bind(m_nListening, Address(), size) != 0 || listen(m_nListening, 1) != 0 ||
            getsockname(m_nListening, Address(), &size) != 0) {
            throw std::runtime_error("no port on 127.0.0.1");
        }
        m_thread = std::thread([this, path] { Answer(path); });
    }
    ~COneFileServer() {
        shutdown(m_nListening, SHUT_RDWR);  // lets go of a request that never came
        m_thread.join();
        close(m_nListening);
    }

    COneFileServer(const COneFileServer&) = delete;
    COneFileServer& operator=(const COneFileServer&) = delete;

    std::string URL(const std::string& name) const {
        return "http://127.0.0.1:" + std::to_string(ntohs(m_address.sin_port)) + "/" + name;
    }

private:
    sockaddr* Address() { return reinterpret_cast<sockaddr*>(&m_address); }

    void Answer(const std::string& path) const {
        const int connection = accept4(m_nListening, nullptr, nullptr, SOCK_CLOEXEC);
        if (connection < 0) return;
        std::string request;
        for (char part[1024]; request.find("\r\n\r\n") == std::string::npos;) {
            const ssize_t count = recv(connection, part, sizeof part, 0);
            if (count <= 0) break;
            request.append(part, static_cast<std::size_t>(count));
        }
        std::ifstream file(path, std::ios::binary);
        const std::string body((std::istreambuf_iterator<char>(file)), {});
        const std::string answer =
            "HTTP/1.0 200 OK\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
        for (std::size_t sent = 0; sent < answer.size();) {
            const ssize_t count = send(connection, answer.data() + sent, answer.size() - sent, MSG_NOSIGNAL);
            if (count <= 0) break;
            sent += static_cast<std::size_t>(count);
        }
        close(connection);
    }

    int m_nListening;
    sockaddr_in m_address = {};
    std::thread m_thread;
};

// A web server of the validator's own, for URL handlers.
#include "host/validate/LoopbackServer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>

#include "host/Failure.h"
#include "host/FailureText.h"

namespace {

constexpr std::size_t kMostRequestBytes = 65536;

// Nobody waits for the server's end.
constexpr std::chrono::hours kNoLimit{24};

sockaddr_in LoopbackAddress() {
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

// Bound to a free port.
class CBoundSocket {
public:
    CBoundSocket() : m_nDescriptor(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_in address = LoopbackAddress();
        if (m_nDescriptor != -1 && bind(m_nDescriptor, reinterpret_cast<sockaddr*>(&address), sizeof(address)) == 0) {
            return;
        }
        const int reason = errno;
        close(m_nDescriptor);
        throw CFailure("validate", "no port for a web server: " + SystemErrorText(reason));
    }
    ~CBoundSocket() { close(m_nDescriptor); }

    CBoundSocket(const CBoundSocket&) = delete;
    CBoundSocket& operator=(const CBoundSocket&) = delete;

    int GetDescriptor() const { return m_nDescriptor; }

    std::string GetURL() const {
        sockaddr_in address = {};
        socklen_t size = sizeof(address);
        getsockname(m_nDescriptor, reinterpret_cast<sockaddr*>(&address), &size);
        return "http://127.0.0.1:" + std::to_string(ntohs(address.sin_port));
    }

private:
    int m_nDescriptor;
};

// Up to the empty line that ends it; a client that says nothing is given up.
std::string ReceiveRequest(int client) {
    constexpr timeval kPatience = {2, 0};
    setsockopt(client, SOL_SOCKET, SO_RCVTIMEO, &kPatience, sizeof(kPatience));
    std::string request;
    while (request.find("\r\n\r\n") == std::string::npos && request.size() < kMostRequestBytes) {
        char part[4096];
        const ssize_t size = recv(client, part, sizeof(part), 0);
        if (size <= 0) return "";
        request.append(part, static_cast<std::size_t>(size));
    }
    return request;
}

void Send(int client, const void* data, std::size_t size) {
    const char* place = static_cast<const char*>(data);
    while (size > 0) {
        const ssize_t sent = send(client, place, size, MSG_NOSIGNAL);
        if (sent <= 0) return;
        place += sent;
        size -= static_cast<std::size_t>(sent);
    }
}

// "GET /name HTTP/1.1" by RFC 9112, section 3.
void Answer(int client, const std::map<std::string, CBytes>& files) {
    const std::string request = ReceiveRequest(client);
    const std::size_t begin = request.find(' ');
    const std::size_t end = request.find_first_of(" ?", begin + 1);
    if (begin == std::string::npos || end == std::string::npos) return;
    const auto file = files.find(request.substr(begin + 1, end - begin - 1));
    const CBytes nothing;
    const CBytes& body = file != files.end() ? file->second : nothing;
    const std::string head = std::string("HTTP/1.1 ") + (file != files.end() ? "200 OK" : "404 Not Found") +
                             "\r\nContent-Type: audio/x-wav\r\nContent-Length: " + std::to_string(body.size()) +
                             "\r\nConnection: close\r\n\r\n";
    Send(client, head.data(), head.size());
    if (request.compare(0, 4, "GET ") == 0) Send(client, body.data(), body.size());
}

[[noreturn]] void Serve(int socket, const std::map<std::string, CBytes>& files) {
    for (;;) {
        const int client = accept4(socket, nullptr, nullptr, SOCK_CLOEXEC);
        if (client == -1) continue;
        Answer(client, files);
        close(client);
    }
}

}  // namespace

CLoopbackServer::CLoopbackServer(const std::map<std::string, CBytes>& files) {
    const CBoundSocket socket;
    if (listen(socket.GetDescriptor(), SOMAXCONN) != 0) {
        throw CFailure("validate", "no web server: " + SystemErrorText(errno));
    }
    m_strURL = socket.GetURL();
    const auto serve = [&] { Serve(socket.GetDescriptor(), files); };
    m_pProcess = std::make_unique<CChildProcess>(serve, kNoLimit, false);
}

std::string DeadURL() {
    // The port was free a moment ago and is not listened at.
    return CBoundSocket().GetURL();
}

// The URL handler template, against a server on loopback.
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <thread>

#include "stream/URLSourceHandler.h"
#include "tests/examples/ExamplesTest.h"
#include "tests/support/FetchEnvironment.h"

namespace {

// Answers one request on loopback.
class COneAnswer {
public:
    explicit COneAnswer(std::string answer)
        : m_strAnswer(std::move(answer)), m_nSocket(socket(AF_INET, SOCK_STREAM, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof(address);
        bind(m_nSocket, reinterpret_cast<sockaddr*>(&address), size);
        listen(m_nSocket, 1);
        getsockname(m_nSocket, reinterpret_cast<sockaddr*>(&address), &size);
        m_nPort = ntohs(address.sin_port);
        m_thread = std::thread([this] { Serve(); });
    }
    ~COneAnswer() {
        m_thread.join();
        close(m_nSocket);
    }

    COneAnswer(const COneAnswer&) = delete;
    COneAnswer& operator=(const COneAnswer&) = delete;

    std::string URL(const std::string& name) const {
        return "http://127.0.0.1:" + std::to_string(m_nPort) + "/" + name;
    }

private:
    void Serve() const {
        const int connection = accept(m_nSocket, nullptr, nullptr);
        std::array<char, 4096> request{};
        EXPECT_GT(read(connection, request.data(), request.size()), 0);
        EXPECT_EQ(send(connection, m_strAnswer.data(), m_strAnswer.size(), MSG_NOSIGNAL),
                  static_cast<ssize_t>(m_strAnswer.size()));
        close(connection);
    }

    std::string m_strAnswer;
    int m_nSocket;
    int m_nPort = 0;
    std::thread m_thread;
};

class CurlHandler : public CExamplesTest {
protected:
    CurlHandler() { support::PrepareToFetch(Temporary()); }

    std::filesystem::path Temporary() const { return m_scratch.Path() / "temporary"; }

    // Of the handler, which is loaded alone.
    bool Fetch(const std::string& url, std::string& path, IStatus** status) const {
        CComPtr<IAudioComponent> component;
        EXPECT_TRUE(m_manager->GetComponent(0, component.Out()));
        const auto handler = CComPtr<IURLSourceHandler>::Query(component.Get(), IID_IURLSourceHandler);
        char local[kLocalPathCapacity] = "";
        const bool fetched = handler->Fetch(url.c_str(), local, 0, status);
        path = local;
        return fetched;
    }

    // The reason why it fetches no file.
    std::string FetchRefusal(const std::string& url) const {
        std::string path;
        CComPtr<IStatus> status;
        EXPECT_FALSE(Fetch(url, path, status.Out()));
        return support::TextOf(status);
    }

    std::vector<std::string> TemporaryFiles() const {
        std::vector<std::string> files;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(Temporary())) {
            if (entry.is_regular_file()) files.push_back(entry.path());
        }
        return files;
    }
};

TEST_F(CurlHandler, FetchesForTheDecoder) {
    Add("decoder", "plain_decoder");
    Add("url-handler", "curl_handler");
    Load();
    const std::string file = PlainFile(100);
    const COneAnswer server("HTTP/1.0 200 OK\r\nContent-Length: " + std::to_string(file.size()) + "\r\n\r\n" + file);
    EXPECT_EQ(ReadAll(Open(server.URL("some.plain?query"))), SamplesOf(file));
}

TEST_F(CurlHandler, FollowsRedirects) {
    Add("decoder", "plain_decoder");
    Add("url-handler", "curl_handler");
    Load();
    const std::string file = PlainFile(100);
    const COneAnswer second("HTTP/1.0 200 OK\r\nContent-Length: " + std::to_string(file.size()) + "\r\n\r\n" + file);
    const COneAnswer first("HTTP/1.0 302 Found\r\nLocation: " + second.URL("other.plain") +
                           "\r\nContent-Length: 5\r\n\r\n<a/>\n");
    EXPECT_EQ(ReadAll(Open(first.URL("some.plain"))), SamplesOf(file));
}

// Nobody listens there: the reason is that of a connection, not of a protocol that is not allowed.
TEST_F(CurlHandler, FollowsRedirectsToHttps) {
    Add("url-handler", "curl_handler");
    Load();
    const COneAnswer server("HTTP/1.0 302 Found\r\nLocation: https://127.0.0.1:1/other.plain\r\n\r\n");
    const std::string url = server.URL("some.plain");
    EXPECT_EQ(FetchRefusal(url), url + ": Couldn't connect to server");
}

TEST_F(CurlHandler, TellsWhyAnAddressCannotBeFetched) {
    Add("url-handler", "curl_handler");
    Load();
    const COneAnswer server("HTTP/1.0 404 Not Found\r\nContent-Length: 0\r\n\r\n");
    const std::string url = server.URL("none.plain");
    EXPECT_EQ(FetchRefusal("http://user:secret@" + url.substr(7)), url + ": HTTP response code said error");
}

TEST_F(CurlHandler, RefusesWhatIsTooLarge) {
    Add("url-handler", "curl_handler");
    Load();
    const COneAnswer server("HTTP/1.0 200 OK\r\nContent-Length: 4294967297\r\n\r\nPLN1");
    const std::string url = server.URL("large.plain");
    EXPECT_EQ(FetchRefusal(url), url + ": Maximum file size exceeded");
}

TEST_F(CurlHandler, RemovesAnUnfinishedFileAtOnceAndTheOthersAtTheEnd) {
    Add("url-handler", "curl_handler");
    Load();
    const COneAnswer cut("HTTP/1.0 200 OK\r\nContent-Length: 100\r\n\r\nPLN1");
    FetchRefusal(cut.URL("cut.plain"));
    EXPECT_EQ(TemporaryFiles(), std::vector<std::string>{});
    const COneAnswer whole("HTTP/1.0 200 OK\r\nContent-Length: 4\r\n\r\nPLN1");
    std::string path;
    EXPECT_TRUE(Fetch(whole.URL("whole.plain"), path, nullptr));
    EXPECT_EQ(TemporaryFiles(), std::vector<std::string>{path});
    m_manager->UnloadPlugins();
    EXPECT_TRUE(std::filesystem::is_empty(Temporary()));
}

}  // namespace

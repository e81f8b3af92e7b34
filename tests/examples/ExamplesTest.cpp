// The templates do what they are copied for: each is loaded by the manager and used.
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "com/ComPtr.h"
#include "com/InterfaceIds.h"
#include "stream/AudioTargetOpener.h"
#include "stream/Process.h"
#include "stream/RawReader.h"
#include "stream/RawWriter.h"
#include "stream/SourceDetails.h"
#include "stream/TargetTags.h"
#include "stream/URLSourceHandler.h"
#include "tests/support/ManagerHold.h"
#include "tests/support/ScratchDirectory.h"
#include "tests/support/StreamQueries.h"

namespace {

namespace fs = std::filesystem;

using support::TextOf;

constexpr std::size_t kTitleBytes = 64;
constexpr SWavFormat kFormat{48000, 16, 2};

// A plain file of 16-bit samples that count up.
std::string PlainFile(int frames) {
    std::string file = "PLN1";
    file += std::string("\x80\xBB\0\0", 4) + std::string("\x02\0\x10\0", 4) + "A title";
    file.resize(12 + kTitleBytes);
    for (int i = 0; i < 2 * frames; ++i) {
        file += static_cast<char>(i);
        file += static_cast<char>(i >> 8);
    }
    return file;
}

std::string SamplesOf(const std::string& file) { return file.substr(12 + kTitleBytes); }

std::string ReadFile(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

class Examples : public testing::Test {
protected:
    ~Examples() override { m_manager->UnloadPlugins(); }

    // Puts built templates into the plug-in directory.
    void Add(const std::string& folder, const std::string& plugin) const {
        fs::create_directories(m_scratch.Path() / "plugins");
        fs::copy_file(fs::path(KELO_EXAMPLES) / folder / (plugin + ".so"), PluginDirectory() / (plugin + ".so"));
    }

    fs::path PluginDirectory() const { return m_scratch.Path() / "plugins"; }

    void Load() const {
        m_manager->SetPluginDirectory(PluginDirectory().c_str());
        m_manager->LoadPlugins();
        ASSERT_EQ(m_manager->GetCount(), std::distance(fs::directory_iterator(PluginDirectory()), {}));
    }

    CComPtr<IUnknown> Open(const std::string& source, const SWavFormat* wanted = nullptr) const {
        CComPtr<IUnknown> stream;
        CComPtr<IStatus> status;
        EXPECT_TRUE(
            m_manager->OpenURLAudioFile(source.c_str(), wanted, stream.Out(), -1, AUX_CONVERT, AUX_NONE, status.Out()))
            << TextOf(status);
        return stream;
    }

    static std::string ReadAll(const CComPtr<IUnknown>& stream) {
        const auto process = CComPtr<IProcess>::Query(stream.Get(), IID_IProcess);
        const auto reader = CComPtr<IAudioRawReader>::Query(stream.Get(), IID_IAudioRawReader);
        EXPECT_TRUE(process->Start(nullptr));
        std::string samples;
        std::vector<unsigned char> buffer(1200);
        EAudioRawState state = ARS_MORE;
        for (int read = 1; read > 0 || state == ARS_MORE;) {
            EXPECT_TRUE(reader->RawRead(buffer.data(), 1200, &read, state, nullptr));
            samples.append(reinterpret_cast<const char*>(buffer.data()), static_cast<std::size_t>(read));
        }
        EXPECT_TRUE(process->End(nullptr));
        return samples;
    }

    CComPtr<IAudioTarget> OpenTarget(const std::string& path) const {
        CComPtr<IAudioTarget> target;
        for (int i = 0; i < m_manager->GetCount() && !target; ++i) {
            CComPtr<IAudioComponent> component;
            m_manager->GetComponent(i, component.Out());
            const auto opener = CComPtr<IAudioTargetOpener>::Query(component.Get(), IID_IAudioTargetOpener);
            if (opener) opener->OpenTarget(path.c_str(), "plain", target.Out(), nullptr);
        }
        return target;
    }

    CScratchDirectory m_scratch;
    support::CManagerHold m_manager;
};

TEST_F(Examples, DecoderReadsSamplesAndTags) {
    Add("decoder", "plain_decoder");
    Load();
    const std::string file = PlainFile(1000);
    const auto stream = Open(m_scratch.Write("some.plain", file));
    EXPECT_EQ(CComPtr<IAudioRawReader>::Query(stream.Get(), IID_IAudioRawReader)->GetRawFormat(), kFormat);
    EXPECT_EQ(CComPtr<IAudioRawBlockInfo>::Query(stream.Get(), IID_IAudioRawBlockInfo)->GetDataLength(), 1000U);
    EXPECT_EQ(ReadAll(stream), SamplesOf(file));
    // A source takes the title from the file's name where there is no artist: asked of the decoder's own stream.
    CComPtr<IUnknown> bare;
    const std::string path = m_scratch / "some.plain";
    ASSERT_TRUE(m_manager->OpenURLAudioFile(path.c_str(), nullptr, bare.Out(), -1, AUX_NONE, AUX_NONE, nullptr));
    EXPECT_STREQ(CComPtr<IInfoReader>::Query(bare.Get(), IID_IInfoReader)->GetTitle(), "A title");
}

TEST_F(Examples, DecoderRefusesOtherFiles) {
    Add("decoder", "plain_decoder");
    Load();
    CComPtr<IUnknown> stream;
    CComPtr<IStatus> status;
    for (const std::string& content :
         {std::string(), std::string("PLN2") + PlainFile(3).substr(4), std::string("PL")}) {
        const std::string path = m_scratch.Write("other.plain", content);
        EXPECT_FALSE(
            m_manager->OpenURLAudioFile(path.c_str(), nullptr, stream.Out(), -1, AUX_NONE, AUX_NONE, status.Out()));
        EXPECT_STREQ(TextOf(status), "other.plain: not a plain file");
    }
}

TEST_F(Examples, EncoderWritesWhatTheDecoderReads) {
    Add("encoder", "plain_encoder");
    Load();
    const std::string path = m_scratch / "written.plain";
    const std::string expected = PlainFile(500);
    const auto target = OpenTarget(path);
    ASSERT_TRUE(target);
    ASSERT_TRUE(CComPtr<ITargetTags>::Query(target.Get(), IID_ITargetTags)->SetTag(TAG_TITLE, "A title", nullptr));
    CComPtr<IUnknown> stream;
    ASSERT_TRUE(m_manager->CreateURLAudioTarget(target->GetTargetFactory(), stream.Out(), kFormat, nullptr));
    const auto process = CComPtr<IProcess>::Query(stream.Get(), IID_IProcess);
    EXPECT_FALSE(fs::exists(path));
    ASSERT_TRUE(process->Start(nullptr));
    std::string samples = SamplesOf(expected);
    EAudioRawState state = ARS_END;
    ASSERT_TRUE(CComPtr<IAudioRawWriter>::Query(stream.Get(), IID_IAudioRawWriter)
                    ->RawWrite(reinterpret_cast<unsigned char*>(samples.data()), static_cast<int>(samples.size()),
                               state, nullptr));
    ASSERT_TRUE(process->End(nullptr));
    EXPECT_EQ(ReadFile(path), expected);
}

TEST_F(Examples, ConvertorWidensAndRounds) {
    Add("decoder", "plain_decoder");
    Add("convertor", "width_convertor");
    Load();
    const std::string file = PlainFile(1000);
    const std::string path = m_scratch.Write("some.plain", file);
    const SWavFormat wide{48000, 24, 2};
    const std::string widened = ReadAll(Open(path, &wide));
    ASSERT_EQ(widened.size(), 1000U * 6);
    for (std::size_t i = 0; i < 2000; ++i) {
        ASSERT_EQ(widened[3 * i], 0) << i;
        ASSERT_EQ(widened.substr(3 * i + 1, 2), SamplesOf(file).substr(2 * i, 2)) << i;
    }
    const SWavFormat resampled{44100, 16, 2};
    const auto stream = Open(path, &resampled);
    CComPtr<IStatus> status;
    EXPECT_FALSE(CComPtr<IProcess>::Query(stream.Get(), IID_IProcess)->Start(status.Out()));
    EXPECT_STREQ(TextOf(status), "the sample rate cannot be changed");
}

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

TEST_F(Examples, HandlerFetchesForTheDecoder) {
    Add("decoder", "plain_decoder");
    Add("url-handler", "curl_handler");
    Load();
    const std::string file = PlainFile(100);
    const COneAnswer server("HTTP/1.0 200 OK\r\nContent-Length: " + std::to_string(file.size()) + "\r\n\r\n" + file);
    EXPECT_EQ(ReadAll(Open(server.URL("some.plain?query"))), SamplesOf(file));
}

TEST_F(Examples, HandlerFollowsRedirects) {
    Add("decoder", "plain_decoder");
    Add("url-handler", "curl_handler");
    Load();
    const std::string file = PlainFile(100);
    const COneAnswer second("HTTP/1.0 200 OK\r\nContent-Length: " + std::to_string(file.size()) + "\r\n\r\n" + file);
    const COneAnswer first("HTTP/1.0 302 Found\r\nLocation: " + second.URL("other.plain") +
                           "\r\nContent-Length: 5\r\n\r\n<a/>\n");
    EXPECT_EQ(ReadAll(Open(first.URL("some.plain"))), SamplesOf(file));
}

TEST_F(Examples, HandlerTellsWhyAnAddressCannotBeFetched) {
    Add("url-handler", "curl_handler");
    Load();
    CComPtr<IAudioComponent> component;
    ASSERT_TRUE(m_manager->GetComponent(0, component.Out()));
    const auto handler = CComPtr<IURLSourceHandler>::Query(component.Get(), IID_IURLSourceHandler);
    const COneAnswer server("HTTP/1.0 404 Not Found\r\nContent-Length: 0\r\n\r\n");
    const std::string url = server.URL("none.plain");
    char path[kLocalPathCapacity] = "";
    CComPtr<IStatus> status;
    const std::string withPassword = "http://user:secret@" + url.substr(7);
    EXPECT_FALSE(handler->Fetch(withPassword.c_str(), path, 0, status.Out()));
    EXPECT_EQ(TextOf(status), url + ": HTTP response code said error");
}

TEST_F(Examples, HostWritesTheSamples) {
    Add("decoder", "plain_decoder");
    const std::string file = PlainFile(40000);
    const std::string path = m_scratch.Write("some.plain", file);
    const std::string output = m_scratch / "samples.raw";
    const std::string host = (fs::path(KELO_EXAMPLES) / "host" / "minimal-host").string();
    const std::string command = "'" + host + "' '" + PluginDirectory().string() + "' '" + path + "' > '" + output + "'";
    EXPECT_EQ(std::system(command.c_str()), 0);
    EXPECT_EQ(ReadFile(output), SamplesOf(file));
    const std::string refused =
        "'" + host + "' '" + PluginDirectory().string() + "' /nowhere.plain 2> '" + output + "'";
    EXPECT_NE(std::system(refused.c_str()), 0);
    EXPECT_EQ(ReadFile(output).substr(0, 15), "/nowhere.plain:");
    const std::string full =
        "'" + host + "' '" + PluginDirectory().string() + "' '" + path + "' > /dev/full 2> '" + output + "'";
    EXPECT_NE(std::system(full.c_str()), 0);
    EXPECT_EQ(ReadFile(output), "standard output: failed\n");
}

}  // namespace

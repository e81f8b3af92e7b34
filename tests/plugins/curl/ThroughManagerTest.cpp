// Remote sources through the manager, fetched by this plug-in and decoded by the one on libsndfile.
#include <cstdlib>

#include "com/Configurable.h"
#include "stream/Process.h"
#include "stream/RawReader.h"
#include "stream/SourceDetails.h"
#include "tests/plugins/curl/FetchTest.h"
#include "tests/support/ManagerHold.h"

namespace {

// A tenth of a second at 8000 Hz, mono, 16 bits.
std::string Samples() {
    std::string samples;
    for (int i = 0; i < 800; ++i) {
        const int value = i * i % 20000 - 10000;
        samples += static_cast<char>(value);
        samples += static_cast<char>(value >> 8);
    }
    return samples;
}

class CurlThroughManager : public CFetchTest {
protected:
    CurlThroughManager() {
        std::filesystem::create_directory(m_scratch / "plugins");
        for (const std::filesystem::path plugin : {KELO_CURL_PLUGIN, KELO_SNDFILE_PLUGIN}) {
            std::filesystem::create_symlink(plugin, m_scratch.Path() / "plugins" / plugin.filename());
        }
        m_manager->SetPluginDirectory((m_scratch / "plugins").c_str());
        m_manager->LoadPlugins();
        m_scratch.Write("samples.raw", Samples());
        Encode("x.flac");
    }
    ~CurlThroughManager() override { m_manager->UnloadPlugins(); }

    void Encode(const std::string& name) const {
        const std::string command =
            "flac --silent --force --force-raw-format --endian=little --sign=signed --channels=1 "
            "--bps=16 --sample-rate=8000 -o '" +
            m_scratch / ("served/" + name) + "' '" + m_scratch / "samples.raw" + "'";
        ASSERT_EQ(std::system(command.c_str()), 0) << command;
    }

    CComPtr<IUnknown> Open(const std::string& url) {
        CComPtr<IUnknown> stream;
        EXPECT_TRUE(m_manager->OpenURLAudioFile(url.c_str(), nullptr, stream.Out(), -1, AUX_CONVERT, AUX_NONE, nullptr))
            << url;
        return stream;
    }

    static std::string Decode(const CComPtr<IUnknown>& stream) {
        const auto process = CComPtr<IProcess>::Query(stream.Get(), IID_IProcess);
        const auto reader = CComPtr<IAudioRawReader>::Query(stream.Get(), IID_IAudioRawReader);
        if (!process || !process->Start(nullptr)) return "not started";
        std::string bytes;
        unsigned char buffer[4096];
        EAudioRawState state = ARS_MORE;
        int read = 0;
        while (reader->RawRead(buffer, sizeof buffer, &read, state, nullptr) && read > 0) {
            bytes.append(reinterpret_cast<char*>(buffer), static_cast<std::size_t>(read));
        }
        process->End(nullptr);
        return bytes;
    }

    support::CManagerHold m_manager;
};

TEST_F(CurlThroughManager, HttpSourceIsDecoded) { EXPECT_EQ(Decode(Open(Http("x.flac"))), Samples()); }

TEST_F(CurlThroughManager, FtpSourceIsDecoded) { EXPECT_EQ(Decode(Open(Ftp("x.flac"))), Samples()); }

TEST_F(CurlThroughManager, SourceWithoutAnExtensionIsFoundByItsType) {
    std::filesystem::rename(m_scratch / "served/x.flac", m_scratch / "served/x");
    CComPtr<IUnknown> stream;
    constexpr int kListedExtensionsOnly = 0;
    EXPECT_TRUE(m_manager->OpenURLAudioFile(Http("x?type=audio/flac").c_str(), nullptr, stream.Out(),
                                            kListedExtensionsOnly, AUX_CONVERT, AUX_NONE, nullptr));
    EXPECT_EQ(Decode(stream), Samples());
}

TEST_F(CurlThroughManager, ArtistAndTitleComeFromTheNameInTheURL) {
    Encode("Singer - Song.flac");
    const auto stream = Open(Http("Singer%20-%20Song.flac"));
    const auto details = CComPtr<IInfoReader>::Query(stream.Get(), IID_IInfoReader);
    ASSERT_TRUE(details);
    EXPECT_STREQ(details->GetArtist(), "Singer");
    EXPECT_STREQ(details->GetTitle(), "Song");
}

TEST_F(CurlThroughManager, SourceThatCannotBeFetchedHasNoDecoder) {
    CComPtr<IUnknown> stream;
    CComPtr<IStatus> status;
    EXPECT_FALSE(
        m_manager->OpenURLAudioFile(Http("none.flac").c_str(), stream.Out(), -1, AUX_NONE, AUX_NONE, status.Out()));
    EXPECT_EQ(stream.Get(), nullptr);
    EXPECT_EQ(status->GetAudioError(), AE_NO_DECODER);
}

TEST_F(CurlThroughManager, UnloadingRemovesTheFilesAndThePluginFromTheProcess) {
    EXPECT_EQ(Decode(Open(Http("x.flac"))), Samples());
    EXPECT_FALSE(LeftBehind().empty());
    EXPECT_TRUE(m_manager->UnloadPlugins());
    EXPECT_TRUE(LeftBehind().empty());
}

// Without the fixture, which holds the plug-in itself.
TEST(CurlUnloading, LeavesLibcurlInTheProcessButNotThePlugin) {
    const CScratchDirectory scratch;
    const CLoopbackServer server("http_server.py", {scratch.Path().string()});
    support::PrepareToFetch(scratch / "tmp");
    std::filesystem::create_symlink(KELO_CURL_PLUGIN, scratch / "curl.so");
    const support::CManagerHold manager;
    for (int i = 0; i < 3; ++i) {
        manager->SetPluginDirectory(scratch.Path().c_str());
        manager->LoadPlugins();
        ASSERT_EQ(manager->GetCount(), 1);
        EXPECT_TRUE(IsMapped("/curl.so"));
        CComPtr<IAudioComponent> component;
        manager->GetComponent(0, component.Out());
        auto handler = CComPtr<IURLSourceHandler>::Query(component.Get(), IID_IURLSourceHandler);
        char path[kLocalPathCapacity];
        EXPECT_TRUE(handler->Fetch(("http://" + server.HostAndPort() + "/?echo=1").c_str(), path, 0, nullptr));
        handler.Reset();
        component.Reset();
        EXPECT_TRUE(manager->UnloadPlugins());
        EXPECT_FALSE(IsMapped("/curl.so"));
        EXPECT_TRUE(IsMapped("libcurl.so.4"));
        EXPECT_TRUE(std::filesystem::is_empty(scratch / "tmp"));
    }
}

}  // namespace

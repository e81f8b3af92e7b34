// The component, its files from the first fetch to the end, and the libraries in the process.
#include <curl/curl.h>
#include <dlfcn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/plugins/curl/FetchTest.h"

namespace {

TEST(CurlComponent, IsAURLHandlerWithAName) {
    const CPluginUnderTest plugin;
    EXPECT_EQ(plugin.Component().GetType(), ACT_URL_HANDLER);
    EXPECT_STREQ(plugin.Component().GetName(), "libcurl URL Handler");
    EXPECT_EQ(plugin.Handler().GetProtocols(), 6U);
}

TEST(CurlComponent, LoadingBringsNoLibcurl) {
    const CPluginUnderTest plugin;
    EXPECT_TRUE(IsMapped("/curl.so"));
    EXPECT_FALSE(IsMapped("libcurl"));
}

class CurlLifetime : public CFetchTest {
protected:
    // What the child's body returns becomes its exit code. exit(3) ends what lives statically.
    template <typename TBody>
    static int RunInChild(TBody body) {
        const pid_t child = fork();
        if (child == 0) exit(body());
        int status = 0;
        waitpid(child, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
};

TEST_F(CurlLifetime, FirstFetchBringsLibcurlAndKeepsItOutOfTheGlobalScope) {
    EXPECT_EQ(NameOfFetched(Http("song.flac")), "song.flac");
    EXPECT_TRUE(IsMapped("libcurl.so.4"));
    EXPECT_EQ(dlsym(RTLD_DEFAULT, "curl_easy_init"), nullptr);
}

TEST_F(CurlLifetime, TerminateRemovesEveryFileAndTheDirectory) {
    NameOfFetched(Http("song.flac"));
    NameOfFetched(Http("song.flac"));
    EXPECT_EQ(LeftBehind().size(), 5U);
    m_plugin.Component().Terminate();
    EXPECT_EQ(LeftBehind(), std::vector<std::string>());
}

TEST_F(CurlLifetime, TerminateWithoutAFetchDoesNothing) {
    m_plugin.Component().Terminate();
    m_plugin.Component().Terminate();
    EXPECT_EQ(LeftBehind(), std::vector<std::string>());
}

TEST_F(CurlLifetime, FetchesAgainAfterTerminateAndInitialize) {
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(NameOfFetched(Http("song.flac")), "song.flac");
        m_plugin.Component().Terminate();
        EXPECT_EQ(LeftBehind(), std::vector<std::string>());
        EXPECT_TRUE(m_plugin.Component().Initialize(nullptr, nullptr));
    }
}

TEST_F(CurlLifetime, ProcessThatEndsWithoutTerminateLeavesNoFiles) {
    const std::string url = Http("song.flac");
    EXPECT_EQ(RunInChild([&] { return m_plugin.Fetch(url).m_bFetched ? 0 : 1; }), 0);
    EXPECT_EQ(LeftBehind(), std::vector<std::string>());
}

TEST_F(CurlLifetime, ChildThatEndsLeavesItsParentsFiles) {
    const SFetched fetched = m_plugin.Fetch(Http("song.flac"));
    EXPECT_EQ(RunInChild([] { return 0; }), 0);
    EXPECT_EQ(Content(fetched.m_strPath), kSong);
}

// A program of libcurl's own beside the plug-in, which does not disturb it.
TEST_F(CurlLifetime, HostThatUsesLibcurlItselfIsNotDisturbed) {
    void* const library = dlopen("libcurl.so.4", RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << dlerror();
    const auto function = [&](const char* name) { return dlsym(library, name); };
    ASSERT_EQ(reinterpret_cast<decltype(&curl_global_init)>(function("curl_global_init"))(CURL_GLOBAL_DEFAULT),
              CURLE_OK);
    CURL* const handle = reinterpret_cast<decltype(&curl_easy_init)>(function("curl_easy_init"))();
    const auto set = reinterpret_cast<decltype(&curl_easy_setopt)>(function("curl_easy_setopt"));
    const auto perform = reinterpret_cast<decltype(&curl_easy_perform)>(function("curl_easy_perform"));
    const std::string url = Http("song.flac");
    set(handle, CURLOPT_URL, url.c_str());
    set(handle, CURLOPT_NOBODY, 1L);
    set(handle, CURLOPT_CUSTOMREQUEST, "GET");
    EXPECT_EQ(NameOfFetched(url), "song.flac");
    EXPECT_EQ(perform(handle), CURLE_OK);
    m_plugin.Component().Terminate();
    EXPECT_EQ(perform(handle), CURLE_OK);
    reinterpret_cast<decltype(&curl_easy_cleanup)>(function("curl_easy_cleanup"))(handle);
    reinterpret_cast<decltype(&curl_global_cleanup)>(function("curl_global_cleanup"))();
    dlclose(library);
}

}  // namespace

// The component, its files from the first fetch to the end, and the libraries in the process.
#include <curl/curl.h>
#include <dlfcn.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/plugins/curl/FetchTest.h"

namespace {

// libcurl as a host of the plug-in has it, which links nothing here: the first fetch is to bring it.
class CLibcurl {
public:
    CLibcurl() : m_pLibrary(dlopen("libcurl.so.4", RTLD_NOW | RTLD_LOCAL)) {}
    ~CLibcurl() { dlclose(m_pLibrary); }

    CLibcurl(const CLibcurl&) = delete;
    CLibcurl& operator=(const CLibcurl&) = delete;

    template <typename TFunction>
    TFunction* Function(const char* name) const {
        return reinterpret_cast<TFunction*>(dlsym(m_pLibrary, name));
    }

private:
    void* m_pLibrary;
};

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

TEST_F(CurlLifetime, ParentAndChildFetchSideBySide) {
    const std::string url = Http("song.flac");
    NameOfFetched(url);
    EXPECT_EQ(RunInChild([&] {
                  m_plugin.Fetch(url);
                  return m_plugin.Fetch(url).m_bFetched ? 0 : 1;
              }),
              0);
    NameOfFetched(url);
    EXPECT_EQ(LeftBehind().size(), 5U) << testing::PrintToString(LeftBehind());
}

// libcurl takes a memory of its own only from whoever initialises it first.
TEST_F(CurlLifetime, TerminateLeavesLibcurlAsBeforeItsFirstUse) {
    NameOfFetched(Http("song.flac"));
    m_plugin.Component().Terminate();
    const CLibcurl libcurl;
    static bool s_bTaken = false;
    const auto take = [](std::size_t count, std::size_t size) {
        s_bTaken = true;
        return calloc(count, size);
    };
    const auto initialise = libcurl.Function<decltype(curl_global_init_mem)>("curl_global_init_mem");
    ASSERT_EQ(initialise(CURL_GLOBAL_DEFAULT, malloc, free, realloc, strdup, take), CURLE_OK);
    libcurl.Function<decltype(curl_easy_cleanup)>("curl_easy_cleanup")(
        libcurl.Function<decltype(curl_easy_init)>("curl_easy_init")());
    libcurl.Function<decltype(curl_global_cleanup)>("curl_global_cleanup")();
    EXPECT_TRUE(s_bTaken);
}

TEST_F(CurlLifetime, HostThatUsesLibcurlItselfIsNotDisturbed) {
    const CLibcurl libcurl;
    ASSERT_EQ(libcurl.Function<decltype(curl_global_init)>("curl_global_init")(CURL_GLOBAL_DEFAULT), CURLE_OK);
    CURL* const handle = libcurl.Function<decltype(curl_easy_init)>("curl_easy_init")();
    const auto set = libcurl.Function<decltype(curl_easy_setopt)>("curl_easy_setopt");
    const auto perform = libcurl.Function<decltype(curl_easy_perform)>("curl_easy_perform");
    const std::string url = Http("song.flac");
    set(handle, CURLOPT_URL, url.c_str());
    set(handle, CURLOPT_NOBODY, 1L);
    set(handle, CURLOPT_CUSTOMREQUEST, "GET");
    EXPECT_EQ(NameOfFetched(url), "song.flac");
    EXPECT_EQ(perform(handle), CURLE_OK);
    m_plugin.Component().Terminate();
    EXPECT_EQ(perform(handle), CURLE_OK);
    libcurl.Function<decltype(curl_easy_cleanup)>("curl_easy_cleanup")(handle);
    libcurl.Function<decltype(curl_global_cleanup)>("curl_global_cleanup")();
}

}  // namespace

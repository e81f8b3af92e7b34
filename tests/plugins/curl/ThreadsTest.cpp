// Fetches on several threads, and the readiness to finish.
#include <chrono>
#include <future>
#include <set>
#include <thread>

#include "tests/plugins/curl/FetchTest.h"

namespace {

class CurlThreads : public CFetchTest {
protected:
    bool HasUnfinishedFile() const {
        const std::vector<std::string> paths = LeftBehind();
        return std::any_of(paths.begin(), paths.end(),
                           [](const std::string& path) { return path.find("unfinished") != std::string::npos; });
    }
};

TEST_F(CurlThreads, FetchAtOnceWithAFileForEach) {
    constexpr int kThreads = 8;
    constexpr int kFetches = 4;
    const std::string url = Http("song.txt?echo=");
    std::vector<std::future<std::set<std::string>>> threads;
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.push_back(std::async(std::launch::async, [this, thread, &url] {
            std::set<std::string> paths;
            for (int i = 0; i < kFetches; ++i) {
                const std::string mark = std::to_string(thread) + "-" + std::to_string(i);
                const SFetched fetched = m_plugin.Fetch(url + mark);
                EXPECT_TRUE(fetched.m_bFetched) << fetched.m_strDescription;
                EXPECT_THAT(Content(fetched.m_strPath), testing::HasSubstr("?echo=" + mark + " HTTP"));
                paths.insert(fetched.m_strPath);
            }
            return paths;
        }));
    }
    std::set<std::string> all;
    for (auto& thread : threads) all.merge(thread.get());
    EXPECT_EQ(all.size(), static_cast<std::size_t>(kThreads * kFetches));
}

TEST_F(CurlThreads, PluginIsNotReadyToFinishDuringAFetch) {
    setenv("KELO_CURL_STALL_TIMEOUT", "1", 1);
    const std::string url = Http("song.flac?stall=1");
    EXPECT_TRUE(m_plugin.ReadyToFinish());
    std::future<SFetched> fetching = std::async(std::launch::async, [&] { return m_plugin.Fetch(url); });
    while (!HasUnfinishedFile() && fetching.wait_for(std::chrono::milliseconds(1)) != std::future_status::ready) {
    }
    EXPECT_FALSE(m_plugin.ReadyToFinish());
    EXPECT_FALSE(fetching.get().m_bFetched);
    EXPECT_TRUE(m_plugin.ReadyToFinish());
    EXPECT_FALSE(HasUnfinishedFile());
}

}  // namespace

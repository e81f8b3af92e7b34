// What the tests of fetching stand on: servers, and a temporary directory of their own.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "tests/plugins/curl/LoopbackServer.h"
#include "tests/plugins/curl/PluginUnderTest.h"
#include "tests/support/FetchEnvironment.h"
#include "tests/support/ScratchDirectory.h"

inline std::string Content(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

inline bool IsMapped(const std::string& library) {
    return Content("/proc/self/maps").find(library) != std::string::npos;
}

// More than any buffer holds, without any pattern, the same in every run.
inline std::string ManyBytes() {
    std::mt19937 generator(20240229);
    std::string bytes;
    while (bytes.size() < 3'000'000) bytes += static_cast<char>(generator());
    return bytes;
}

// Each test case runs in a process of its own, whose environment the constructor changes for good.
class CFetchTest : public testing::Test {
protected:
    CFetchTest() {
        support::PrepareToFetch(Temporary());
        std::filesystem::create_directory(m_scratch / "served");
        m_scratch.Write("served/song.flac", kSong);
    }

    static constexpr const char* kSong = "not really a song";

    std::string Temporary() const { return m_scratch / "tmp"; }

    // Whatever lies below the temporary directory; folders too.
    std::vector<std::string> LeftBehind() const {
        std::vector<std::string> paths;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(Temporary())) {
            paths.push_back(entry.path().lexically_relative(Temporary()).string());
        }
        std::sort(paths.begin(), paths.end());
        return paths;
    }

    // URLs of the served directory; the servers start when they are first asked for.
    std::string Http(const std::string& name) { return "http://" + HttpServer() + "/" + name; }
    std::string Ftp(const std::string& name) { return "ftp://" + FtpServer() + "/" + name; }

    std::string HttpServer() { return Server(m_http, "http_server.py", {m_scratch / "served"}).HostAndPort(); }
    std::string FtpServer() {
        return Server(m_ftp, "ftp_server.py", {m_scratch / "served", "listener", "secret"}).HostAndPort();
    }

    // The name of the file that a fetch made, which holds what was served.
    std::string NameOfFetched(const std::string& url, const std::string& content = kSong) const {
        const SFetched fetched = m_plugin.Fetch(url);
        EXPECT_TRUE(fetched.m_bFetched) << fetched.m_strDescription;
        EXPECT_EQ(fetched.m_strDescription, "none");
        if (!fetched.m_bFetched) return {};
        EXPECT_EQ(Content(fetched.m_strPath), content);
        return std::filesystem::path(fetched.m_strPath).filename().string();
    }

    // The reason behind the URL, after a fetch that leaves no file and a buffer as it was.
    std::string Refusal(const std::string& url) const { return RefusalOf(url, url); }

    std::string RefusalOf(const std::string& url, const std::string& shown) const {
        const std::vector<std::string> before = LeftBehind();
        const SFetched fetched = m_plugin.Fetch(url);
        EXPECT_FALSE(fetched.m_bFetched) << url;
        EXPECT_EQ(fetched.m_strPath, "untouched");
        const std::string start = shown + ": ";
        EXPECT_THAT(fetched.m_strDescription, testing::StartsWith(start));
        // The first fetch makes the private directory, which stays.
        EXPECT_LE(LeftBehind().size(), before.size() + (before.empty() ? 1 : 0))
            << testing::PrintToString(LeftBehind());
        return fetched.m_strDescription.substr(std::min(start.size(), fetched.m_strDescription.size()));
    }

    CScratchDirectory m_scratch;
    CPluginUnderTest m_plugin;

private:
    static CLoopbackServer& Server(std::unique_ptr<CLoopbackServer>& server, const std::string& script,
                                   const std::vector<std::string>& arguments) {
        if (server == nullptr) server = std::make_unique<CLoopbackServer>(script, arguments);
        return *server;
    }

    std::unique_ptr<CLoopbackServer> m_http;
    std::unique_ptr<CLoopbackServer> m_ftp;
};

// What a failed fetch by http says, and that it leaves nothing.
#include <sys/resource.h>

#include "tests/plugins/curl/FetchTest.h"

namespace {

using testing::HasSubstr;
using testing::StartsWith;

class HttpFailure : public CFetchTest {};

TEST_F(HttpFailure, OfTheServerNamesItsAnswer) {
    EXPECT_EQ(Refusal(Http("none.flac")), "the server answered with error 404");
    EXPECT_EQ(Refusal(Http("song.flac?status=500")), "the server answered with error 500");
    EXPECT_EQ(Refusal(Http("song.flac?status=401")), "the server answered with error 401");
}

TEST_F(HttpFailure, ComesWithAnAnswerThatIsNotTheWholeFile) {
    EXPECT_EQ(Refusal(Http("song.flac?status=206")), "the server answered 206 without the file");
    EXPECT_EQ(Refusal(Http("song.flac?status=300")), "the server answered 300 without the file");
    EXPECT_EQ(Refusal(Http("song.flac?status=304")), "the server answered 304 without the file");
}

TEST_F(HttpFailure, ComesWithAnEmptyBody) {
    m_scratch.Write("served/empty.flac", "");
    EXPECT_EQ(Refusal(Http("empty.flac")), "the file is empty");
    EXPECT_EQ(Refusal(Http("empty.flac?length=none")), "the file is empty");
    EXPECT_EQ(Refusal(Http("song.flac?status=204")), "the file is empty");
}

TEST_F(HttpFailure, ComesWithFewerBytesThanAnnounced) {
    EXPECT_EQ(Refusal(Http("song.flac?length=1000")), "transfer closed with 983 bytes remaining to read");
    EXPECT_EQ(Refusal(Http("song.flac?cut=5")), "transfer closed with 12 bytes remaining to read");
    EXPECT_EQ(Refusal(Http("song.flac?cut=0")), "transfer closed with 17 bytes remaining to read");
}

TEST_F(HttpFailure, ComesWithChunksThatDoNotEnd) {
    EXPECT_EQ(Refusal(Http("song.flac?chunked=1&cut=5")), "transfer closed with outstanding read data remaining");
}

TEST_F(HttpFailure, ComesWithAConnectionThatIsReset) {
    EXPECT_THAT(Refusal(Http("song.flac?length=none&cut=5&reset=1")), HasSubstr("Connection reset by peer"));
}

TEST_F(HttpFailure, ComesWithAStallAtTheBeginning) {
    setenv("KELO_CURL_STALL_TIMEOUT", "1", 1);
    const CMutePort port(CMutePort::EManner::SaysNothing);
    EXPECT_THAT(Refusal("http://" + port.HostAndPort() + "/song.flac"), StartsWith("Operation too slow."));
}

TEST_F(HttpFailure, ComesWithAStallInTheMiddle) {
    setenv("KELO_CURL_STALL_TIMEOUT", "1", 1);
    EXPECT_THAT(Refusal(Http("song.flac?stall=1")), StartsWith("Operation too slow."));
}

TEST_F(HttpFailure, ComesWithARefusedConnection) {
    const CMutePort port(CMutePort::EManner::Refuses);
    EXPECT_THAT(Refusal("http://" + port.HostAndPort() + "/song.flac"),
                HasSubstr("Failed to connect to 127.0.0.1 port " + port.Port()));
}

TEST_F(HttpFailure, ComesWithAHostThatHasNoAddress) {
    // A label of a host name has at most 63 characters, so that nobody is asked.
    const std::string host = std::string(64, 'a') + ".invalid";
    EXPECT_EQ(Refusal("http://" + host + "/song.flac"), "Could not resolve host: " + host);
}

TEST_F(HttpFailure, ComesWithAConnectionThatIsNotMadeInTime) {
    setenv("KELO_CURL_CONNECT_TIMEOUT", "1", 1);
    const CMutePort port(CMutePort::EManner::NeverAnswers);
    EXPECT_THAT(Refusal("http://" + port.HostAndPort() + "/song.flac"), HasSubstr("Timeout was reached"));
}

TEST_F(HttpFailure, ComesWithAnAnnouncedSizeBeyondTheLimit) {
    EXPECT_EQ(Refusal(Http("song.flac?length=4294967297")), "larger than 4294967296 bytes (KELO_CURL_SIZE_LIMIT)");
    EXPECT_EQ(Refusal(Http("song.flac?length=4000000000000000000")),
              "larger than 4294967296 bytes (KELO_CURL_SIZE_LIMIT)");
}

TEST_F(HttpFailure, ComesWithMoreBytesThanTheLimit) {
    setenv("KELO_CURL_SIZE_LIMIT", "16", 1);
    EXPECT_EQ(Refusal(Http("song.flac")), "larger than 16 bytes (KELO_CURL_SIZE_LIMIT)");
    EXPECT_EQ(Refusal(Http("song.flac?length=none")), "larger than 16 bytes (KELO_CURL_SIZE_LIMIT)");
    EXPECT_EQ(Refusal(Http("song.flac?chunked=1")), "larger than 16 bytes (KELO_CURL_SIZE_LIMIT)");
    setenv("KELO_CURL_SIZE_LIMIT", "17", 1);
    EXPECT_EQ(NameOfFetched(Http("song.flac")), "song.flac");
    EXPECT_EQ(NameOfFetched(Http("song.flac?length=none")), "song.flac");
}

TEST_F(HttpFailure, ComesWithAServerThatDoesNotSpeakIt) {
    EXPECT_THAT(Refusal("http://" + FtpServer() + "/song.flac"), HasSubstr("HTTP/0.9"));
}

TEST_F(HttpFailure, ComesWithOtherSchemes) {
    m_scratch.Write("local.flac", kSong);
    for (const std::string& url : {"file://" + (m_scratch / "local.flac"), std::string("https://127.0.0.1/song.flac"),
                                   m_scratch / "local.flac", std::string("127.0.0.1/song.flac"), std::string()}) {
        EXPECT_EQ(Refusal(url), "neither an http:// nor an ftp:// address") << url;
    }
}

TEST_F(HttpFailure, ComesWithAMalformedURL) {
    for (const char* const url : {"http://127.0.0.1:99999/song.flac", "http://host/a b.flac", "http://:80/song.flac",
                                  "http://host/a\r\nHost: other"}) {
        EXPECT_THAT(Refusal(url), StartsWith("URL using bad/illegal format")) << url;
    }
}

TEST_F(HttpFailure, NeverShowsThePassword) {
    const CMutePort port(CMutePort::EManner::Refuses);
    for (const std::string& address : {HttpServer(), port.HostAndPort(), std::string("nowhere.invalid:1:2")}) {
        const std::string shown = "http://" + address + "/none.flac";
        const std::string reason = RefusalOf("http://listener:secret@" + address + "/none.flac", shown);
        EXPECT_THAT(reason, testing::Not(HasSubstr("secret")));
        EXPECT_THAT(reason, testing::Not(HasSubstr("listener")));
    }
}

TEST_F(HttpFailure, LeavesEarlierFilesAlone) {
    const SFetched earlier = m_plugin.Fetch(Http("song.flac"));
    Refusal(Http("none.flac"));
    EXPECT_EQ(Content(earlier.m_strPath), kSong);
}

TEST_F(HttpFailure, ComesWithADiskThatIsFull) {
    // A limit of the process stands for the disk's; its signal must not end the host.
    signal(SIGXFSZ, SIG_IGN);
    const rlimit limit = {10, 10};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
    EXPECT_EQ(Refusal(Http("song.flac")), "writing the local file: File too large");
}

TEST_F(HttpFailure, ComesWithAnArgumentThatIsMissing) {
    char path[kLocalPathCapacity] = "untouched";
    CComPtr<IStatus> status;
    EXPECT_FALSE(m_plugin.Handler().Fetch(nullptr, path, 0, status.Out()));
    EXPECT_EQ(status->GetAudioError(), AE_BAD_ARGUMENT);
    EXPECT_STREQ(path, "untouched");
    EXPECT_FALSE(m_plugin.Handler().Fetch("http://127.0.0.1/song.flac", nullptr, 0, status.Out()));
    EXPECT_EQ(status->GetAudioError(), AE_BAD_ARGUMENT);
}

TEST_F(HttpFailure, NeedsNoStatus) {
    char path[kLocalPathCapacity] = "untouched";
    EXPECT_FALSE(m_plugin.Handler().Fetch(Http("none.flac").c_str(), path, 0, nullptr));
    EXPECT_STREQ(path, "untouched");
}

}  // namespace

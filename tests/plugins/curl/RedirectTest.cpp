// Redirects: how many, where to, and what goes along.
#include <cstdlib>

#include "tests/plugins/curl/FetchTest.h"

namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class Redirect : public CFetchTest {
protected:
    // A URL of the server that redirects to `target`, which needs no escaping.
    std::string To(const std::string& target) { return Http("song.flac?to=" + target); }
};

TEST_F(Redirect, IsFollowedFiveTimes) {
    EXPECT_EQ(NameOfFetched(Http("song.flac?hops=5")), "song.flac");
    EXPECT_EQ(Refusal(Http("song.flac?hops=6")),
              "redirected to " + Http("song.flac?hops=1") + ": Maximum (5) redirects followed");
}

TEST_F(Redirect, IsFollowedAsOftenAsTheVariableSays) {
    setenv("KELO_CURL_REDIRECTS", "0", 1);
    EXPECT_THAT(Refusal(Http("song.flac?hops=1")), HasSubstr("Maximum (0) redirects followed"));
    EXPECT_EQ(NameOfFetched(Http("song.flac")), "song.flac");
    setenv("KELO_CURL_REDIRECTS", "6", 1);
    EXPECT_EQ(NameOfFetched(Http("song.flac?hops=6")), "song.flac");
}

TEST_F(Redirect, InALoopEnds) {
    EXPECT_THAT(Refusal(Http("song.flac?hops=1000000")), HasSubstr("Maximum (5) redirects followed"));
}

TEST_F(Redirect, OfEveryKindIsFollowed) {
    for (const char* const status : {"301", "302", "303", "307", "308"}) {
        EXPECT_EQ(NameOfFetched(To("/song.flac&status=" + std::string(status))), "song.flac") << status;
    }
}

TEST_F(Redirect, ToAnFtpServerIsFollowed) { EXPECT_EQ(NameOfFetched(To(Ftp("song.flac"))), "song.flac"); }

TEST_F(Redirect, ToALocalFileIsRefused) {
    const std::string local = "file://" + (m_scratch / "served/song.flac");
    EXPECT_EQ(Refusal(To(local)),
              "redirected to " + local + ": Protocol \"file\" not supported or disabled in libcurl");
}

TEST_F(Redirect, ToAnotherProtocolIsRefused) {
    for (const std::string scheme : {"gopher", "dict", "tftp", "smb", "scp", "imap"}) {
        EXPECT_THAT(Refusal(To(scheme + "://127.0.0.1/song.flac")), HasSubstr("not supported or disabled")) << scheme;
    }
}

TEST_F(Redirect, ToAServerWithAStrangeCertificateIsRefused) {
    const std::string certificate = m_scratch / "certificate.pem";
    ASSERT_EQ(std::system(("openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -subj /CN=127.0.0.1 "
                           "-addext subjectAltName=IP:127.0.0.1 -keyout '" +
                           certificate + "' -out '" + certificate + ".crt' 2>/dev/null && cat '" + certificate +
                           ".crt' >>'" + certificate + "'")
                              .c_str()),
              0)
        << "Debian: openssl";
    const CLoopbackServer server("http_server.py", {m_scratch / "served", certificate});
    const std::string target = "https://" + server.HostAndPort() + "/song.flac";
    EXPECT_EQ(Refusal(To(target)), "redirected to " + target + ": SSL certificate problem: self-signed certificate");
}

TEST_F(Redirect, WithoutATargetIsNoFile) {
    EXPECT_EQ(Refusal(Http("song.flac?status=302")), "the server answered 302 without the file");
}

TEST_F(Redirect, FailsWithTheReasonOfItsTarget) {
    EXPECT_EQ(Refusal(To("/none.flac")), "redirected to " + Http("none.flac") + ": the server answered with error 404");
    const CMutePort port(CMutePort::EManner::Refuses);
    const std::string refusing = "http://" + port.HostAndPort() + "/song.flac";
    EXPECT_THAT(Refusal(To(refusing)), StartsWith("redirected to " + refusing + ": Failed to connect"));
}

TEST_F(Redirect, TakesNoCredentialsToAnotherServer) {
    const CLoopbackServer other("http_server.py", {m_scratch / "served"});
    const std::string target = "http://" + other.HostAndPort() + "/song.txt?echo=1";
    const SFetched fetched = m_plugin.Fetch("http://listener:secret@" + HttpServer() + "/song.flac?to=" + target);
    ASSERT_TRUE(fetched.m_bFetched) << fetched.m_strDescription;
    EXPECT_THAT(Content(fetched.m_strPath), Not(HasSubstr("Authorization")));
}

TEST_F(Redirect, TakesNoCredentialsToAnFtpServer) {
    // That server knows the user by another password, and anybody without one.
    EXPECT_EQ(NameOfFetched("http://listener:wrong@" + HttpServer() + "/song.flac?to=" + Ftp("song.flac")),
              "song.flac");
}

TEST_F(Redirect, KeepsTheCredentialsOnTheSameServer) {
    const SFetched fetched =
        m_plugin.Fetch("http://listener:secret@" + HttpServer() + "/song.flac?to=/song.txt%3Fecho%3D1");
    EXPECT_THAT(Content(fetched.m_strPath), HasSubstr("Authorization: Basic"));
}

TEST_F(Redirect, NeverShowsThePasswordOfItsTarget) {
    const std::string reason = Refusal(To("http://listener:secret@" + HttpServer() + "/none.flac"));
    EXPECT_EQ(reason, "redirected to " + Http("none.flac") + ": the server answered with error 404");
}

}  // namespace

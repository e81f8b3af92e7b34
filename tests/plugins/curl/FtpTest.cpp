// Fetching by ftp.
#include "tests/plugins/curl/FetchTest.h"

namespace {

using testing::HasSubstr;
using testing::StartsWith;

class FtpFetch : public CFetchTest {
protected:
    std::string As(const std::string& credentials, const std::string& name) {
        return "ftp://" + credentials + "@" + FtpServer() + "/" + name;
    }
};

TEST_F(FtpFetch, WorksForAnybody) { EXPECT_EQ(NameOfFetched(Ftp("song.flac")), "song.flac"); }

TEST_F(FtpFetch, WorksWithTheCredentialsOfTheURL) {
    EXPECT_EQ(NameOfFetched(As("listener:secret", "song.flac")), "song.flac");
}

TEST_F(FtpFetch, WithWrongCredentialsIsRefusedWithoutShowingThem) {
    EXPECT_EQ(RefusalOf(As("listener:wrong", "song.flac"), Ftp("song.flac")), "Access denied: 530");
}

TEST_F(FtpFetch, KeepsABodyOfEveryByteAndManyBuffers) {
    const std::string bytes = ManyBytes();
    m_scratch.Write("served/long.wav", bytes);
    EXPECT_EQ(NameOfFetched(Ftp("long.wav"), bytes), "long.wav");
}

TEST_F(FtpFetch, DecodesTheName) {
    m_scratch.Write("served/Singer - Song.flac", kSong);
    EXPECT_EQ(NameOfFetched(Ftp("Singer%20-%20Song.flac")), "Singer - Song.flac");
}

TEST_F(FtpFetch, LeavesTheTransferTypeOutOfTheName) { EXPECT_EQ(NameOfFetched(Ftp("song.flac;type=i")), "song.flac"); }

TEST_F(FtpFetch, OfAListingOrATextIsRefused) {
    for (const char* const type : {";type=d", ";type=A"}) {
        EXPECT_EQ(Refusal(Ftp(std::string("song.flac") + type)), "a transfer of another type than \";type=i\"");
    }
}

TEST_F(FtpFetch, OfAMissingFileIsRefused) { EXPECT_EQ(Refusal(Ftp("none.flac")), "The file does not exist"); }

TEST_F(FtpFetch, OfAnEmptyFileIsRefused) {
    m_scratch.Write("served/empty.flac", "");
    EXPECT_EQ(Refusal(Ftp("empty.flac")), "the file is empty");
}

TEST_F(FtpFetch, OfADirectoryIsRefused) { EXPECT_EQ(Refusal(Ftp("")), "a directory and not a file"); }

TEST_F(FtpFetch, ThatIsCutIsRefused) {
    m_scratch.Write("served/cut.flac", kSong);
    EXPECT_EQ(Refusal(Ftp("cut.flac")), "transfer closed with 7 bytes remaining to read");
}

TEST_F(FtpFetch, BeyondTheSizeLimitIsRefused) {
    setenv("KELO_CURL_SIZE_LIMIT", "16", 1);
    EXPECT_EQ(Refusal(Ftp("song.flac")), "larger than 16 bytes (KELO_CURL_SIZE_LIMIT)");
}

TEST_F(FtpFetch, FromAServerThatSaysNothingIsRefused) {
    setenv("KELO_CURL_STALL_TIMEOUT", "1", 1);
    const CMutePort port(CMutePort::EManner::SaysNothing);
    EXPECT_THAT(Refusal("ftp://" + port.HostAndPort() + "/song.flac"), HasSubstr("response"));
}

TEST_F(FtpFetch, FromAPortThatRefusesIsRefused) {
    const CMutePort port(CMutePort::EManner::Refuses);
    EXPECT_THAT(Refusal("ftp://" + port.HostAndPort() + "/song.flac"), StartsWith("Failed to connect"));
}

}  // namespace

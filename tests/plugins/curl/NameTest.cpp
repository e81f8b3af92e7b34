// The name and extension of the local file, through real servers.
#include "tests/plugins/curl/FetchTest.h"

namespace {

class LocalName : public CFetchTest {
protected:
    // The served file has no extension and a decoder would not find one.
    LocalName() { m_scratch.Write("served/song", kSong); }
};

TEST_F(LocalName, HasTheExtensionOfTheURLFirst) {
    EXPECT_EQ(NameOfFetched(Http("song.flac?type=audio/mpeg&disposition=attachment;filename%3Dother.wav")),
              "song.flac");
}

TEST_F(LocalName, HasTheExtensionOfTheFinalURLNext) {
    EXPECT_EQ(NameOfFetched(Http("get?to=/song.flac%3Ftype%3Daudio/mpeg")), "get.flac");
}

TEST_F(LocalName, HasTheExtensionOfTheContentDispositionNext) {
    EXPECT_EQ(NameOfFetched(Http("song?type=audio/mpeg&disposition=attachment;filename%3Dother.wav")), "song.wav");
    EXPECT_EQ(NameOfFetched(Http("song?disposition=attachment;filename*%3DUTF-8''%25e2%2582%25ac.aiff")), "song.aiff");
}

TEST_F(LocalName, HasTheExtensionOfTheContentTypeLast) {
    EXPECT_EQ(NameOfFetched(Http("song?type=audio/mpeg")), "song.mp3");
    EXPECT_EQ(NameOfFetched(Http("song?type=Audio/X-WAV;%20codecs%3D1")), "song.wav");
}

TEST_F(LocalName, HasNoExtensionThatNothingTells) {
    EXPECT_EQ(NameOfFetched(Http("song")), "song");
    EXPECT_EQ(NameOfFetched(Http("song?type=text/html")), "song");
}

TEST_F(LocalName, IsDecodedAndReadable) {
    m_scratch.Write("served/Zoë – Ça va?.flac", kSong);
    EXPECT_EQ(NameOfFetched(Http("Zo%C3%AB%20%E2%80%93%20%C3%87a%20va%3F.flac?type=audio/mpeg#part")),
              "Zoë – Ça va?.flac");
}

TEST_F(LocalName, StaysInItsFolder) {
    for (const char* const segment : {"%2e%2e%2f%2e%2e%2fsong.flac", "..%2F.song.flac", "%2Fetc%2Fsong.flac"}) {
        const SFetched fetched = m_plugin.Fetch(Http(std::string(segment) + "?echo=1"));
        ASSERT_TRUE(fetched.m_bFetched) << fetched.m_strDescription;
        const auto below = std::filesystem::canonical(fetched.m_strPath).lexically_relative(Temporary());
        EXPECT_EQ(std::distance(below.begin(), below.end()), 3) << below;
    }
}

TEST_F(LocalName, OfAURLWithoutAPathIsTheHost) {
    EXPECT_EQ(NameOfFetched("http://" + HttpServer() + "?to=/song&type=audio/mpeg"), "song");
    const SFetched fetched = m_plugin.Fetch("http://" + HttpServer() + "?echo=1&type=audio/mpeg");
    EXPECT_EQ(std::filesystem::path(fetched.m_strPath).filename(), "127.0.0.1.mp3");
}

}  // namespace

// Artist and title from file names, as a host sees them through a source.
#include <gtest/gtest.h>

#include "tests/stream/SourceFixture.h"

namespace {

using support::CSourceFixture;

struct SNamed {
    const char* m_pSource;
    const char* m_pArtist;
    const char* m_pTitle;
};

class ArtistTitle : public CSourceFixture {
protected:
    ArtistTitle() { m_script.m_denied.erase(IID_ISourceName); }

    void ExpectNames(int order, const std::initializer_list<SNamed>& table) {
        m_manager->SetFileNameOrder(order);
        ASSERT_TRUE(Wrap(nullptr));
        for (const SNamed& row : table) {
            SCOPED_TRACE(row.m_pSource);
            m_script.m_pSourceName = row.m_pSource;
            EXPECT_STREQ(m_pAggregator->GetArtist(), row.m_pArtist);
            EXPECT_STREQ(m_pAggregator->GetTitle(), row.m_pTitle);
        }
    }
};

TEST_F(ArtistTitle, SplitsAtTheFirstHyphenAndTrims) {
    ExpectNames(0, {{"/music/Band - Song.mp3", "Band", "Song"},
                    {"/music/Band-Song.mp3", "Band", "Song"},
                    {"/music/Band - Song - Live.mp3", "Band", "Song - Live"},
                    {"/music/The_Band - A_Song.mp3", "The_Band", "A_Song"},
                    {"/music/Band, The - Song!.mp3", "Band, The", "Song!"},
                    {"http://host/Band - Song.mp3", "Band", "Song"}});
}

TEST_F(ArtistTitle, ARunOfHyphensIsOneSeparator) {
    ExpectNames(0, {{"/m/a--b.ogg", "a", "b"}, {"/m/a---.ogg", "", "a"}});
}

TEST_F(ArtistTitle, ALeadingSeparatorLeavesTheFirstPartEmpty) { ExpectNames(0, {{"/m/-Song.ogg", "", "Song"}}); }

TEST_F(ArtistTitle, SplitsAtAnUnderscoreOnlyWithoutHyphenAndSpace) {
    ExpectNames(0, {{"/m/Band_Song.wav", "Band", "Song"},
                    {"/m/Band_Song_Live.wav", "Band", "Song_Live"},
                    {"/m/Band!_Song.wav", "Band!", "Song"},
                    {"/m/Band_Song!.wav", "Band", "Song!"}});
}

TEST_F(ArtistTitle, OtherwiseTheLastPunctuationSeparates) {
    ExpectNames(0, {{"/m/Band_Song Live.wav", "Band", "Song Live"},
                    {"/m/Band, Song.wav", "Band", "Song"},
                    {"/m/Band+Song.wav", "Band", "Song"},
                    {"/m/Band_A Song~Live.wav", "Band_A Song", "Live"},
                    {"/m/Band~Song~Live.wav", "Band", "Song~Live"}});
}

TEST_F(ArtistTitle, ALetterOfSeveralBytesIsPunctuationAndSplitsAtItsLastByte) {
    ExpectNames(0, {{"/m/Mot\xC3\xB6rhead Live.wav", "Mot\xC3", "rhead Live"}});
}

TEST_F(ArtistTitle, ApostrophesAndSpacesDoNotSeparate) {
    ExpectNames(0, {{"/m/Band Song.wav", "", "Band Song"}, {"/m/Don't Stop.wav", "", "Don't Stop"}});
}

TEST_F(ArtistTitle, WithoutASeparatorTheWholeNameIsTheTitle) { ExpectNames(0, {{"/m/Track01.wav", "", "Track01"}}); }

TEST_F(ArtistTitle, OrderOneTakesTheTitleFirst) {
    ExpectNames(
        1, {{"/music/Band - Song.mp3", "Song", "Band"}, {"/m/Track01.wav", "", "Track01"}, {"/m/a--b.ogg", "b", "a"}});
}

TEST_F(ArtistTitle, OrderTwoTakesTheWholeNameAsTitle) {
    ExpectNames(2, {{"/music/Band - Song.mp3", "", "Band - Song"}, {"/m/Band_Song.wav", "", "Band_Song"}});
}

TEST_F(ArtistTitle, OtherOrdersNeverUseTheName) {
    ExpectNames(3, {{"/music/Band - Song.mp3", "", ""}});
    m_manager->SetFileNameOrder(-1);
    EXPECT_STREQ(m_pAggregator->GetTitle(), "");
}

TEST_F(ArtistTitle, OnlyTheLastExtensionGoes) {
    ExpectNames(2, {{"/m.d/Band.tar.gz", "", "Band.tar"}, {"/m.d/Band", "", "Band"}});
}

TEST_F(ArtistTitle, TrimsTabsAndLineEndsAroundBothParts) {
    ExpectNames(0, {{"/m/\t\r\n Band \t-\r\n Song\t .wav", "Band", "Song"}});
}

TEST_F(ArtistTitle, ANameOfBlanksIsEmptyAfterTrimming) { ExpectNames(2, {{"/m/ \t .wav", "", ""}}); }

}  // namespace

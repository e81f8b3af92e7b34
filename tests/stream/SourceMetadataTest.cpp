// Tags and index points of a source.
#include <gtest/gtest.h>

#include "tests/stream/SourceFixture.h"
#include "tests/support/FakeManager.h"

namespace {

using support::CSourceFixture;
using support::kCompactDisc;

class SourceMetadata : public CSourceFixture {
protected:
    SourceMetadata() {
        m_script.m_denied.erase(IID_ISourceName);
        m_script.m_pSourceName = "/music/Band - Song.mp3";
    }

    void ExpectTexts(const char* artist, const char* title) {
        EXPECT_STREQ(m_pAggregator->GetArtist(), artist);
        EXPECT_STREQ(m_pAggregator->GetTitle(), title);
    }

    int NameLookUps() const { return m_script.m_log.Count("source name"); }
};

TEST_F(SourceMetadata, BothTagsPresentLeaveTheFileNameAlone) {
    m_script.m_pArtist = "Tag Artist";
    m_script.m_pTitle = "Tag Title";
    ASSERT_TRUE(Wrap(nullptr));
    ExpectTexts("Tag Artist", "Tag Title");
    EXPECT_EQ(NameLookUps(), 0);
}

TEST_F(SourceMetadata, CompleteTagsAreNotTrimmed) {
    m_script.m_pArtist = " Tag Artist ";
    m_script.m_pTitle = "\tTag Title";
    ASSERT_TRUE(Wrap(nullptr));
    ExpectTexts(" Tag Artist ", "\tTag Title");
}

TEST_F(SourceMetadata, AMissingTagBringsBothPartsOfTheName) {
    m_script.m_pArtist = "Tag Artist";
    ASSERT_TRUE(Wrap(nullptr));
    ExpectTexts("Band", "Song");
    m_script.m_pArtist = nullptr;
    m_script.m_pTitle = "Tag Title";
    ExpectTexts("Band", "Song");
}

TEST_F(SourceMetadata, AnEmptyTagIsMissing) {
    m_script.m_pArtist = "";
    m_script.m_pTitle = "Tag Title";
    ASSERT_TRUE(Wrap(nullptr));
    ExpectTexts("Band", "Song");
}

TEST_F(SourceMetadata, OrderTwoReplacesEvenAPresentTag) {
    m_script.m_pArtist = "Tag Artist";
    m_manager->SetFileNameOrder(2);
    ASSERT_TRUE(Wrap(nullptr));
    ExpectTexts("", "Band - Song");
}

TEST_F(SourceMetadata, WithoutTheProcesssManagerTheTagsStandAlone) {
    m_manager.Release();
    m_script.m_pTitle = " Tag Title ";
    support::CFakeManager other;
    IUnknown* stream = support::NewDecoder(m_script);
    m_pAggregator = new CSrcConvAggregator(&other, &stream, nullptr);
    ASSERT_TRUE(m_pAggregator->IsValid());
    ExpectTexts("", " Tag Title ");
    EXPECT_EQ(NameLookUps(), 0);
    stream->Release();
    EXPECT_EQ(other.References(), 0U);
}

TEST_F(SourceMetadata, AnUnusedNameStillTrimsTheTags) {
    m_script.m_pTitle = " Tag Title\r\n";
    m_manager->SetFileNameOrder(7);
    ASSERT_TRUE(Wrap(nullptr));
    ExpectTexts("", "Tag Title");
}

TEST_F(SourceMetadata, ModeTwoIgnoresTheTags) {
    m_script.m_pArtist = "Tag Artist";
    m_script.m_pTitle = "Tag Title";
    m_manager->SetTagSourceMode(2);
    ASSERT_TRUE(Wrap(nullptr));
    ExpectTexts("Band", "Song");
}

TEST_F(SourceMetadata, ModeTwoWithoutANameLeavesBothEmpty) {
    m_script.m_pArtist = "Tag Artist";
    m_script.m_pTitle = "Tag Title";
    m_script.m_pSourceName = nullptr;
    m_manager->SetTagSourceMode(2);
    ASSERT_TRUE(Wrap(nullptr));
    ExpectTexts("", "");
}

TEST_F(SourceMetadata, OtherModesUseTheTagsOnly) {
    m_script.m_pTitle = " Tag Title ";
    ASSERT_TRUE(Wrap(nullptr));
    for (const int mode : {1, 3, -1}) {
        m_manager->SetTagSourceMode(mode);
        ExpectTexts("", " Tag Title ");
    }
    EXPECT_EQ(NameLookUps(), 0);
}

TEST_F(SourceMetadata, ADecoderWithoutSourceNameKeepsItsTags) {
    m_script.m_denied.insert(IID_ISourceName);
    m_script.m_pTitle = " Tag Title ";
    ASSERT_TRUE(Wrap(nullptr));
    ExpectTexts("", " Tag Title ");
}

TEST_F(SourceMetadata, ANullOrEmptySourceNameKeepsTheTags) {
    m_script.m_pTitle = " Tag Title ";
    ASSERT_TRUE(Wrap(nullptr));
    for (const char* const name : {static_cast<const char*>(nullptr), ""}) {
        m_script.m_pSourceName = name;
        ExpectTexts("", " Tag Title ");
    }
}

TEST_F(SourceMetadata, TheSourceNameIsGivenBackAndItsOtherOperationNeverCalled) {
    ASSERT_TRUE(Wrap(nullptr));
    const unsigned int before = m_script.m_nReferences;
    m_pAggregator->GetTitle();
    EXPECT_EQ(m_script.m_nReferences, before);
    EXPECT_EQ(m_script.m_log.Count("release ISourceName"), 1);
    EXPECT_EQ(m_script.m_log.Count("reserved"), 0);
}

TEST_F(SourceMetadata, EveryCallRebuildsTheTexts) {
    ASSERT_TRUE(Wrap(nullptr));
    EXPECT_STREQ(m_pAggregator->GetTitle(), "Song");
    m_script.m_pArtist = "Tag Artist";
    m_script.m_pTitle = "Tag Title";
    EXPECT_STREQ(m_pAggregator->GetTitle(), "Tag Title");
}

TEST_F(SourceMetadata, TheDefaultsUseTheNameOnlyForMissingTagsArtistFirst) {
    ASSERT_TRUE(Wrap(nullptr));
    ExpectTexts("Band", "Song");
}

TEST_F(SourceMetadata, AlbumYearAndGenreAreTheDecodersOwn) {
    m_script.m_pAlbum = " Album ";
    m_script.m_pYear = "1999";
    ASSERT_TRUE(Wrap(nullptr));
    EXPECT_EQ(m_pAggregator->GetAlbum(), m_script.m_pAlbum);
    EXPECT_EQ(m_pAggregator->GetYear(), m_script.m_pYear);
    EXPECT_EQ(m_pAggregator->GetGenre(), nullptr);
}

TEST_F(SourceMetadata, ADecoderWithoutTagsGivesNullTexts) {
    m_script.m_denied.insert(IID_IInfoReader);
    m_manager->SetTagSourceMode(2);
    ASSERT_TRUE(Wrap(nullptr));
    EXPECT_EQ(m_pAggregator->GetArtist(), nullptr);
    EXPECT_EQ(m_pAggregator->GetTitle(), nullptr);
    EXPECT_EQ(m_pAggregator->GetAlbum(), nullptr);
    EXPECT_EQ(m_pAggregator->GetYear(), nullptr);
    EXPECT_EQ(m_pAggregator->GetGenre(), nullptr);
    m_pAggregator->ObtainArtistTitle();
    EXPECT_EQ(NameLookUps(), 0);
}

TEST_F(SourceMetadata, WithoutAnIndexThereAreNoPoints) {
    m_script.m_denied.insert(IID_IIndexArray);
    ASSERT_TRUE(Wrap(nullptr));
    EXPECT_EQ(m_pAggregator->GetIndexNumber(), 0);
    EXPECT_EQ(m_pAggregator->GetIndex(0), ~std::uint64_t{0});
}

TEST_F(SourceMetadata, IndexPointsPassUnchangedWithoutAConvertor) {
    m_script.m_indexes = {0, 44100, (std::uint64_t{1} << 53) + 1};
    ASSERT_TRUE(Wrap(nullptr));
    EXPECT_EQ(m_pAggregator->GetIndexNumber(), 3);
    EXPECT_EQ(m_pAggregator->GetIndex(1), 44100U);
    EXPECT_EQ(m_pAggregator->GetIndex(2), (std::uint64_t{1} << 53) + 1);
    EXPECT_EQ(m_pAggregator->GetIndex(3), ~std::uint64_t{0});
}

TEST_F(SourceMetadata, IndexPointsStayInTheDecodersRateUntilAConvertorRuns) {
    m_script.m_indexes = {44100};
    ASSERT_TRUE(Wrap(SWavFormat{48000, 16, 2}));
    EXPECT_EQ(m_pAggregator->GetIndex(0), 44100U);
}

TEST_F(SourceMetadata, ARunningConvertorScalesIndexPointsByTheRates) {
    m_script.m_indexes = {44100, 123456789, ~std::uint64_t{0}};
    StartConverting({48000, 16, 2});
    const double ratio = static_cast<double>(44100.0F / 48000.0F);  // single precision, then divided in double
    EXPECT_EQ(m_pAggregator->GetIndex(0), static_cast<std::uint64_t>(44100.0 / ratio));
    EXPECT_EQ(m_pAggregator->GetIndex(1), static_cast<std::uint64_t>(123456789.0 / ratio));
    EXPECT_NE(m_pAggregator->GetIndex(1), static_cast<std::uint64_t>(123456789.0F / static_cast<float>(ratio)));
    EXPECT_EQ(m_pAggregator->GetIndex(2), ~std::uint64_t{0});
    EXPECT_TRUE(m_pAggregator->End(nullptr));
    EXPECT_EQ(m_pAggregator->GetIndex(0), 44100U);
}

}  // namespace

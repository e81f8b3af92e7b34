// Which decoders an open tries, and in which order.
#include <gtest/gtest.h>

#include "tests/stream/OpeningFixture.h"

namespace {

using support::CFakeDecoderComponent;
using support::CFakePlainComponent;
using support::EOutcome;

using Names = std::vector<std::string>;

// Every decoder refuses, so that the log tells all that were tried.
class SourceChoice : public support::COpeningFixture {
protected:
    SourceChoice() {
        for (CFakeDecoderComponent* const component : {&m_ogg, &m_wav, &m_both, &m_none}) {
            Prepare(*component);
            component->m_opener.m_open.m_eOutcome = EOutcome::Fails;
        }
        Register({&m_ogg, &m_wav, &m_both, &m_none});
    }

    CFakeDecoderComponent m_ogg{"ogg", {"ogg"}};
    CFakeDecoderComponent m_wav{"wav", {"wav"}};
    CFakeDecoderComponent m_both{"both", {"ogg", "WAV"}};
    CFakeDecoderComponent m_none{"none", {}};
};

TEST_F(SourceChoice, PassZeroTriesTheDecodersThatListTheExtension) {
    EXPECT_EQ(Tried(m_song, 0), (Names{"wav", "both"}));
}

TEST_F(SourceChoice, PassOneTriesTheOthers) { EXPECT_EQ(Tried(m_song, 1), (Names{"ogg", "none"})); }

TEST_F(SourceChoice, PassMinusOneTriesBothInThisOrder) {
    EXPECT_EQ(Tried(m_song, -1), (Names{"wav", "both", "ogg", "none"}));
}

TEST_F(SourceChoice, EveryOtherPassIsPassOne) {
    for (const int pass : {2, 7, -2, 1 << 30}) EXPECT_EQ(Tried(m_song, pass), (Names{"ogg", "none"})) << pass;
}

TEST_F(SourceChoice, TheFirstDecoderThatOpensEndsTheSearch) {
    m_both.m_opener.m_open = {};
    EXPECT_TRUE(Open(m_song));
    EXPECT_EQ(m_log.After("open "), (Names{"wav", "both"}));
    ExpectNothingHeld();
}

TEST_F(SourceChoice, TheSecondPassRunsOnlyWhenTheFirstOpenedNothing) {
    m_ogg.m_opener.m_open = {};
    EXPECT_TRUE(Open(m_song));
    EXPECT_EQ(m_log.After("open "), (Names{"wav", "both", "ogg"}));
}

TEST_F(SourceChoice, APathWithoutExtensionMatchesNoDecoder) {
    const std::string path = m_directory.Write("song", "x");
    m_none.m_extensions = {""};
    EXPECT_EQ(Tried(path, 0), Names{});
    EXPECT_EQ(Tried(path, -1), (Names{"ogg", "wav", "both", "none"}));
}

TEST_F(SourceChoice, ADotAtTheEndIsTheEmptyExtension) {
    m_none.m_extensions = {""};
    EXPECT_EQ(Tried(m_directory.Write("song.", "x"), 0), Names{"none"});
}

TEST_F(SourceChoice, OnlyTheLastExtensionCounts) {
    EXPECT_EQ(Tried(m_directory.Write("song.wav.ogg", "x"), 0), (Names{"ogg", "both"}));
}

TEST_F(SourceChoice, ADotOfADirectoryIsNoExtension) {
    std::filesystem::create_directory(m_directory.Path() / "a.wav");
    EXPECT_EQ(Tried(m_directory.Write("a.wav/song", "x"), 0), Names{});
}

TEST_F(SourceChoice, ExtensionsMustMatchWhole) {
    EXPECT_EQ(Tried(m_directory.Write("song.wa", "x"), 0), Names{});
    EXPECT_EQ(Tried(m_directory.Write("song.wavx", "x"), 0), Names{});
    m_none.m_extensions = {".wav"};  // the dot does not belong there
    EXPECT_EQ(Tried(m_song, 0), (Names{"wav", "both"}));
}

TEST_F(SourceChoice, TheFirstEqualExtensionEndsTheComparison) {
    m_wav.m_extensions = {"mp3", "wav", "wav", "aif"};
    m_wav.m_nGetAtCalls = 0;
    Tried(m_song, 0);
    EXPECT_EQ(m_wav.m_nGetAtCalls, 2);
}

TEST_F(SourceChoice, ANullExtensionIsPassedOver) {
    m_wav.m_extensions = {nullptr, "wav"};
    EXPECT_EQ(Tried(m_song, 0), (Names{"wav", "both"}));
}

TEST_F(SourceChoice, OnlyBitZeroEnablesADecoder) {
    m_wav.m_opener.m_nState = 0;
    EXPECT_EQ(Tried(m_song, -1), (Names{"both", "ogg", "none"}));
    m_wav.m_opener.m_nState = 0xFFFFFFFE;
    EXPECT_EQ(Tried(m_song, 0), Names{"both"});
    m_wav.m_opener.m_nState = 0xFFFFFFFF;
    EXPECT_EQ(Tried(m_song, 0), (Names{"wav", "both"}));
    ExpectNothingHeld();
}

TEST_F(SourceChoice, AComponentWithoutAnOpenerIsSkipped) {
    m_wav.m_bOffersOpener = false;
    m_ogg.m_bOffersOpener = false;
    EXPECT_EQ(Tried(m_song, -1), (Names{"both", "none"}));
    ExpectNothingHeld();
}

TEST_F(SourceChoice, AComponentWithoutExtensionsIsSkippedInEveryPass) {
    m_wav.m_bOffersExtensions = false;
    m_ogg.m_bOffersExtensions = false;
    EXPECT_EQ(Tried(m_song, -1), (Names{"both", "none"}));
    ExpectNothingHeld();
}

TEST_F(SourceChoice, ComponentsOfOtherTypesAreNotTried) {
    m_wav.m_eType = ACT_ENCODER;
    m_ogg.m_eType = ACT_CONVERTOR;
    EXPECT_EQ(Tried(m_song, -1), (Names{"both", "none"}));
}

TEST_F(SourceChoice, RequiredFlagsMustAllBeCapabilities) {
    m_wav.m_opener.m_eCapabilities = static_cast<EAuxFlags>(0x3);
    m_both.m_opener.m_eCapabilities = static_cast<EAuxFlags>(0x1);
    m_eRequired = static_cast<EAuxFlags>(0x3);
    EXPECT_EQ(Tried(m_song, 0), Names{"wav"});
    m_eRequired = static_cast<EAuxFlags>(0x1);
    EXPECT_EQ(Tried(m_song, 0), (Names{"wav", "both"}));
    m_eRequired = static_cast<EAuxFlags>(0x1003);
    EXPECT_EQ(Tried(m_song, 0), Names{});
    m_eRequired = AUX_NONE;
    EXPECT_EQ(Tried(m_song, 0), (Names{"wav", "both"}));
}

TEST_F(SourceChoice, OneExcludedCapabilityIsEnoughToDropADecoder) {
    m_wav.m_opener.m_eCapabilities = static_cast<EAuxFlags>(0x3);
    m_both.m_opener.m_eCapabilities = static_cast<EAuxFlags>(0x4);
    m_eExcluded = static_cast<EAuxFlags>(0x9);
    EXPECT_EQ(Tried(m_song, 0), Names{"both"});
    m_eExcluded = static_cast<EAuxFlags>(0xC);
    EXPECT_EQ(Tried(m_song, 0), Names{"wav"});
    m_eExcluded = static_cast<EAuxFlags>(0x8);
    EXPECT_EQ(Tried(m_song, 0), (Names{"wav", "both"}));
}

TEST_F(SourceChoice, TheExcludedSetWinsOverTheRequiredOne) {
    m_wav.m_opener.m_eCapabilities = static_cast<EAuxFlags>(0x1);
    m_eRequired = static_cast<EAuxFlags>(0x1);
    m_eExcluded = static_cast<EAuxFlags>(0x1);
    EXPECT_EQ(Tried(m_song, 0), Names{});
}

TEST_F(SourceChoice, FlagsCountInTheSecondPassToo) {
    m_ogg.m_opener.m_eCapabilities = AUX_NONE;
    m_eRequired = AUX_CONVERT;
    EXPECT_EQ(Tried(m_song, 1), Names{"none"});
}

TEST_F(SourceChoice, BothSetsReachTheOpener) {
    m_wav.m_opener.m_eCapabilities = static_cast<EAuxFlags>(0x1001);
    m_eRequired = static_cast<EAuxFlags>(0x1001);
    m_eExcluded = static_cast<EAuxFlags>(0x8000);
    Tried(m_song, 0);
    ASSERT_EQ(m_wav.m_opener.m_openCalls.size(), 1U);
    EXPECT_EQ(m_wav.m_opener.m_openCalls[0].m_eRequired, m_eRequired);
    EXPECT_EQ(m_wav.m_opener.m_openCalls[0].m_eExcluded, m_eExcluded);
}

TEST_F(SourceChoice, CapabilitiesAreReadOfCandidatesOnly) {
    Tried(m_song, 0);
    EXPECT_EQ(m_wav.m_opener.m_nFlagCalls, 1);
    EXPECT_EQ(m_ogg.m_opener.m_nFlagCalls, 0);
}

TEST_F(SourceChoice, TheManagersOrderOfDecodersDecides) {
    m_manager->SetComponentOrder(nullptr, 0);
    CFakeDecoderComponent late("late", {"wav"});
    Prepare(late);
    late.m_opener.m_open.m_eOutcome = EOutcome::Fails;
    m_manager.Register(late, 9);
    const char* const order[] = {"fake.so*9"};
    m_manager->SetComponentOrder(order, 1);
    EXPECT_EQ(Tried(m_song, 0), (Names{"late", "wav", "both"}));
    m_manager.Release();
}

}  // namespace

// Construction of a source: required interfaces, formats, interfaces that hosts may ask for.
#include <gtest/gtest.h>

#include <cstring>

#include "stream/SrcConvAggregator.h"
#include "tests/stream/SourceFixture.h"
#include "tests/support/FakeManager.h"

namespace {

using support::CodeOf;
using support::kCompactDisc;
using support::kStudio;

class SrcConvAggregator : public support::CSourceFixture {
protected:
    void EnableAdvancedFormats() {
        InstallFactory();
        ASSERT_TRUE(m_manager->EnableSupport(AF_BASIC, true));
        ASSERT_TRUE(m_manager->EnableSupport(AF_ADVANCED_FORMATS, true));
        m_script.m_denied.erase(IID_IAdvancedFormat);
        m_script.m_advanced = {{{96000, 32, 6}, 5}, {1, 2, 3, 4, 5}};
    }
};

TEST_F(SrcConvAggregator, AsksTheDecoderInTheFixedOrder) {
    ASSERT_TRUE(Wrap(nullptr));
    const std::vector<std::string> expected{"4", "2", "6", "21", "25", "20", "61", "46"};
    EXPECT_EQ(m_script.m_log.After("query "), expected);
}

TEST_F(SrcConvAggregator, SetsTheAggregatorBeforeItAsksForTheAdvancedFormat) {
    m_script.m_bDelegates = false;
    ASSERT_TRUE(Wrap(nullptr));
    const std::vector<std::string> expected{"query 4",  "query 2",  "query 6",        "query 21", "query 25",
                                            "query 20", "query 61", "set aggregator", "query 46"};
    EXPECT_EQ(m_script.m_log.Lines(), expected);
}

TEST_F(SrcConvAggregator, TakesTheDecodersPlaceInTheOutPointer) {
    ASSERT_TRUE(Wrap(nullptr));
    EXPECT_NE(m_pStream, m_pDecoder);
    EXPECT_EQ(m_pStream, static_cast<IUnknown*>(static_cast<IAudioRawReader*>(m_pAggregator)));
    EXPECT_EQ(m_script.m_pOuter, m_pStream);
}

TEST_F(SrcConvAggregator, CountsItselfBeforeItTakesReferences) {
    const std::int64_t before = g_lAggregators;
    ASSERT_TRUE(Wrap(nullptr));
    EXPECT_EQ(m_script.m_nAliveAtFirstAddRef, before + 1);
}

TEST_F(SrcConvAggregator, EveryRequiredInterfaceIsRequired) {
    for (const unsigned long identity :
         {IID_IAggregatable, IID_IProcess, IID_IAudioRawReader, IID_IAudioRawBlockInfo}) {
        SCOPED_TRACE(identity);
        m_script.m_denied = {identity};
        const std::int64_t before = g_lAggregators;
        EXPECT_FALSE(Wrap(nullptr));
        EXPECT_EQ(m_pStream, m_pDecoder);
        EXPECT_EQ(m_script.m_nReferences, 1U);
        EXPECT_EQ(m_script.m_log.Count("set aggregator"), 0);
        EXPECT_EQ(g_lAggregators, before);
        Close();
        EXPECT_EQ(m_script.m_nAlive, 0);
    }
}

TEST_F(SrcConvAggregator, ARefusedSetAggregatorLeavesItInvalid) {
    m_script.m_setAggregator.m_eOutcome = support::EOutcome::Fails;
    EXPECT_FALSE(Wrap(nullptr));
    EXPECT_EQ(m_pStream, m_pDecoder);
    EXPECT_EQ(m_script.m_nReferences, 1U);
}

TEST_F(SrcConvAggregator, WithoutAManagerItIsInvalid) {
    IUnknown* const decoder = support::NewDecoder(m_script);
    IUnknown* stream = decoder;
    {
        const CSrcConvAggregator source(nullptr, &stream, nullptr);
        EXPECT_FALSE(source.IsValid());
    }
    EXPECT_EQ(stream, decoder);
    EXPECT_EQ(decoder->Release(), 0U);
}

TEST_F(SrcConvAggregator, WithoutADecoderItIsInvalid) {
    IUnknown* stream = nullptr;
    const CSrcConvAggregator source(m_manager.Get(), &stream, nullptr);
    EXPECT_FALSE(source.IsValid());
    EXPECT_EQ(stream, nullptr);
}

TEST_F(SrcConvAggregator, HoldsTheManagerWhileItLives) {
    const unsigned int before = m_manager->AddRef();
    ASSERT_TRUE(Wrap(nullptr));
    EXPECT_EQ(m_manager->AddRef(), before + 2);
    m_manager->Release();
    Close();
    EXPECT_EQ(m_manager->Release(), before - 1);
}

TEST_F(SrcConvAggregator, OptionalInterfacesMayBeMissing) {
    m_script.m_denied = {IID_IInfoReader, IID_ISeekable, IID_IIndexArray, IID_IAdvancedFormat};
    EXPECT_TRUE(Wrap(nullptr));
}

TEST_F(SrcConvAggregator, WithoutAWantedFormatItDeliversTheDecodersOwn) {
    m_script.m_format = {32000, 8, 1};
    ASSERT_TRUE(Wrap(nullptr));
    EXPECT_EQ(m_pAggregator->GetRawFormat(), (SWavFormat{32000, 8, 1}));
    EXPECT_EQ(m_pAggregator->GetRealFormat(), (SWavFormat{32000, 8, 1}));
}

TEST_F(SrcConvAggregator, DeliversTheWantedFormatAndTellsTheDecodersOwn) {
    ASSERT_TRUE(Wrap(kStudio));
    EXPECT_EQ(m_pAggregator->GetRawFormat(), kStudio);
    EXPECT_EQ(m_pAggregator->GetRealFormat(), kCompactDisc);
}

TEST_F(SrcConvAggregator, TheWantedFormatIsCopied) {
    SWavFormat wanted = kStudio;
    ASSERT_TRUE(Wrap(wanted));
    wanted.nChannels = 8;
    EXPECT_EQ(m_pAggregator->GetRawFormat(), kStudio);
}

TEST_F(SrcConvAggregator, AdvancedFormatsCountOnlyWhileTheManagerHasThemOn) {
    m_script.m_denied.erase(IID_IAdvancedFormat);
    m_script.m_advanced = {{{96000, 32, 6}, 5}, {}};
    ASSERT_TRUE(Wrap(nullptr));
    EXPECT_FALSE(m_pAggregator->IsAdvancedFormatsEnabled());
    EXPECT_EQ(m_pAggregator->GetRealFormat(), kCompactDisc);
    EXPECT_EQ(m_script.m_log.Count("release IAdvancedFormat"), 1);
}

TEST_F(SrcConvAggregator, AnAdvancedFormatIsTheRealFormatOnceEnabled) {
    EnableAdvancedFormats();
    ASSERT_TRUE(Wrap(nullptr));
    EXPECT_TRUE(m_pAggregator->IsAdvancedFormatsEnabled());
    EXPECT_EQ(m_pAggregator->GetRealFormat(), (SWavFormat{96000, 32, 6}));
    EXPECT_EQ(m_pAggregator->GetRawFormat(), (SWavFormat{96000, 32, 6}));
    EXPECT_EQ(m_script.m_log.Count("release IAdvancedFormat"), 1);
}

TEST_F(SrcConvAggregator, EnabledAdvancedFormatsNeedADecoderThatHasThem) {
    EnableAdvancedFormats();
    m_script.m_denied.insert(IID_IAdvancedFormat);
    ASSERT_TRUE(Wrap(nullptr));
    EXPECT_EQ(m_pAggregator->GetRealFormat(), kCompactDisc);
}

TEST_F(SrcConvAggregator, AManagerWithoutFeaturesHasNoAdvancedFormats) {
    EnableAdvancedFormats();
    support::CFakeManager other;
    IUnknown* stream = support::NewDecoder(m_script);
    auto* const source = new CSrcConvAggregator(&other, &stream, nullptr);
    ASSERT_TRUE(source->IsValid());
    EXPECT_FALSE(source->IsAdvancedFormatsEnabled());
    EXPECT_EQ(source->GetRealFormat(), kCompactDisc);
    stream->Release();
}

TEST_F(SrcConvAggregator, ANullWantedFormatKeepsTheQualifierAndConvertsNothing) {
    EnableAdvancedFormats();
    ASSERT_TRUE(Wrap(nullptr));
    EXPECT_TRUE(m_pAggregator->Start(nullptr));
    EXPECT_TRUE(m_factory.m_createCalls.empty());
}

TEST_F(SrcConvAggregator, AQualifierAloneNeedsAConvertor) {
    EnableAdvancedFormats();
    ASSERT_TRUE(Wrap(SWavFormat{96000, 32, 6}));
    EXPECT_TRUE(m_pAggregator->Start(nullptr));
    ASSERT_EQ(m_factory.m_createCalls.size(), 1U);
    EXPECT_EQ(m_factory.m_createCalls[0].m_from.m_format, m_factory.m_createCalls[0].m_to.m_format);
    EXPECT_EQ(m_factory.m_createCalls[0].m_from.m_nQualifier, 5);
    EXPECT_EQ(m_factory.m_createCalls[0].m_to.m_nQualifier, 0);
}

TEST_F(SrcConvAggregator, TheReservedWordsBehindTheRealFormatAreZeroWhateverTheDecoderHasThere) {
    EnableAdvancedFormats();
    SAdvancedWavFormat seen{{}, {9, 9, 9, 9, 9}};
    m_factory.m_onCreate = [&](const SWavFormat* from) { std::memcpy(&seen, from, sizeof seen); };
    ASSERT_TRUE(Wrap(kStudio));
    ASSERT_TRUE(m_pAggregator->Start(nullptr));
    EXPECT_TRUE(seen.m_held == m_script.m_advanced.m_held);
    for (const std::int32_t word : seen.m_nReserved) EXPECT_EQ(word, 0);
}

TEST_F(SrcConvAggregator, AnswersItsOwnInterfacesWithItsOwnFaces) {
    ASSERT_TRUE(Wrap(nullptr));
    const std::pair<unsigned long, void*> kFaces[] = {
        {IID_IUnknown, static_cast<IAudioRawReader*>(m_pAggregator)},
        {IID_IAudioRawReader, static_cast<IAudioRawReader*>(m_pAggregator)},
        {IID_IProcess, static_cast<IProcess*>(m_pAggregator)},
        {IID_IAudioRawBlockInfo, static_cast<IAudioRawBlockInfo*>(m_pAggregator)},
        {IID_IIndexArray, static_cast<IIndexArray*>(m_pAggregator)},
        {IID_IRealFormat, static_cast<IRealFormat*>(m_pAggregator)},
        {IID_IInfoReader, static_cast<IInfoReader*>(m_pAggregator)},
        {IID_ISeekable, static_cast<ISeekable*>(m_pAggregator)}};
    m_script.m_log.Clear();
    for (const auto& [identity, expected] : kFaces) {
        SCOPED_TRACE(identity);
        const unsigned int before = m_script.m_nReferences;
        void* face = nullptr;
        EXPECT_EQ(m_pAggregator->QueryInterface(identity, &face), 0);
        EXPECT_EQ(face, expected);
        EXPECT_EQ(m_script.m_nReferences, before + 1);
        m_pAggregator->Release();
    }
    EXPECT_TRUE(m_script.m_log.Lines().empty());
}

TEST_F(SrcConvAggregator, TheIndexFaceStandsEvenOverADecoderWithoutIndex) {
    m_script.m_denied.insert(IID_IIndexArray);
    ASSERT_TRUE(Wrap(nullptr));
    EXPECT_EQ(CodeOf(m_pAggregator, IID_IIndexArray), 0);
}

TEST_F(SrcConvAggregator, TagsAndSeekingAreDeniedOverADecoderWithoutThem) {
    m_script.m_denied = {IID_IInfoReader, IID_ISeekable};
    ASSERT_TRUE(Wrap(nullptr));
    m_script.m_denied.clear();  // even when the decoder would offer them by now
    m_script.m_log.Clear();
    for (const unsigned long identity : {IID_IInfoReader, IID_ISeekable}) {
        void* face = this;
        EXPECT_EQ(m_pAggregator->QueryInterface(identity, &face), 2);
        EXPECT_EQ(face, nullptr);
    }
    EXPECT_TRUE(m_script.m_log.Lines().empty());
    EXPECT_FALSE(m_pAggregator->Seek(0, nullptr));
}

TEST_F(SrcConvAggregator, ANullOutPointerIsRefusedBeforeAnythingElse) {
    ASSERT_TRUE(Wrap(nullptr));
    m_script.m_log.Clear();
    for (const unsigned long identity : {IID_IUnknown, IID_IProcess, IID_ISourceName, 999UL}) {
        EXPECT_EQ(m_pAggregator->QueryInterface(identity, nullptr), 3);
    }
    EXPECT_TRUE(m_script.m_log.Lines().empty());
}

TEST_F(SrcConvAggregator, ForwardsOtherInterfacesToTheDecodersInnerQuery) {
    m_script.m_denied.erase(IID_ISourceName);
    ASSERT_TRUE(Wrap(nullptr));
    m_script.m_log.Clear();
    void* face = nullptr;
    const unsigned int before = m_script.m_nReferences;
    EXPECT_EQ(m_pAggregator->QueryInterface(IID_ISourceName, &face), 0);
    ASSERT_NE(face, nullptr);
    EXPECT_EQ(m_script.m_nReferences, before + 1);
    static_cast<ISourceName*>(face)->Release();
    EXPECT_EQ(m_script.m_log.After("inner query "), std::vector<std::string>{"3"});
    EXPECT_TRUE(m_script.m_log.After("query ").empty());
}

TEST_F(SrcConvAggregator, AForwardedQueryAnswersWhatTheDecoderAnswers) {
    ASSERT_TRUE(Wrap(nullptr));
    void* face = this;
    EXPECT_EQ(m_pAggregator->QueryInterface(999, &face), 2);
    EXPECT_EQ(face, nullptr);
    EXPECT_EQ(m_script.m_log.Count("inner query 999"), 1);
}

}  // namespace

// The tables of the aggregators and of the stream interfaces, called slot by slot.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include "stream/TargetAggregator.h"
#include "tests/stream/SourceFixture.h"
#include "tests/support/ClassTable.h"
#include "tests/support/FakeComponents.h"
#include "tests/support/FakeEncoder.h"
#include "tests/support/SlotTable.h"

namespace {

using support::kCompactDisc;
using support::kStudio;

void* Exported(const char* symbol) { return dlsym(RTLD_DEFAULT, symbol); }

// An address `words` pointers behind the object's begin.
void* FaceBehind(void* object, int words) { return static_cast<void**>(object) + words; }

class SourceSlots : public support::CSourceFixture {
protected:
    SourceSlots() {
        m_script.m_nRawLength = 17640;
        m_script.m_nPosition = 100;
        m_script.m_nDataLength = 4410;
        m_script.m_indexes = {11, 22};
        m_script.m_pTitle = "title";
        m_script.m_pArtist = "artist";
        m_script.m_pAlbum = "album";
        m_script.m_pYear = "year";
        m_script.m_pGenre = "genre";
    }

    // The first object after wrapping in the decoder's own format.
    void* Object() {
        EXPECT_TRUE(Wrap(nullptr));
        return static_cast<IProcess*>(m_pAggregator);
    }

    // The three operations that every face begins with.
    void ExpectUnknownSlots(void* face, unsigned long identity) {
        const unsigned int before = m_script.m_nReferences;
        EXPECT_EQ(CallSlot<unsigned int>(face, 0), before + 1);
        EXPECT_EQ(CallSlot<unsigned int>(face, 1), before);
        void* answered = nullptr;
        EXPECT_EQ((CallSlot<int, unsigned long, void**>(face, 2, identity, &answered)), 0);
        EXPECT_EQ(answered, face);
        CallSlot<unsigned int>(face, 1);
    }
};

TEST_F(SourceSlots, OfThePrimaryTableAnswerInOrder) {
    void* const object = Object();
    ExpectUnknownSlots(object, IID_IProcess);
    EXPECT_TRUE((CallSlot<bool, IStatus**>(object, 3, nullptr)));
    EXPECT_EQ(m_script.m_log.Count("start"), 1);
    EXPECT_TRUE((CallSlot<bool, IStatus**>(object, 4, nullptr)));
    EXPECT_EQ(m_script.m_log.Count("end"), 1);
    m_script.m_bInProcess = true;
    EXPECT_TRUE(CallSlot<bool>(object, 5));
    EXPECT_EQ(SlotOf(object, 6), Exported("_ZN18CSrcConvAggregatorD1Ev"));
    EXPECT_EQ(SlotOf(object, 7), Exported("_ZN18CSrcConvAggregatorD0Ev"));
    EXPECT_EQ(CallSlot<SWavFormat>(object, 8), kCompactDisc);
    unsigned char buffer[4];
    int read = 0;
    EAudioRawState state = ARS_END;
    EXPECT_TRUE((CallSlot<bool, unsigned char*, int, int*, EAudioRawState&, IStatus**>(object, 9, buffer, 4, &read,
                                                                                       state, nullptr)));
    EXPECT_EQ(read, 4);
    EXPECT_EQ(CallSlot<std::uint64_t>(object, 10), 17640U);
    EXPECT_EQ(CallSlot<std::uint64_t>(object, 11), 100U);
    EXPECT_EQ(CallSlot<std::int64_t>(object, 12), 4);
    EXPECT_EQ(CallSlot<std::uint64_t>(object, 13), 4410U);
    EXPECT_EQ(CallSlot<int>(object, 14), 2);
    EXPECT_EQ((CallSlot<std::uint64_t, int>(object, 15, 1)), 22U);
    const char* const texts[] = {"artist", "title", "album", "year", "genre"};
    for (std::size_t i = 0; i < 5; ++i) EXPECT_STREQ(CallSlot<const char*>(object, 16 + i), texts[i]);
    EXPECT_TRUE((CallSlot<bool, unsigned long, IStatus**>(object, 21, 7, nullptr)));
    EXPECT_EQ(m_script.m_seeks, std::vector<unsigned long>{7});
    EXPECT_EQ(CallSlot<SWavFormat>(object, 22), kCompactDisc);
}

TEST_F(SourceSlots, OfTheProcessFaceComeFirst) {
    void* const object = Object();
    EXPECT_EQ(object, static_cast<void*>(m_pAggregator));
}

TEST_F(SourceSlots, OfTheRawReaderFace) {
    void* const face = FaceBehind(Object(), 1);
    ExpectUnknownSlots(face, IID_IAudioRawReader);
    EXPECT_EQ(face, m_pStream);
    EXPECT_EQ(CallSlot<SWavFormat>(face, 3), kCompactDisc);
    unsigned char buffer[4];
    int read = 0;
    EAudioRawState state = ARS_END;
    EXPECT_TRUE((CallSlot<bool, unsigned char*, int, int*, EAudioRawState&, IStatus**>(face, 4, buffer, 4, &read, state,
                                                                                       nullptr)));
    EXPECT_EQ(read, 4);
    EXPECT_EQ(CallSlot<std::uint64_t>(face, 5), 17640U);
}

TEST_F(SourceSlots, OfTheBlockInfoFace) {
    void* const face = FaceBehind(Object(), 2);
    ExpectUnknownSlots(face, IID_IAudioRawBlockInfo);
    EXPECT_EQ(CallSlot<std::uint64_t>(face, 3), 100U);
    EXPECT_EQ(CallSlot<std::int64_t>(face, 4), 4);
    EXPECT_EQ(CallSlot<std::uint64_t>(face, 5), 4410U);
}

TEST_F(SourceSlots, OfTheIndexFace) {
    void* const face = FaceBehind(Object(), 3);
    ExpectUnknownSlots(face, IID_IIndexArray);
    EXPECT_EQ(CallSlot<int>(face, 3), 2);
    EXPECT_EQ((CallSlot<std::uint64_t, int>(face, 4, 0)), 11U);
}

TEST_F(SourceSlots, OfTheInfoFaceTitleStandsBeforeArtist) {
    void* const face = FaceBehind(Object(), 4);
    ExpectUnknownSlots(face, IID_IInfoReader);
    const char* const texts[] = {"title", "artist", "album", "year", "genre"};
    for (std::size_t i = 0; i < 5; ++i) EXPECT_STREQ(CallSlot<const char*>(face, 3 + i), texts[i]);
}

TEST_F(SourceSlots, OfTheSeekableFace) {
    void* const face = FaceBehind(Object(), 5);
    ExpectUnknownSlots(face, IID_ISeekable);
    EXPECT_TRUE((CallSlot<bool, unsigned long, IStatus**>(face, 3, 9, nullptr)));
    EXPECT_EQ(m_script.m_seeks, std::vector<unsigned long>{9});
}

TEST_F(SourceSlots, OfTheRealFormatFace) {
    void* const face = FaceBehind(Object(), 6);
    ExpectUnknownSlots(face, IID_IRealFormat);
    EXPECT_EQ(CallSlot<SWavFormat>(face, 3), kCompactDisc);
}

TEST_F(SourceSlots, HoldTheExportedFunctions) {
    using support::ExpectSlots;
    using support::TableOf;
    void* const object = Object();
    ExpectSlots(TableOf(object), {"_ZN18CSrcConvAggregator6AddRefEv",
                                  "_ZN18CSrcConvAggregator7ReleaseEv",
                                  "_ZN18CSrcConvAggregator14QueryInterfaceEmPPv",
                                  "_ZN18CSrcConvAggregator5StartEPP7IStatus",
                                  "_ZN18CSrcConvAggregator3EndEPP7IStatus",
                                  "_ZN18CSrcConvAggregator11IsInProcessEv",
                                  "_ZN18CSrcConvAggregatorD1Ev",
                                  "_ZN18CSrcConvAggregatorD0Ev",
                                  "_ZN18CSrcConvAggregator12GetRawFormatEv",
                                  "_ZN18CSrcConvAggregator7RawReadEPhiPiR14EAudioRawStatePP7IStatus",
                                  "_ZN18CSrcConvAggregator9GetRawLenEv",
                                  "_ZN18CSrcConvAggregator6GetPosEv",
                                  "_ZN18CSrcConvAggregator12GetBlockSizeEv",
                                  "_ZN18CSrcConvAggregator13GetDataLengthEv",
                                  "_ZN18CSrcConvAggregator14GetIndexNumberEv",
                                  "_ZN18CSrcConvAggregator8GetIndexEi",
                                  "_ZN18CSrcConvAggregator9GetArtistEv",
                                  "_ZN18CSrcConvAggregator8GetTitleEv",
                                  "_ZN18CSrcConvAggregator8GetAlbumEv",
                                  "_ZN18CSrcConvAggregator7GetYearEv",
                                  "_ZN18CSrcConvAggregator8GetGenreEv",
                                  "_ZN18CSrcConvAggregator4SeekEmPP7IStatus",
                                  "_ZN18CSrcConvAggregator13GetRealFormatEv"});
    ExpectSlots(TableOf(FaceBehind(object, 1)),
                {"_ZThn8_N18CSrcConvAggregator6AddRefEv", "_ZThn8_N18CSrcConvAggregator7ReleaseEv",
                 "_ZThn8_N18CSrcConvAggregator14QueryInterfaceEmPPv", "_ZThn8_N18CSrcConvAggregator12GetRawFormatEv",
                 "_ZThn8_N18CSrcConvAggregator7RawReadEPhiPiR14EAudioRawStatePP7IStatus",
                 "_ZThn8_N18CSrcConvAggregator9GetRawLenEv"});
    ExpectSlots(TableOf(FaceBehind(object, 2)),
                {"_ZThn16_N18CSrcConvAggregator6AddRefEv", "_ZThn16_N18CSrcConvAggregator7ReleaseEv",
                 "_ZThn16_N18CSrcConvAggregator14QueryInterfaceEmPPv", "_ZThn16_N18CSrcConvAggregator6GetPosEv",
                 "_ZThn16_N18CSrcConvAggregator12GetBlockSizeEv", "_ZThn16_N18CSrcConvAggregator13GetDataLengthEv"});
    ExpectSlots(TableOf(FaceBehind(object, 3)),
                {"_ZThn24_N18CSrcConvAggregator6AddRefEv", "_ZThn24_N18CSrcConvAggregator7ReleaseEv",
                 "_ZThn24_N18CSrcConvAggregator14QueryInterfaceEmPPv",
                 "_ZThn24_N18CSrcConvAggregator14GetIndexNumberEv", "_ZThn24_N18CSrcConvAggregator8GetIndexEi"});
    ExpectSlots(TableOf(FaceBehind(object, 4)),
                {"_ZThn32_N18CSrcConvAggregator6AddRefEv", "_ZThn32_N18CSrcConvAggregator7ReleaseEv",
                 "_ZThn32_N18CSrcConvAggregator14QueryInterfaceEmPPv", "_ZThn32_N18CSrcConvAggregator8GetTitleEv",
                 "_ZThn32_N18CSrcConvAggregator9GetArtistEv", "_ZThn32_N18CSrcConvAggregator8GetAlbumEv",
                 "_ZThn32_N18CSrcConvAggregator7GetYearEv", "_ZThn32_N18CSrcConvAggregator8GetGenreEv"});
    ExpectSlots(
        TableOf(FaceBehind(object, 5)),
        {"_ZThn40_N18CSrcConvAggregator6AddRefEv", "_ZThn40_N18CSrcConvAggregator7ReleaseEv",
         "_ZThn40_N18CSrcConvAggregator14QueryInterfaceEmPPv", "_ZThn40_N18CSrcConvAggregator4SeekEmPP7IStatus"});
    ExpectSlots(
        TableOf(FaceBehind(object, 6)),
        {"_ZThn48_N18CSrcConvAggregator6AddRefEv", "_ZThn48_N18CSrcConvAggregator7ReleaseEv",
         "_ZThn48_N18CSrcConvAggregator14QueryInterfaceEmPPv", "_ZThn48_N18CSrcConvAggregator13GetRealFormatEv"});
    support::ExpectTableLengths("_ZTV18CSrcConvAggregator", {23, 6, 6, 5, 8, 4, 4});
}

class TargetSlots : public testing::Test {
protected:
    TargetSlots() {
        m_targets.m_pEncoder = &m_script;
        EXPECT_TRUE(m_manager->CreateURLAudioTarget(&m_targets, &m_pStream, kCompactDisc, nullptr));
        m_pObject = static_cast<CTargetAggregator*>(static_cast<IAudioRawWriter*>(m_pStream));
    }
    ~TargetSlots() override { m_pStream->Release(); }

    void ExpectWrites(void* face, std::size_t slot) {
        unsigned char data[4] = {};
        EAudioRawState state = ARS_END;
        EXPECT_TRUE(
            (CallSlot<bool, unsigned char*, int, EAudioRawState&, IStatus**>(face, slot, data, 4, state, nullptr)));
        EXPECT_EQ(m_script.m_writeCalls.size(), 1U);
        EXPECT_EQ(CallSlot<SWavFormat>(face, slot + 1), kCompactDisc);
    }

    support::SEncoderScript m_script;
    support::CFakeTargetFactory m_targets;
    support::CManagerHold m_manager;
    IUnknown* m_pStream = nullptr;
    void* m_pObject = nullptr;
};

TEST_F(TargetSlots, OfThePrimaryTableAnswerInOrder) {
    EXPECT_EQ(CallSlot<unsigned int>(m_pObject, 0), 6U);
    EXPECT_EQ(CallSlot<unsigned int>(m_pObject, 1), 5U);
    void* face = nullptr;
    EXPECT_EQ((CallSlot<int, unsigned long, void**>(m_pObject, 2, IID_IProcess, &face)), 0);
    EXPECT_EQ(face, m_pObject);
    CallSlot<unsigned int>(m_pObject, 1);
    EXPECT_TRUE((CallSlot<bool, IStatus**>(m_pObject, 3, nullptr)));
    EXPECT_EQ(m_script.m_log.Count("start"), 1);
    EXPECT_TRUE((CallSlot<bool, IStatus**>(m_pObject, 4, nullptr)));
    EXPECT_EQ(m_script.m_log.Count("end"), 1);
    m_script.m_bInProcess = true;
    EXPECT_TRUE(CallSlot<bool>(m_pObject, 5));
    ExpectWrites(m_pObject, 6);
}

TEST_F(TargetSlots, OfTheRawWriterFace) {
    void* const face = FaceBehind(m_pObject, 1);
    EXPECT_EQ(face, m_pStream);
    EXPECT_EQ(CallSlot<unsigned int>(face, 0), 6U);
    EXPECT_EQ(CallSlot<unsigned int>(face, 1), 5U);
    ExpectWrites(face, 3);
}

TEST_F(TargetSlots, HoldTheExportedFunctions) {
    support::ExpectSlots(
        support::TableOf(m_pObject),
        {"_ZN17CTargetAggregator6AddRefEv", "_ZN17CTargetAggregator7ReleaseEv",
         "_ZN17CTargetAggregator14QueryInterfaceEmPPv", "_ZN17CTargetAggregator5StartEPP7IStatus",
         "_ZN17CTargetAggregator3EndEPP7IStatus", "_ZN17CTargetAggregator11IsInProcessEv",
         "_ZN17CTargetAggregator8RawWriteEPhiR14EAudioRawStatePP7IStatus", "_ZN17CTargetAggregator12GetRawFormatEv"});
    support::ExpectSlots(support::TableOf(FaceBehind(m_pObject, 1)),
                         {"_ZThn8_N17CTargetAggregator6AddRefEv", "_ZThn8_N17CTargetAggregator7ReleaseEv",
                          "_ZThn8_N17CTargetAggregator14QueryInterfaceEmPPv",
                          "_ZThn8_N17CTargetAggregator8RawWriteEPhiR14EAudioRawStatePP7IStatus",
                          "_ZThn8_N17CTargetAggregator12GetRawFormatEv"});
    support::ExpectTableLengths("_ZTV17CTargetAggregator", {8, 5});
}

// The interfaces of plug-ins and hosts: the slots that the library calls.

TEST(OpenerSlots, StandInTwoTablesSideBySide) {
    support::SDecoderScript decoder;
    support::CFakeDecoderComponent component("decoder", {"wav"});
    component.m_opener.m_eCapabilities = static_cast<EAuxFlags>(0x1234);
    component.m_opener.m_nState = 5;
    component.m_opener.m_newStream = [&] { return support::NewDecoder(decoder); };
    void* first = nullptr;
    ASSERT_EQ(component.QueryInterface(IID_IAudioFileOpener, &first), 0);
    EXPECT_EQ((CallSlot<EAuxFlags>(first, 0)), static_cast<EAuxFlags>(0x1234));
    IUnknown* stream = nullptr;
    EXPECT_TRUE((CallSlot<bool, const char*, IUnknown**, EAuxFlags, EAuxFlags, IStatus**>(
        first, 1, "/song.wav", &stream, AUX_NONE, AUX_NONE, nullptr)));
    ASSERT_NE(stream, nullptr);
    stream->Release();
    void* const second = FaceBehind(first, 1);
    EXPECT_EQ((CallSlot<unsigned int>(second, 3)), 5U);
    EXPECT_EQ((CallSlot<unsigned int>(second, 0)), 2U);
    EXPECT_EQ((CallSlot<unsigned int>(second, 1)), 1U);
    EXPECT_EQ((CallSlot<unsigned int>(second, 1)), 0U);
}

TEST(ExtensionListSlots, AreCountAndItem) {
    support::CFakeDecoderComponent component("decoder", {"wav", "aif"});
    void* const face = static_cast<IExtensionList*>(&component);
    EXPECT_EQ(CallSlot<int>(face, 3), 2);
    EXPECT_STREQ((CallSlot<const char*, int>(face, 4, 1)), "aif");
}

TEST(HandlerSlots, AreProtocolsAndFetch) {
    support::CFakeURLHandler handler("handler", 6);
    handler.m_localPath = "/local";
    const auto face = CComPtr<IURLSourceHandler>::Query(&handler, IID_IURLSourceHandler);
    EXPECT_EQ(CallSlot<unsigned int>(face.Get(), 3), 6U);
    char path[kLocalPathCapacity];
    EXPECT_TRUE((CallSlot<bool, const char*, char*, int, IStatus**>(face.Get(), 4, "http://x", path, 0, nullptr)));
    EXPECT_STREQ(path, "/local");
}

TEST(ConvertorSlots, AreThoseOfFactoryAndConvertor) {
    support::CFakeConvertorFactory factory;
    void* const face = static_cast<IConvertorFactory*>(&factory);
    CallSlot<void>(face, 3);
    EXPECT_EQ(factory.m_nReservedCalls, 1);
    const SHeldWavFormat from{kCompactDisc, 0};
    const SHeldWavFormat to{kStudio, 0};
    IAudioConvertor* convertor = nullptr;
    EXPECT_TRUE((CallSlot<bool, const SWavFormat*, const SWavFormat*, IAudioConvertor**, IStatus**>(
        face, 4, &from.m_format, &to.m_format, &convertor, nullptr)));
    ASSERT_NE(convertor, nullptr);
    unsigned char data[3] = {1, 2, 3};
    EXPECT_TRUE((CallSlot<bool, unsigned char*, int, int, IStatus**>(convertor, 3, data, 3, 0, nullptr)));
    EXPECT_EQ(CallSlot<int>(convertor, 4), 3);
    EXPECT_EQ(CallSlot<unsigned char*>(convertor, 5)[2], 3);
    convertor->Release();
}

TEST(TargetFactorySlots, TheThirdCreatesTheEncoder) {
    support::SEncoderScript encoder;
    support::CFakeTargetFactory factory;
    factory.m_pEncoder = &encoder;
    void* const face = static_cast<IURLAudioTargetFactory*>(&factory);
    IUnknown* stream = nullptr;
    EXPECT_TRUE((CallSlot<bool, IUnknown**, const SWavFormat&, IStatus**>(face, 2, &stream, kCompactDisc, nullptr)));
    ASSERT_NE(stream, nullptr);
    stream->Release();
}

TEST(DecoderSlots, OfAggregationAdvancedFormatAndSourceName) {
    support::SDecoderScript script;
    script.m_denied.clear();
    script.m_pSourceName = "/song.wav";
    script.m_advanced.m_held.m_nQualifier = 8;
    IUnknown* const stream = support::NewDecoder(script);
    auto inner = CComPtr<IAggregatable>::Query(stream, IID_IAggregatable);
    IUnknown* outer = stream;
    EXPECT_TRUE((CallSlot<bool, IUnknown*>(inner.Get(), 3, nullptr)));
    EXPECT_TRUE((CallSlot<bool, IUnknown**>(inner.Get(), 4, &outer)));
    EXPECT_EQ(outer, nullptr);
    void* name = nullptr;
    EXPECT_EQ((CallSlot<int, unsigned long, void**>(inner.Get(), 5, IID_ISourceName, &name)), 0);
    EXPECT_STREQ(CallSlot<const char*>(name, 4), "/song.wav");
    EXPECT_EQ(CallSlot<unsigned int>(inner.Get(), 6), 4U);
    EXPECT_EQ(CallSlot<unsigned int>(inner.Get(), 7), 3U);
    auto advanced = CComPtr<IAdvancedFormat>::Query(stream, IID_IAdvancedFormat);
    EXPECT_EQ(CallSlot<SAdvancedWavFormat>(advanced.Get(), 3).m_held.m_nQualifier, 8);
    static_cast<ISourceName*>(name)->Release();
    stream->Release();
}

}  // namespace

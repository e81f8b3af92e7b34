// Streams inside an outer object that counts as the manager's aggregators do.
#include "stream/AudioTargetOpener.h"
#include "stream/RawWriter.h"
#include "tests/plugins/sndfile/AudioFiles.h"
#include "tests/plugins/sndfile/PluginUnderTest.h"
#include "tests/support/ScratchDirectory.h"

namespace {

// Shares the inner object's count and dies when nobody but itself holds it. Answers identity 0 itself and leaves every
// other one to the inner object.
class COuter final : public IUnknown {
public:
    // Takes over the stream's one reference; asks it for `held` beside IAggregatable.
    COuter(IUnknown* stream, const std::vector<unsigned long>& held) : m_pInner(stream) {
        m_pInner->AddRef();
        m_pAggregatable = static_cast<IAggregatable*>(Hold(IID_IAggregatable));
        for (const unsigned long identity : held) Hold(identity);
        m_pAggregatable->SetAggregator(this);
    }

    // References that the outer object itself has on the inner one.
    unsigned int Holdings() const { return 1 + static_cast<unsigned int>(m_vFaces.size()); }

    unsigned int AddRef() override { return m_pAggregatable->InnerAddRef(); }

    unsigned int Release() override {
        const unsigned int count = m_pAggregatable->InnerRelease();
        if (count != Holdings()) return count;
        delete this;
        return 0;
    }

    int QueryInterface(unsigned long identity, void** face) override {
        if (identity != IID_IUnknown) return m_pAggregatable->InnerQueryInterface(identity, face);
        *face = this;
        AddRef();
        return 0;
    }

private:
    // The members stay as they are: each release comes back to this object's Release.
    ~COuter() {
        for (auto face = m_vFaces.rbegin(); face != m_vFaces.rend(); ++face) (*face)->Release();
        m_pInner->Release();
    }

    void* Hold(unsigned long identity) {
        void* face = nullptr;
        EXPECT_EQ(m_pInner->QueryInterface(identity, &face), 0) << identity;
        m_vFaces.push_back(static_cast<IUnknown*>(face));
        return face;
    }

    IUnknown* const m_pInner;
    IAggregatable* m_pAggregatable = nullptr;
    std::vector<IUnknown*> m_vFaces;
};

const std::vector<unsigned long> kRequired = {IID_IProcess, IID_IAudioRawReader, IID_IAudioRawBlockInfo};

IUnknown* Opened(const std::string& path) {
    IUnknown* stream = nullptr;
    EXPECT_TRUE(OpenSource(path, &stream, nullptr));
    return stream;
}

unsigned int CountOf(IUnknown* object) {
    object->AddRef();
    return object->Release();
}

// A file that offers every optional interface.
std::string RichFile(const CScratchDirectory& scratch) {
    const std::string cue =
        LittleEndian(1, 4) + LittleEndian(1, 4) + LittleEndian(9, 4) + "data" + LittleEndian(0, 8) + LittleEndian(9, 4);
    const std::string list = "INFO" + Chunk("INAM", std::string("Title\0", 6));
    return scratch.Write("x.wav",
                         WavFile({44100, 16, 1}, RandomBytes(2000), 1, Chunk("cue ", cue) + Chunk("LIST", list)));
}

}  // namespace

TEST(SndfileAggregation, StreamsAreHandedOutWithOneReference) {
    IUnknown* const stream = Opened(kVoice);
    EXPECT_EQ(stream->AddRef(), 2u);
    EXPECT_EQ(stream->Release(), 1u);
    EXPECT_EQ(stream->Release(), 0u);
    EXPECT_TRUE(Plugin().m_pReadyToFinish());
}

TEST(SndfileAggregation, QueryInterfaceKeepsTheRulesWithAndWithoutAnOuterObject) {
    CScratchDirectory scratch;
    IUnknown* const stream = Opened(RichFile(scratch));
    const auto aggregatable = CComPtr<IAggregatable>::Query(stream, IID_IAggregatable);
    for (const bool aggregated : {false, true}) {
        COuter* const outer = aggregated ? new COuter(stream, kRequired) : nullptr;
        const unsigned int count = CountOf(stream);
        EXPECT_EQ(aggregatable->InnerQueryInterface(IID_IProcess, nullptr), 3);
        void* face = stream;
        EXPECT_EQ(stream->QueryInterface(IID_IConvertorFactory, &face), 2);
        EXPECT_EQ(face, nullptr);
        for (const unsigned long identity :
             {IID_IUnknown, IID_IAggregatable, IID_IProcess, IID_IAudioRawReader, IID_IAudioRawBlockInfo, IID_ISeekable,
              IID_IInfoReader, IID_IIndexArray, IID_ISourceName, IID_IAdvancedFormat}) {
            ASSERT_EQ(stream->QueryInterface(identity, &face), 0) << identity;
            EXPECT_EQ(CountOf(stream), count + 1) << identity;
            EXPECT_EQ(static_cast<IUnknown*>(face)->Release(), count) << identity;
            ASSERT_EQ(aggregatable->InnerQueryInterface(identity, &face), 0) << identity;
            EXPECT_EQ(static_cast<IUnknown*>(face)->Release(), count) << identity;
        }
        EXPECT_EQ(count, aggregated ? outer->Holdings() + 2 : 2u);
    }
    stream->Release();
}

TEST(SndfileAggregation, EveryFaceGivesTheSameIdentity) {
    IUnknown* const stream = Opened(kVoice);
    CComPtr<IUnknown> first = CComPtr<IUnknown>::Query(stream, IID_IUnknown);
    for (const unsigned long identity : kRequired) {
        const auto face = CComPtr<IUnknown>::Query(stream, identity);
        EXPECT_EQ(CComPtr<IUnknown>::Query(face.Get(), IID_IUnknown).Get(), first.Get());
    }
    first.Reset();
    EXPECT_EQ(stream->Release(), 0u);
}

TEST(SndfileAggregation, OuterObjectHoldsFiveReferencesAndTheLastOutsideOneEndsBoth) {
    COuter* const outer = new COuter(Opened(kVoice), kRequired);
    EXPECT_EQ(outer->Holdings(), 5u);
    EXPECT_EQ(outer->AddRef(), 7u);
    EXPECT_EQ(outer->Release(), 6u);
    EXPECT_FALSE(Plugin().m_pReadyToFinish());
    EXPECT_EQ(outer->Release(), 0u);
    EXPECT_TRUE(Plugin().m_pReadyToFinish());
}

TEST(SndfileAggregation, EveryOptionalInterfaceIsOneReferenceMore) {
    CScratchDirectory scratch;
    std::vector<unsigned long> held = kRequired;
    held.insert(held.end(), {IID_IInfoReader, IID_ISeekable, IID_IIndexArray});
    COuter* const outer = new COuter(Opened(RichFile(scratch)), held);
    EXPECT_EQ(outer->Holdings(), 8u);
    EXPECT_EQ(CountOf(outer), 9u);
    EXPECT_EQ(outer->Release(), 0u);
    EXPECT_TRUE(Plugin().m_pReadyToFinish());
}

TEST(SndfileAggregation, AFaceThatTheHostHoldsKeepsBothAlive) {
    COuter* const outer = new COuter(Opened(kVoice), kRequired);
    void* face = nullptr;
    ASSERT_EQ(outer->QueryInterface(IID_ISourceName, &face), 0);
    EXPECT_EQ(outer->Release(), 6u);
    auto* const name = static_cast<ISourceName*>(face);
    EXPECT_EQ(name->GetSourceName(), kVoice);
    EXPECT_EQ(name->Release(), 0u);
    EXPECT_TRUE(Plugin().m_pReadyToFinish());
}

TEST(SndfileAggregation, QueriesOfInnerFacesReachTheOuterObject) {
    COuter* const outer = new COuter(Opened(kVoice), kRequired);
    const auto process = CComPtr<IProcess>::Query(outer, IID_IProcess);
    EXPECT_EQ(CComPtr<IUnknown>::Query(process.Get(), IID_IUnknown).Get(), outer);
    IUnknown* aggregator = nullptr;
    const auto aggregatable = CComPtr<IAggregatable>::Query(process.Get(), IID_IAggregatable);
    EXPECT_TRUE(aggregatable->GetAggregator(&aggregator));
    EXPECT_EQ(aggregator, outer);
    aggregator->Release();
    outer->Release();
}

TEST(SndfileAggregation, AStreamWhoseOuterObjectLeftCountsForItselfAgain) {
    IUnknown* const stream = Opened(kVoice);
    const auto aggregatable = CComPtr<IAggregatable>::Query(stream, IID_IAggregatable);
    auto* const outer = new COuter(stream, {});
    EXPECT_EQ(CountOf(stream), outer->Holdings() + 2);
    aggregatable->SetAggregator(nullptr);
    EXPECT_EQ(CComPtr<IUnknown>::Query(stream, IID_IUnknown).Get(), stream);
    aggregatable->SetAggregator(outer);
    stream->Release();
}

TEST(SndfileAggregation, OfAnEncoderHoldsFourReferences) {
    CScratchDirectory scratch;
    const auto opener = CComPtr<IAudioTargetOpener>::Query(Component(1).Get(), IID_IAudioTargetOpener);
    CComPtr<IAudioTarget> target;
    ASSERT_TRUE(opener->OpenTarget((scratch / "x.wav").c_str(), "wav", target.Out(), nullptr));
    IUnknown* stream = nullptr;
    ASSERT_TRUE(target->GetTargetFactory()->CreateTarget(&stream, {44100, 16, 2}, nullptr));
    target.Reset();
    EXPECT_FALSE(Plugin().m_pReadyToFinish());
    COuter* const outer = new COuter(stream, {IID_IProcess, IID_IAudioRawWriter});
    EXPECT_EQ(outer->Holdings(), 4u);
    EXPECT_EQ(CountOf(outer), 5u);
    EXPECT_EQ(outer->Release(), 0u);
    EXPECT_TRUE(Plugin().m_pReadyToFinish());
}

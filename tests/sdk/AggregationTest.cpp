// Streams as inner objects of the library's aggregators and of an outer object of the test.
#include <gtest/gtest.h>

#include "com/InterfaceIds.h"
#include "sdk/DecoderStream.h"
#include "sdk/EncoderStream.h"
#include "stream/SrcConvAggregator.h"
#include "stream/TargetAggregator.h"
#include "tests/sdk/CountingSound.h"
#include "tests/support/ManagerHold.h"
#include "tests/support/StreamQueries.h"

namespace {

using support::CodeOf;

// Counts what reaches it and offers nothing.
class COuter final : public IUnknown {
public:
    unsigned int AddRef() override { return ++m_nAdded + 100; }
    unsigned int Release() override { return ++m_nReleased + 200; }
    int QueryInterface(unsigned long, void** face) override {
        ++m_nQueried;
        *face = nullptr;
        return kInterfaceMissing;
    }

    unsigned int m_nAdded = 0;
    unsigned int m_nReleased = 0;
    unsigned int m_nQueried = 0;
};

CComPtr<IAggregatable> MakeStream(SSoundPlan plan = {}) {
    return CComPtr<IAggregatable>(new CDecoderStream("/some.count", std::make_unique<CCountingSound>(std::move(plan))));
}

TEST(SdkAggregation, EveryFaceOfAFreeStreamSharesOneCount) {
    const auto stream = MakeStream();
    const auto reader = CComPtr<IAudioRawReader>::Query(stream.Get(), IID_IAudioRawReader);
    EXPECT_EQ(reader->AddRef(), 3U);
    EXPECT_EQ(stream->Release(), 2U);
    void* identity = nullptr;
    ASSERT_EQ(reader->QueryInterface(IID_IUnknown, &identity), 0);
    EXPECT_EQ(identity, stream.Get());
    EXPECT_EQ(stream->Release(), 2U);
}

TEST(SdkAggregation, FacesGoToTheOuterObjectAndInnerOperationsDoNot) {
    const auto stream = MakeStream();
    const auto reader = CComPtr<IAudioRawReader>::Query(stream.Get(), IID_IAudioRawReader);
    COuter outer;
    ASSERT_TRUE(stream->SetAggregator(&outer));
    EXPECT_EQ(reader->AddRef(), 101U);
    EXPECT_EQ(reader->Release(), 201U);
    EXPECT_EQ(CodeOf(reader.Get(), IID_IProcess), kInterfaceMissing);
    EXPECT_EQ(outer.m_nQueried, 1U);
    void* process = nullptr;
    EXPECT_EQ(stream->InnerQueryInterface(IID_IProcess, &process), 0);
    EXPECT_EQ(outer.m_nAdded, 2U);
    EXPECT_EQ(stream->InnerAddRef(), 3U);
    EXPECT_EQ(stream->InnerRelease(), 2U);
    ASSERT_TRUE(stream->SetAggregator(nullptr));
    EXPECT_EQ(reader->AddRef(), 3U);
    EXPECT_EQ(reader->Release(), 2U);
}

TEST(SdkAggregation, SourceAggregatorEndsTheStreamWithItsLastReference) {
    const support::CManagerHold manager;
    IUnknown* stream = MakeStream().Detach();
    CSrcConvAggregator* const source = new CSrcConvAggregator(manager.Get(), &stream, nullptr);
    ASSERT_TRUE(source->IsValid());
    EXPECT_EQ(CodeOf(stream, IID_ISourceName), 0);
    EXPECT_EQ(CodeOf(stream, IID_IIndexArray), 0) << "the aggregator's own";
    EXPECT_TRUE(CLiveObject::AnyAlive());
    EXPECT_EQ(stream->Release(), 0U);
    EXPECT_FALSE(CLiveObject::AnyAlive());
}

// Never writes.
class CNoEncoding final : public CFileEncoding {
public:
    SWavFormat AcceptFormat(const STargetRequest&, const SWavFormat& format) override { return format; }
    std::unique_ptr<CSoundWriter> CreateWriter(const STargetRequest&, const SWavFormat&) override { return nullptr; }
};

TEST(SdkAggregation, TargetAggregatorEndsTheStreamWithItsLastReference) {
    const support::CManagerHold manager;
    CNoEncoding encoding;
    const SWavFormat format{8000, 16, 1};
    IUnknown* stream = CComPtr<IAggregatable>(new CEncoderStream(encoding, {}, format)).Detach();
    CTargetAggregator* const target = new CTargetAggregator(manager.Get(), &stream, format);
    ASSERT_TRUE(target->IsValid());
    EXPECT_TRUE(CLiveObject::AnyAlive());
    EXPECT_EQ(stream->Release(), 0U);
    EXPECT_FALSE(CLiveObject::AnyAlive());
}

}  // namespace

// Convertor components and the convertors that aggregators drive.
#include <gtest/gtest.h>

#include <vector>

#include "sdk/Convertor.h"
#include "tests/support/StreamQueries.h"

namespace {

using support::TextOf;
using CBytes = std::vector<unsigned char>;

// Hands the frames on one call late, three bytes each as they are.
class CLateConversion final : public CConversion {
public:
    explicit CLateConversion(const bool& restartFails) : m_bRestartFails(restartFails) {}

    void Write(const unsigned char* data, std::int64_t frames, CByteQueue& output) override {
        if (data[0] == 255) Refuse("a bad frame");
        Hand(output);
        m_waiting.assign(data, data + frames * 3);
    }
    void Finish(std::int64_t /*frames*/, CByteQueue& output) override { Hand(output); }
    void Restart() override {
        if (m_bRestartFails) Refuse("cannot begin again");
        m_waiting.clear();
    }
    std::uint64_t GetClippedSamples() const override { return 7; }

private:
    void Hand(CByteQueue& output) {
        if (!m_waiting.empty()) std::memcpy(output.Reserve(m_waiting.size()), m_waiting.data(), m_waiting.size());
        output.Commit(m_waiting.size());
        m_waiting.clear();
    }

    const bool& m_bRestartFails;
    CBytes m_waiting;
};

class CLateConvertor final : public CConvertorComponent<> {
public:
    CLateConvertor() : CConvertorComponent("Late Convertor") {}

    SHeldWavFormat m_from = kUnsetWavFormat;
    SHeldWavFormat m_to = kUnsetWavFormat;
    bool m_bRestartFails = false;

private:
    std::unique_ptr<CConversion> CreateConversion(const SHeldWavFormat& from, const SHeldWavFormat& to) override {
        if (to.m_nQualifier == 9) Refuse("no such qualifier");
        m_from = from;
        m_to = to;
        return std::make_unique<CLateConversion>(m_bRestartFails);
    }
};

constexpr SHeldWavFormat kFormat{{8000, 24, 1}, 0};

class SdkConvertor : public testing::Test {
protected:
    CComPtr<IAudioConvertor> Create(const SHeldWavFormat& from = kFormat, const SHeldWavFormat& to = kFormat) {
        CComPtr<IAudioConvertor> convertor;
        EXPECT_TRUE(m_component.CreateConvertor(&from.m_format, &to.m_format, convertor.Out(), nullptr));
        return convertor;
    }

    static CBytes Convert(IAudioConvertor& convertor, CBytes input) {
        EXPECT_TRUE(convertor.Convert(input.data(), static_cast<int>(input.size()), 0, nullptr));
        return CBytes(convertor.GetOutputData(), convertor.GetOutputData() + convertor.GetOutputLength());
    }

    static CBytes Tail(IAudioConvertor& convertor) {
        EXPECT_TRUE(convertor.Convert(nullptr, 0, 0, nullptr));
        return CBytes(convertor.GetOutputData(), convertor.GetOutputData() + convertor.GetOutputLength());
    }

    CLateConvertor m_component;
};

TEST_F(SdkConvertor, ReadsTheQualifierBehindEachRecord) {
    Create({{8000, 24, 1}, 3}, {{16000, 32, 2}, 4});
    EXPECT_EQ(m_component.m_from, (SHeldWavFormat{{8000, 24, 1}, 3}));
    EXPECT_EQ(m_component.m_to, (SHeldWavFormat{{16000, 32, 2}, 4}));
}

TEST_F(SdkConvertor, RefusalIsAStatusAndNoConvertor) {
    const SHeldWavFormat bad{{8000, 24, 1}, 9};
    CComPtr<IStatus> status;
    IAudioConvertor* convertor = reinterpret_cast<IAudioConvertor*>(&m_component);
    EXPECT_FALSE(m_component.CreateConvertor(&kFormat.m_format, &bad.m_format, &convertor, status.Out()));
    EXPECT_EQ(convertor, nullptr);
    EXPECT_STREQ(TextOf(status), "no such qualifier");
    EXPECT_FALSE(m_component.CreateConvertor(nullptr, &bad.m_format, &convertor, status.Out()));
    EXPECT_EQ(status->GetAudioError(), AE_BAD_ARGUMENT);
    EXPECT_FALSE(m_component.CreateConvertor(&kUnsetWavFormat.m_format, &kFormat.m_format, &convertor, status.Out()));
    EXPECT_STREQ(TextOf(status), "no conversion for -1 Hz, -1 bits, -1 channels");
}

TEST_F(SdkConvertor, PutsBrokenFramesTogether) {
    const auto convertor = Create();
    EXPECT_EQ(Convert(*convertor, {1}), CBytes{});
    EXPECT_EQ(Convert(*convertor, {2}), CBytes{});
    EXPECT_EQ(Convert(*convertor, {3, 4, 5}), CBytes{});
    EXPECT_EQ(Convert(*convertor, {6, 7, 8, 9}), (CBytes{1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(Tail(*convertor), (CBytes{7, 8, 9}));
    EXPECT_EQ(Tail(*convertor), CBytes{});
}

TEST_F(SdkConvertor, KeepsWhatTheCallersBufferDoesNotHold) {
    const auto convertor = Create();
    CBytes large(300);
    for (std::size_t i = 0; i < large.size(); ++i) large[i] = static_cast<unsigned char>(i % 250);
    EXPECT_EQ(Convert(*convertor, large), CBytes{});
    // 3 bytes in permit 3 and 15 bytes of headroom out.
    CBytes output = Convert(*convertor, {1, 2, 3});
    EXPECT_EQ(output.size(), 18U);
    for (;;) {
        const CBytes piece = Tail(*convertor);
        if (piece.empty()) break;
        EXPECT_LE(piece.size(), 30U);
        output.insert(output.end(), piece.begin(), piece.end());
    }
    large.insert(large.end(), {1, 2, 3});
    EXPECT_EQ(output, large);
}

TEST_F(SdkConvertor, FailureFailsWhoeverDrivesItAndTheNextBytesBeginANewStream) {
    const auto convertor = Create();
    Convert(*convertor, {1, 2, 3});
    CBytes bad{255, 0, 0};
    CComPtr<IStatus> status;
    EXPECT_FALSE(convertor->Convert(bad.data(), 3, 0, status.Out()));
    EXPECT_STREQ(TextOf(status), "a bad frame");
    EXPECT_EQ(convertor->GetOutputLength(), -1);
    EXPECT_EQ(Convert(*convertor, {4, 5, 6}), CBytes{});
    EXPECT_EQ(Tail(*convertor), (CBytes{4, 5, 6}));
    EXPECT_FALSE(convertor->Convert(nullptr, 3, 0, nullptr));
    EXPECT_EQ(convertor->GetOutputLength(), -1);
    EXPECT_FALSE(convertor->Convert(bad.data(), -1, 0, nullptr));
}

TEST_F(SdkConvertor, NothingOfABrokenStreamIsHandedOutAtItsEnd) {
    const auto convertor = Create();
    Convert(*convertor, {1, 2, 3, 4, 5, 6});
    CBytes bad{255, 0, 0};
    EXPECT_FALSE(convertor->Convert(bad.data(), 3, 0, nullptr));
    for (int i = 0; i < 2; ++i) {
        CComPtr<IStatus> status;
        EXPECT_FALSE(convertor->Convert(nullptr, 0, 0, status.Out()));
        EXPECT_STREQ(TextOf(status), "the stream is broken by an earlier failure");
        EXPECT_EQ(convertor->GetOutputLength(), -1);
    }
    EXPECT_EQ(Convert(*convertor, {7, 8, 9}), CBytes{});
    EXPECT_EQ(Tail(*convertor), (CBytes{7, 8, 9}));
}

TEST_F(SdkConvertor, BytesAfterTheEndBeginANewStream) {
    const auto convertor = Create();
    Convert(*convertor, {1, 2, 3, 9});
    EXPECT_EQ(Tail(*convertor), (CBytes{1, 2, 3}));
    EXPECT_EQ(Convert(*convertor, {4, 5, 6}), CBytes{});
    EXPECT_EQ(Tail(*convertor), (CBytes{4, 5, 6})) << "the frame begun before the end is dropped";
}

TEST_F(SdkConvertor, RestartThatFailsIsTriedAgainWithTheNextBytes) {
    const auto convertor = Create();
    CBytes bytes{1, 2, 3};
    Convert(*convertor, bytes);
    Tail(*convertor);
    m_component.m_bRestartFails = true;
    for (int i = 0; i < 2; ++i) {
        CComPtr<IStatus> status;
        EXPECT_FALSE(convertor->Convert(bytes.data(), 3, 0, status.Out()));
        EXPECT_STREQ(TextOf(status), "cannot begin again");
    }
    CComPtr<IStatus> status;
    EXPECT_FALSE(convertor->Convert(nullptr, 0, 0, status.Out()));
    EXPECT_STREQ(TextOf(status), "the stream is broken by an earlier failure");
    m_component.m_bRestartFails = false;
    EXPECT_EQ(Convert(*convertor, {4, 5, 6}), CBytes{});
    EXPECT_EQ(Tail(*convertor), (CBytes{4, 5, 6}));
}

TEST_F(SdkConvertor, TellsClippedSamples) {
    const auto clipping = CComPtr<IClippingCount>::Query(Create().Get(), IID_IClippingCount);
    ASSERT_TRUE(clipping);
    EXPECT_EQ(clipping->GetClippedSamples(), 7U);
}

TEST_F(SdkConvertor, OneReleaseTooManyOfTheComponentDoesNotBlock) {
    EXPECT_EQ(m_component.AddRef(), 1U);
    EXPECT_EQ(m_component.Release(), 0U);
    EXPECT_EQ(m_component.Release(), 0U);
    EXPECT_EQ(m_component.AddRef(), 1U);
    EXPECT_TRUE(m_component.IsSupported(AF_BASIC));
    EXPECT_FALSE(m_component.IsSupported(AF_ADVANCED_FORMATS));
    EXPECT_FALSE(m_component.EnableSupport(AF_BASIC, false));
}

}  // namespace

// The convertor template.
#include "stream/ClippingCount.h"
#include "stream/Convertor.h"
#include "tests/examples/ExamplesTest.h"

namespace {

class WidthConvertor : public CExamplesTest {
protected:
    // One channel, by the convertor that is loaded alone.
    CComPtr<IAudioConvertor> Create(int fromBits, int toBits) const {
        CComPtr<IAudioComponent> component;
        EXPECT_TRUE(m_manager->GetComponent(0, component.Out()));
        const SHeldWavFormat from{{48000, fromBits, 1}, kIntegerSamples};
        const SHeldWavFormat to{{48000, toBits, 1}, kIntegerSamples};
        CComPtr<IAudioConvertor> convertor;
        EXPECT_TRUE(CComPtr<IConvertorFactory>::Query(component.Get(), IID_IConvertorFactory)
                        ->CreateConvertor(&from.m_format, &to.m_format, convertor.Out(), nullptr));
        return convertor;
    }
};

// Little-endian.
std::string Packed(const std::vector<int>& samples, int bytes) {
    std::string packed;
    for (const int sample : samples) {
        for (int i = 0; i < bytes; ++i) packed += static_cast<char>(sample >> (8 * i));
    }
    return packed;
}

TEST_F(WidthConvertor, NarrowsToTheNearestValueThatThereIs) {
    Add("convertor", "width_convertor");
    Load();
    const auto convertor = Create(24, 16);
    ASSERT_TRUE(convertor);
    std::string samples = Packed({0x7F, 0x80, -0x80, -0x81, -0x800000, 0x7FFF7F, 0x7FFF80, 0x7FFFFF}, 3);
    ASSERT_TRUE(convertor->Convert(reinterpret_cast<unsigned char*>(samples.data()), static_cast<int>(samples.size()),
                                   0, nullptr));
    const std::string narrowed(reinterpret_cast<const char*>(convertor->GetOutputData()),
                               static_cast<std::size_t>(convertor->GetOutputLength()));
    EXPECT_EQ(narrowed, Packed({0, 1, 0, -1, -0x8000, 0x7FFF, 0x7FFF, 0x7FFF}, 2));
    EXPECT_EQ(CComPtr<IClippingCount>::Query(convertor.Get(), IID_IClippingCount)->GetClippedSamples(), 2U);
}

TEST_F(WidthConvertor, WidensAndKeepsTheRate) {
    Add("decoder", "plain_decoder");
    Add("convertor", "width_convertor");
    Load();
    const std::string file = PlainFile(1000);
    const std::string path = m_scratch.Write("some.plain", file);
    const SWavFormat wide{48000, 24, 2};
    const std::string widened = ReadAll(Open(path, &wide));
    ASSERT_EQ(widened.size(), 1000U * 6);
    for (std::size_t i = 0; i < 2000; ++i) {
        ASSERT_EQ(widened[3 * i], 0) << i;
        ASSERT_EQ(widened.substr(3 * i + 1, 2), SamplesOf(file).substr(2 * i, 2)) << i;
    }
    const SWavFormat resampled{44100, 16, 2};
    const auto stream = Open(path, &resampled);
    CComPtr<IStatus> status;
    EXPECT_FALSE(CComPtr<IProcess>::Query(stream.Get(), IID_IProcess)->Start(status.Out()));
    EXPECT_STREQ(support::TextOf(status), "the sample rate cannot be changed");
}

}  // namespace

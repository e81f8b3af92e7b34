// The convertor template.

#include "tests/examples/ExamplesTest.h"

namespace {

using WidthConvertor = CExamplesTest;

TEST_F(WidthConvertor, WidensAndRounds) {
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

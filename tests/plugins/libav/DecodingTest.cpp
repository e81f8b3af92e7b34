// The samples, the format and the length of every kind of file.
#include <cmath>

#include "tests/plugins/libav/DecoderUnderTest.h"
#include "tests/plugins/libav/MediaTable.h"

namespace {

void ExpectFormat(const SSource& source, const SWavFormat& format) {
    EXPECT_TRUE((SHeldWavFormat{source.m_reader->GetRawFormat(), 0} == SHeldWavFormat{format, 0}));
}

class LosslessFile : public testing::TestWithParam<SLosslessFile> {};
class LossyFile : public testing::TestWithParam<SLossyFile> {};

// 32-bit floats rounded to the nearest of 16 bits.
std::string RoundedTo16(const std::string& floats) {
    std::string rounded;
    for (std::size_t at = 0; at + 4 <= floats.size(); at += 4) {
        float sample = 0;
        std::memcpy(&sample, floats.data() + at, 4);
        const long value = std::lrint(std::clamp(sample * 32768.0f, -32768.0f, 32767.0f));
        rounded += LittleEndian(static_cast<std::uint16_t>(value), 2);
    }
    return rounded;
}

TEST_P(LosslessFile, DeliversTheSamplesThatWereCompressed) {
    SSource source(Media(GetParam().m_strName));
    ExpectFormat(source, GetParam().m_format);
    const std::uint64_t length = source.m_blocks->GetDataLength();
    const std::string samples = source.ReadOn();
    EXPECT_EQ(source.m_strFailure, "");
    const std::string original = Content(Media(GetParam().m_strOriginal + std::string(".pcm")));
    // The picture's last frame is longer than the sound.
    const bool padded = std::string(GetParam().m_strName) == "deep.mxf";
    EXPECT_TRUE(samples.substr(0, padded ? original.size() : samples.size()) == original);
    EXPECT_EQ(length * static_cast<std::uint64_t>(BlockSizeOf(GetParam().m_format)), samples.size());
    EXPECT_EQ(source.m_reader->GetRawLen(), samples.size());
}

TEST_P(LossyFile, DeliversWhatTheCodecMakesOfItRoundedTo16Bits) {
    SSource source(Media(GetParam().m_strName));
    ExpectFormat(source, GetParam().m_format);
    const std::uint64_t length = source.m_blocks->GetDataLength();
    const std::string samples = source.ReadOn();
    EXPECT_EQ(source.m_strFailure, "");
    const auto block = static_cast<std::uint64_t>(BlockSizeOf(GetParam().m_format));
    const std::string made = RoundedTo16(Content(Media(GetParam().m_strName + std::string(".f32"))));
    const std::uint64_t frames = GetParam().m_nFrames != 0 ? GetParam().m_nFrames : made.size() / block;
    EXPECT_EQ(samples.size() / block, frames);
    EXPECT_TRUE(samples == made.substr(0, frames * block));
    EXPECT_EQ(length, frames);
}

INSTANTIATE_TEST_SUITE_P(Libav, LosslessFile, testing::ValuesIn(kLosslessFiles),
                         [](const auto& parameter) { return TestNameOf(parameter.param.m_strName); });
INSTANTIATE_TEST_SUITE_P(Libav, LossyFile, testing::ValuesIn(kLossyFiles),
                         [](const auto& parameter) { return TestNameOf(parameter.param.m_strName); });

}  // namespace

// Seeking, compared with one linear read.
#include <numeric>
#include <random>

#include "tests/plugins/libav/DecoderUnderTest.h"
#include "tests/plugins/libav/MediaTable.h"
#include "tests/support/ScratchDirectory.h"

namespace {

class LosslessSeek : public testing::TestWithParam<SLosslessFile> {};
class LossySeek : public testing::TestWithParam<SLossyFile> {};

constexpr std::uint64_t kPiece = 2000;

// Around the middle, where no shortcut leads, at both ends and anywhere.
std::vector<std::uint64_t> TargetsIn(std::uint64_t length) {
    std::vector<std::uint64_t> targets = {length / 2, 1, length - 1, length / 2 + 1, length, length / 2 - 1, 0};
    std::mt19937_64 random(11);
    for (int i = 0; i < 12; ++i) targets.push_back(random() % length);
    return targets;
}

// Sum of the differences when `samples` began `shift` values further on in `linear` than at `at`.
double Distance(const std::string& samples, const std::string& linear, std::size_t at, int shift) {
    double sum = 0;
    for (std::size_t i = 0; i < samples.size() / 2; ++i) {
        const auto index = static_cast<std::ptrdiff_t>(at + i) + shift;
        if (index < 0 || index * 2 + 2 > static_cast<std::ptrdiff_t>(linear.size())) continue;
        sum += std::abs(Sample16(samples, i) - Sample16(linear, static_cast<std::size_t>(index)));
    }
    return sum;
}

// Whether the noisy samples fit nowhere in the neighbourhood as well as where they should be.
void ExpectInPlace(const std::string& samples, const std::string& linear, std::size_t at, int channels) {
    const double here = Distance(samples, linear, at, 0);
    for (const int frames : {-1536, -256, -2, -1, 1, 2, 256, 1536}) {
        EXPECT_LT(here, 0.7 * Distance(samples, linear, at, frames * channels)) << frames << " frames off";
    }
}

TEST_P(LosslessSeek, LandsExactlyWhereALinearReadWouldBe) {
    SSource source(Media(GetParam().m_strName));
    const std::string linear = source.ReadOn();
    const auto block = static_cast<std::uint64_t>(source.m_blocks->GetBlockSize());
    for (const std::uint64_t target : TargetsIn(linear.size() / block)) {
        ASSERT_TRUE(source.m_seekable->Seek(target, nullptr)) << target;
        EXPECT_EQ(source.m_blocks->GetPos(), target);
        ASSERT_TRUE(source.ReadOn(kPiece * block) == linear.substr(target * block, kPiece * block)) << target;
    }
}

TEST_P(LossySeek, LandsExactlyWhereALinearReadWouldBe) {
    SSource source(Media(GetParam().m_strName));
    const std::string linear = source.ReadOn();
    const auto block = static_cast<std::uint64_t>(source.m_blocks->GetBlockSize());
    for (const std::uint64_t target : TargetsIn(linear.size() / block)) {
        ASSERT_TRUE(source.m_seekable->Seek(target, nullptr)) << target;
        EXPECT_EQ(source.m_blocks->GetPos(), target);
        const std::string samples = source.ReadOn(kPiece * block);
        const std::string expected = linear.substr(target * block, kPiece * block);
        ASSERT_EQ(samples.size(), expected.size()) << target;
        ASSERT_LE(GreatestDifference(samples, expected), GetParam().m_nTolerance) << target;
        const bool whole = samples.size() == kPiece * block && target > 2 * kPiece;
        if (GetParam().m_nTolerance == kFilledUp && whole) {
            ExpectInPlace(samples, linear, target * block / 2, GetParam().m_format.nChannels);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Libav, LosslessSeek, testing::ValuesIn(kLosslessFiles),
                         [](const auto& parameter) { return TestNameOf(parameter.param.m_strName); });
INSTANTIATE_TEST_SUITE_P(Libav, LossySeek, testing::ValuesIn(kLossyFiles),
                         [](const auto& parameter) { return TestNameOf(parameter.param.m_strName); });

TEST(LibavSeek, BeyondTheEndIsRefusedAndChangesNothing) {
    SSource source(Media("aac.m4a"));
    ASSERT_TRUE(source.m_seekable->Seek(100000, nullptr));
    EXPECT_EQ(ReasonOf([&](IStatus** status) { return source.m_seekable->Seek(176402, status); }),
              "aac.m4a: frame 176402 is beyond the end (176401 frames)");
    EXPECT_EQ(source.m_blocks->GetPos(), 100000u);
    EXPECT_EQ(source.ReadOn().size(), 76401u * 4);
}

TEST(LibavSeek, BeyondAnEndThatIsNotKnownIsRefusedAndChangesNothing) {
    CScratchDirectory scratch;
    RunTool("ffmpeg -i '" + Media("source.wav") + "' -t 0.5 -strict -2 -c:a dca " + scratch / "x.wav");
    SSource source(scratch / "x.wav");
    ASSERT_EQ(source.m_blocks->GetDataLength(), 0u);
    ASSERT_TRUE(source.m_seekable->Seek(20000, nullptr));
    EXPECT_EQ(ReasonOf([&](IStatus** status) { return source.m_seekable->Seek(1000000, status); }),
              "x.wav: cannot seek to frame 1000000: the sound ends after 22528 frames");
    EXPECT_EQ(source.m_blocks->GetPos(), 20000u);
    EXPECT_EQ(source.ReadOn().size(), 2528u * 4);
    EXPECT_EQ(source.m_blocks->GetDataLength(), 22528u);
}

TEST(LibavSeek, StartAfterEndBeginsAtTheFirstFrameAgain) {
    SSource source(Media("one.ac3"));
    const std::string first = source.ReadOn();
    ASSERT_TRUE(source.m_process->End(nullptr));
    ASSERT_TRUE(source.m_process->Start(nullptr));
    EXPECT_TRUE(source.ReadOn() == first);
}

}  // namespace

// The heap as decoder and encoder use it: quiet once a sound runs. What the codec libraries take for themselves does
// not count.
#include "tests/plugins/sndfile/AudioFiles.h"
#include "tests/plugins/sndfile/SinkUnderTest.h"
#include "tests/support/Heap.h"
#include "tests/support/ScratchDirectory.h"

namespace {

constexpr SWavFormat kFormat{44100, 16, 2};
constexpr int kBlockFrames = 400;
constexpr int kBlocks = 300;

class SndfileAllocation : public testing::TestWithParam<const char*> {
protected:
    std::string Path() const { return m_scratch / (std::string("sound.") + GetParam()); }

    CScratchDirectory m_scratch;
};

TEST_P(SndfileAllocation, WritingAndReadingAllocateNothing) {
    if (!kHeapIsReplaced) GTEST_SKIP() << kHeapIsTaken;
    std::string block = RandomBytes(static_cast<std::size_t>(kBlockFrames * BlockSizeOf(kFormat)));
    auto* const data = reinterpret_cast<unsigned char*>(block.data());
    const int size = static_cast<int>(block.size());
    EAudioRawState state = ARS_MORE;
    {
        const SSink sink(Path(), GetParam(), kFormat);
        ASSERT_TRUE(sink.m_process->Start(nullptr));
        int written = 0;
        const int before = AllocationCount();
        ASSERT_GT(before, 0);
        for (int i = 0; i < kBlocks; ++i) written += sink.m_writer->RawWrite(data, size, state, nullptr);
        EXPECT_EQ(AllocationCount(), before);
        EXPECT_EQ(written, kBlocks);
        ASSERT_TRUE(sink.m_process->End(nullptr));
    }
    const SSource source(Path());
    ASSERT_TRUE(source.m_process->Start(nullptr));
    int filled = 0;
    const int before = AllocationCount();
    for (int i = 0; i < kBlocks; ++i) {
        int read = 0;
        filled += source.m_reader->RawRead(data, size, &read, state, nullptr) && read == size;
    }
    EXPECT_EQ(AllocationCount(), before);
    EXPECT_EQ(filled, kBlocks);
}

INSTANTIATE_TEST_SUITE_P(Formats, SndfileAllocation, testing::Values("wav", "flac", "ogg", "mp3"),
                         [](const auto& test) { return std::string(test.param); });

}  // namespace

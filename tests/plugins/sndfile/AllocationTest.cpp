// The heap as decoder and encoder use it: quiet once a sound runs. What the codec libraries take for themselves does
// not count.
#include <cstdlib>
#include <new>

#include "tests/plugins/sndfile/AudioFiles.h"
#include "tests/plugins/sndfile/SinkUnderTest.h"
#include "tests/support/ScratchDirectory.h"

namespace {

int g_nAllocations = 0;

}  // namespace

// Inlined, a pair of these would look to the compiler like an allocation that free must not take.
__attribute__((noinline)) void* operator new(std::size_t size) {
    ++g_nAllocations;
    void* const memory = std::malloc(size);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}
// As std::stable_sort asks for memory; the address sanitizer has one of its own.
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    try {
        return operator new(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}
__attribute__((noinline)) void operator delete(void* memory) noexcept { std::free(memory); }
__attribute__((noinline)) void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

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
    std::string block = RandomBytes(static_cast<std::size_t>(kBlockFrames * BlockSizeOf(kFormat)));
    auto* const data = reinterpret_cast<unsigned char*>(block.data());
    const int size = static_cast<int>(block.size());
    EAudioRawState state = ARS_MORE;
    {
        const SSink sink(Path(), GetParam(), kFormat);
        ASSERT_TRUE(sink.m_process->Start(nullptr));
        int written = 0;
        const int before = g_nAllocations;
        ASSERT_GT(before, 0);
        for (int i = 0; i < kBlocks; ++i) written += sink.m_writer->RawWrite(data, size, state, nullptr);
        EXPECT_EQ(g_nAllocations, before);
        EXPECT_EQ(written, kBlocks);
        ASSERT_TRUE(sink.m_process->End(nullptr));
    }
    const SSource source(Path());
    ASSERT_TRUE(source.m_process->Start(nullptr));
    int filled = 0;
    const int before = g_nAllocations;
    for (int i = 0; i < kBlocks; ++i) {
        int read = 0;
        filled += source.m_reader->RawRead(data, size, &read, state, nullptr) && read == size;
    }
    EXPECT_EQ(g_nAllocations, before);
    EXPECT_EQ(filled, kBlocks);
}

INSTANTIATE_TEST_SUITE_P(Formats, SndfileAllocation, testing::Values("wav", "flac", "ogg", "mp3"),
                         [](const auto& test) { return std::string(test.param); });

}  // namespace

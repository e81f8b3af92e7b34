// The heap as the convertor uses it: quiet once it runs, and running out.
#include <cerrno>
#include <cstdlib>
#include <new>

#include "tests/plugins/soxr/PluginUnderTest.h"

namespace {

int g_nAllocations = 0;

// Allocations of this size and above fail; status objects stay possible.
std::size_t g_nRefusedSize = SIZE_MAX;

class CScarceMemory {
public:
    explicit CScarceMemory(std::size_t refusedSize) { g_nRefusedSize = refusedSize; }
    ~CScarceMemory() { g_nRefusedSize = SIZE_MAX; }
};

}  // namespace

// Inlined, a pair of these would look to the compiler like an allocation that free must not take.
__attribute__((noinline)) void* operator new(std::size_t size) {
    ++g_nAllocations;
    void* const memory = size < g_nRefusedSize ? std::malloc(size) : nullptr;
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

TEST(SoxrAllocation, RunningConversionAllocatesNothing) {
    const CPluginUnderTest plugin;
    const auto convertor = plugin.Create(Held(44100, 24, 2), Held(48000, 16, 2));
    CBytes block = RandomBytes(12000);
    const auto feed = [&](int calls) {
        for (int call = 0; call < calls; ++call) {
            ASSERT_TRUE(convertor->Convert(block.data(), static_cast<int>(block.size()), 0, nullptr));
        }
    };
    feed(50);
    const int before = g_nAllocations;
    ASSERT_GT(before, 0);
    feed(500);
    EXPECT_EQ(g_nAllocations, before);
}

TEST(SoxrAllocation, ConvertSaysThatMemoryRanOutAndWorksAgainAfterwards) {
    const CPluginUnderTest plugin;
    const auto convertor = plugin.Create(Held(48000, 16, 2), Held(48000, 24, 2));
    const auto reference = plugin.Create(Held(48000, 16, 2), Held(48000, 24, 2));
    CBytes block = RandomBytes(400000);
    {
        const CScarceMemory scarce(100000);
        CComPtr<IStatus> status;
        EXPECT_FALSE(convertor->Convert(block.data(), static_cast<int>(block.size()), 0, status.Out()));
        ASSERT_TRUE(status);
        EXPECT_EQ(status->GetSysError(), static_cast<unsigned>(ENOMEM));
        EXPECT_LT(convertor->GetOutputLength(), 0);
    }
    EXPECT_EQ(ConvertAll(*convertor, block), ConvertAll(*reference, block));
}

TEST(SoxrAllocation, ConvertReportsNothingWhenNotEvenAStatusFits) {
    const CPluginUnderTest plugin;
    const auto convertor = plugin.Create(Held(48000, 16, 2), Held(48000, 24, 2));
    CBytes block = RandomBytes(400000);
    IStatus* status = nullptr;
    bool converted = true;
    {
        const CScarceMemory scarce(0);
        converted = convertor->Convert(block.data(), static_cast<int>(block.size()), 0, &status);
    }
    EXPECT_FALSE(converted);
    EXPECT_EQ(status, nullptr);
}

TEST(SoxrAllocation, CreateConvertorSaysThatMemoryRanOutAndLeavesNothingAlive) {
    const CPluginUnderTest plugin;
    CComPtr<IStatus> status;
    CComPtr<IAudioConvertor> convertor;
    {
        const CScarceMemory scarce(4096);
        convertor = plugin.Create(Held(44100, 16, 2), Held(48000, 16, 2), status.Out());
    }
    EXPECT_FALSE(convertor);
    ASSERT_TRUE(status);
    EXPECT_EQ(status->GetSysError(), static_cast<unsigned>(ENOMEM));
    EXPECT_TRUE(plugin.ReadyToFinish());
}

}  // namespace

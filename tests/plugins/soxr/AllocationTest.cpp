// The heap as the convertor uses it: quiet once it runs, and running out.
#include <cerrno>

#include "tests/plugins/soxr/PluginUnderTest.h"
#include "tests/support/Heap.h"

namespace {

class SoxrAllocation : public testing::Test {
protected:
    void SetUp() override {
        if (!kHeapIsReplaced) GTEST_SKIP() << kHeapIsTaken;
    }
};

TEST_F(SoxrAllocation, RunningConversionAllocatesNothing) {
    const CPluginUnderTest plugin;
    const auto convertor = plugin.Create(Held(44100, 24, 2), Held(48000, 16, 2));
    CBytes block = RandomBytes(12000);
    const auto feed = [&](int calls) {
        for (int call = 0; call < calls; ++call) {
            ASSERT_TRUE(convertor->Convert(block.data(), static_cast<int>(block.size()), 0, nullptr));
        }
    };
    feed(50);
    const int before = AllocationCount();
    ASSERT_GT(before, 0);
    feed(500);
    EXPECT_EQ(AllocationCount(), before);
}

TEST_F(SoxrAllocation, ConvertSaysThatMemoryRanOutAndWorksAgainAfterwards) {
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

TEST_F(SoxrAllocation, ConvertReportsNothingWhenNotEvenAStatusFits) {
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

TEST_F(SoxrAllocation, CreateConvertorSaysThatMemoryRanOutAndLeavesNothingAlive) {
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

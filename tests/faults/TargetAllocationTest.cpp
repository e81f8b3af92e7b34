// Targets without memory: making, starting, writing, ending.
#include "tests/faults/EachLibraryAllocation.h"
#include "tests/faults/StreamsLeft.h"
#include "tests/stream/TargetFixture.h"

namespace {

using support::kStudio;

class TargetAllocation : public support::CTargetFixture {
protected:
    void WriteAndEnd(IStatus** status) {
        EAudioRawState state = ARS_MORE;
        m_pTarget->RawWrite(m_block, sizeof(m_block), state, status);
        m_pTarget->RawWrite(nullptr, 0, state, status);
        m_pTarget->End(status);
    }

    void ExpectAllBack() {
        Close();
        EXPECT_EQ(m_script.m_nAlive, 0);
        EXPECT_EQ(m_factory.m_convertor.m_nAlive, 0);
        ExpectNoStreamLeft();
    }

    unsigned char m_block[4096] = {};
};

}  // namespace

TEST_F(TargetAllocation, ATargetThatConvertsLeavesNothingHeld) {
    InstallFactory(100);
    const int allocations = FailEachLibraryAllocation(
        [&] {
            CComPtr<IStatus> status;
            if (!Create(kStudio, status.Out()) || !m_pTarget->Start(status.Out())) return;
            WriteAndEnd(status.Out());
        },
        [&](bool /*thrown*/) { ExpectAllBack(); });
    EXPECT_GT(allocations, 1);
}

TEST_F(TargetAllocation, ATargetWithoutAConversionLeavesNothingHeld) {
    const int allocations = FailEachLibraryAllocation(
        [&] {
            CComPtr<IStatus> status;
            // No factory for the conversion: the reason is a text.
            if (Create(kStudio, status.Out())) m_pTarget->Start(status.Out());
        },
        [&](bool /*thrown*/) { ExpectAllBack(); });
    EXPECT_GT(allocations, 2);
}

TEST_F(TargetAllocation, WritingNeedsNoMemory) {
    StartConverting(kStudio);
    EAudioRawState state = ARS_MORE;
    const CFailingLibraryAllocation failing(1, true);
    EXPECT_TRUE(m_pTarget->RawWrite(m_block, sizeof(m_block), state, nullptr));
    EXPECT_EQ(failing.GetCount(), 0);
}

// The heap as decoder and encoder use it: quiet once a sound runs, and no trouble where it is exhausted. What the codec
// libraries take for themselves does not count.
#include <cerrno>

#include "tests/plugins/sndfile/AudioFiles.h"
#include "tests/plugins/sndfile/SinkUnderTest.h"
#include "tests/support/EachAllocation.h"
#include "tests/support/FilledBuffer.h"
#include "tests/support/ProcessUse.h"
#include "tests/support/ScratchDirectory.h"

namespace {

constexpr SWavFormat kFormat{44100, 16, 2};
constexpr int kBlockFrames = 400;
constexpr int kBlocks = 300;

class SndfileAllocation : public testing::TestWithParam<const char*> {
protected:
    std::string Path() const { return m_scratch / (std::string("sound.") + GetParam()); }

    // Opens the file and fills `m_buffer`.
    bool Read() {
        CComPtr<IUnknown> stream;
        if (!m_opener->Open(m_strPath.c_str(), stream.Out(), AUX_CONVERT, AUX_NONE, m_status.Out())) return false;
        return support::StartAndFill(stream.Get(), m_buffer, m_status.Out());
    }

    // Writes a file of `m_samples`.
    bool Write() {
        CComPtr<IAudioTarget> target;
        CComPtr<IUnknown> stream;
        const char* const extension = GetParam();
        if (!m_targetOpener->OpenTarget(m_strPath.c_str(), extension, target.Out(), m_status.Out())) return false;
        const auto tags = CComPtr<ITargetTags>::Query(target.Get(), IID_ITargetTags);
        if (!tags->SetTag(TAG_TITLE, "A title that no small string holds", m_status.Out()) ||
            !target->GetTargetFactory()->CreateTarget(stream.Out(), kFormat, m_status.Out())) {
            return false;
        }
        const auto process = CComPtr<IProcess>::Query(stream.Get(), IID_IProcess);
        const auto writer = CComPtr<IAudioRawWriter>::Query(stream.Get(), IID_IAudioRawWriter);
        EAudioRawState state = ARS_MORE;
        return process->Start(m_status.Out()) &&
               writer->RawWrite(reinterpret_cast<unsigned char*>(m_samples.data()), static_cast<int>(m_samples.size()),
                                state, m_status.Out()) &&
               process->End(m_status.Out());
    }

    // What did not succeed says why, and nothing is left of it.
    void ExpectNothingLeft(bool done) {
        EXPECT_EQ(m_status ? m_status->GetSysError() : 0, done ? 0u : static_cast<unsigned int>(ENOMEM))
            << (m_status ? m_status->GetDescription() : "");
        m_status.Reset();
        EXPECT_TRUE(Plugin().m_pReadyToFinish());
        EXPECT_EQ(support::MeasureUse().m_nDescriptors, m_nDescriptors);
    }

    CScratchDirectory m_scratch;
    const std::string m_strPath = Path();
    std::string m_samples = RandomBytes(static_cast<std::size_t>(kBlockFrames * BlockSizeOf(kFormat)));
    std::string m_buffer = std::string(400, '\0');
    CComPtr<IStatus> m_status;
    const CComPtr<IAudioFileOpener> m_opener =
        CComPtr<IAudioFileOpener>::Query(Component(0).Get(), IID_IAudioFileOpener);
    const CComPtr<IAudioTargetOpener> m_targetOpener =
        CComPtr<IAudioTargetOpener>::Query(Component(1).Get(), IID_IAudioTargetOpener);
    const std::size_t m_nDescriptors = support::MeasureUse().m_nDescriptors;
};

TEST_P(SndfileAllocation, WritingAndReadingAllocateNothing) {
    if (!kHeapIsReplaced) GTEST_SKIP() << kHeapIsTaken;
    auto* const data = reinterpret_cast<unsigned char*>(m_samples.data());
    const int size = static_cast<int>(m_samples.size());
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

TEST_P(SndfileAllocation, WhatIsReadWithoutMemoryFailsAndLeavesNothing) {
    WriteSound(m_strPath, GetParam(), kFormat, RandomBytes(20000));
    const std::string expected = Decoded(m_strPath).substr(0, m_buffer.size());
    support::LackEachAllocation([this] { return Read(); },
                                [&](bool done) {
                                    ExpectNothingLeft(done);
                                    EXPECT_TRUE(done || Read());
                                    EXPECT_TRUE(m_buffer == expected);
                                });
}

TEST_P(SndfileAllocation, WhatIsWrittenWithoutMemoryFailsAndLeavesNothing) {
    ASSERT_TRUE(Write());
    const std::string expected = Decoded(m_strPath);
    support::LackEachAllocation([this] { return Write(); },
                                [&](bool done) {
                                    ExpectNothingLeft(done);
                                    EXPECT_TRUE(done || Write());
                                    EXPECT_TRUE(Decoded(m_strPath) == expected);
                                });
}

INSTANTIATE_TEST_SUITE_P(Formats, SndfileAllocation, testing::Values("wav", "flac", "ogg", "mp3"),
                         [](const auto& test) { return std::string(test.param); });

}  // namespace

// Memory that runs out while a file is read: the plug-in's own, and the libraries'.
#include <dlfcn.h>

#include <cerrno>
#include <climits>
#include <filesystem>

#include "tests/plugins/libav/DecoderUnderTest.h"
#include "tests/support/EachAllocation.h"
#include "tests/support/FilledBuffer.h"
#include "tests/support/ProcessUse.h"

namespace {

constexpr std::size_t kPiece = 8000;

class LibavAllocation : public testing::Test {
protected:
    // The libraries' own limit of what they allocate at a time.
    static void Limit(std::size_t size) {
        void* const library = dlopen(KELO_LIBAVFORMAT, RTLD_NOW | RTLD_NOLOAD);
        ASSERT_NE(library, nullptr);
        reinterpret_cast<void (*)(std::size_t)>(dlsym(library, "av_max_alloc"))(size);
        dlclose(library);
    }

    static bool Seek(SSource& source, unsigned long frame, unsigned int* error) {
        CComPtr<IStatus> status;
        const bool done = source.m_seekable->Seek(frame, status.Out());
        *error = status ? status->GetSysError() : 0;
        return done;
    }

    // Whether `source` reads on from `frame`, or not at all until a seek.
    void ExpectInPlace(SSource& source, std::size_t frame) {
        const std::string samples = source.ReadOn(kPiece);
        EXPECT_TRUE(samples == m_samples.substr(frame * 4, samples.size())) << frame;
        ASSERT_TRUE(source.m_seekable->Seek(frame, nullptr));
        EXPECT_TRUE(source.ReadOn(kPiece) == m_samples.substr(frame * 4, kPiece)) << frame;
    }

    const std::string m_samples = Content(Media("source.pcm"));
};

TEST_F(LibavAllocation, ASeekThatTheLibrariesHaveNoMemoryForLosesNothing) {
    SSource source(Media("alac.m4a"));
    for (const std::size_t limit : {100u, 1000u, 5000u}) {
        ASSERT_TRUE(source.m_seekable->Seek(50000, nullptr));
        Limit(limit);
        unsigned int error = 0;
        const bool done = Seek(source, 150000, &error);
        Limit(INT_MAX);
        EXPECT_FALSE(done) << limit;
        EXPECT_EQ(error, static_cast<unsigned int>(ENOMEM)) << limit;
        EXPECT_EQ(source.m_blocks->GetPos(), 50000u);
        ExpectInPlace(source, 50000);
    }
}

TEST_F(LibavAllocation, AReadThatTheLibrariesHaveNoMemoryForSkipsNothing) {
    SSource source(Media("alac.m4a"));
    const std::string before = source.ReadOn(200000);
    Limit(1000);
    const std::string last = source.ReadOn();
    Limit(INT_MAX);
    ASSERT_LT(before.size() + last.size(), m_samples.size());
    EXPECT_TRUE(before + last == m_samples.substr(0, before.size() + last.size()));
    EXPECT_TRUE(source.ReadOn().empty());
    ExpectInPlace(source, static_cast<std::size_t>(source.m_blocks->GetPos()));
}

TEST_F(LibavAllocation, ASeekInWhichOneAllocationFailsLosesNothing) {
    SSource source(Media("flac.mka"));
    ASSERT_TRUE(source.m_seekable->Seek(50000, nullptr));
    // To the beginning, which opens the file anew.
    support::LackEachAllocation([&] { return source.m_seekable->Seek(7, nullptr); },
                                [&](bool done) {
                                    EXPECT_EQ(source.m_blocks->GetPos(), done ? 7u : 50000u);
                                    if (!done) ExpectInPlace(source, 50000);
                                    ASSERT_TRUE(source.m_seekable->Seek(50000, nullptr));
                                });
}

// Each way to find a length: frames that the header counts, edits, the last page and the end of a broadcast.
class LibavOpening : public testing::TestWithParam<const char*> {
protected:
    // Opens the file and fills `m_buffer`.
    bool Read() {
        CComPtr<IUnknown> stream;
        if (!m_opener->Open(m_strPath.c_str(), stream.Out(), AUX_CONVERT, AUX_NONE, m_status.Out())) return false;
        m_nLength = CComPtr<IAudioRawReader>::Query(stream.Get(), IID_IAudioRawReader)->GetRawLen();
        return support::StartAndFill(stream.Get(), m_buffer, m_status.Out());
    }

    const std::string m_strPath = Media(GetParam());
    std::string m_buffer = std::string(kPiece, '\0');
    std::uint64_t m_nLength = 0;
    CComPtr<IStatus> m_status;
    const CComPtr<IAudioFileOpener> m_opener = CComPtr<IAudioFileOpener>::Query(Decoder().Get(), IID_IAudioFileOpener);
};

TEST_P(LibavOpening, WithoutMemoryFailsAndLeavesNothing) {
    ASSERT_TRUE(Read());
    const std::string expected = m_buffer;
    const std::uint64_t length = m_nLength;
    const std::size_t descriptors = support::MeasureUse().m_nDescriptors;
    support::LackEachAllocation(
        [this] { return Read(); },
        [&](bool done) {
            EXPECT_EQ(m_status ? m_status->GetSysError() : 0, done ? 0u : static_cast<unsigned int>(ENOMEM))
                << (m_status ? m_status->GetDescription() : "");
            m_status.Reset();
            EXPECT_TRUE(Plugin().m_pReadyToFinish());
            EXPECT_EQ(support::MeasureUse().m_nDescriptors, descriptors);
            EXPECT_TRUE(done || Read());
            EXPECT_TRUE(m_buffer == expected);
            EXPECT_EQ(m_nLength, length);
        });
}

INSTANTIATE_TEST_SUITE_P(Libav, LibavOpening, testing::Values("source.wv", "aac.m4a", "opus.ogg", "video.ts"),
                         [](const auto& test) {
                             return std::filesystem::path(test.param).extension().string().substr(1);
                         });

}  // namespace

// Memory that runs out while a file is read: the plug-in's own, and the libraries'.
#include <dlfcn.h>

#include <cerrno>
#include <climits>

#include "tests/plugins/libav/DecoderUnderTest.h"
#include "tests/support/Heap.h"

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
    if (!kHeapIsReplaced) GTEST_SKIP() << kHeapIsTaken;
    SSource source(Media("flac.mka"));
    int failures = 0;
    bool struck = true;
    for (int allocation = 1; struck; ++allocation) {
        ASSERT_TRUE(source.m_seekable->Seek(50000, nullptr));
        bool done = false;
        {
            const CFailingAllocation failing(allocation);
            // To the beginning, which opens the file anew.
            done = source.m_seekable->Seek(7, nullptr);
            struck = failing.HasStruck();
        }
        if (done) continue;
        ++failures;
        EXPECT_EQ(source.m_blocks->GetPos(), 50000u);
        ExpectInPlace(source, 50000);
    }
    EXPECT_GT(failures, 0);
}

}  // namespace

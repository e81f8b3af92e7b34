// Descriptors: each is closed once, whether a file opens or not.
#include <dlfcn.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <filesystem>
#include <optional>

#include "portable/Export.h"
#include "tests/plugins/sndfile/AudioFiles.h"
#include "tests/plugins/sndfile/PluginUnderTest.h"
#include "tests/support/ExpectedLeaks.h"
#include "tests/support/ScratchDirectory.h"

namespace {

std::atomic<int> g_nClosedInVain{0};

using CCloseFunction = int(int);

// Those that are open, and how often one was closed that was not: on threads, somebody else's.
struct SDescriptors {
    std::ptrdiff_t m_nOpen = std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
    int m_nClosedInVain = g_nClosedInVain;

    bool operator==(const SDescriptors& other) const {
        return m_nOpen == other.m_nOpen && m_nClosedInVain == other.m_nClosedInVain;
    }
};

std::ostream& operator<<(std::ostream& out, const SDescriptors& descriptors) {
    return out << descriptors.m_nOpen << " open, " << descriptors.m_nClosedInVain << " closed in vain";
}

}  // namespace

// In place of the system's, for the plug-in and the codec too.
extern "C" KELO_EXPORT int close(int descriptor) {
    static const auto next = reinterpret_cast<CCloseFunction*>(dlsym(RTLD_NEXT, "close"));
    const int result = next(descriptor);
    if (result != 0 && errno == EBADF) ++g_nClosedInVain;
    return result;
}

TEST(SndfileDescriptors, AreWatchedByTheseTests) {
    const SDescriptors before;
    EXPECT_NE(::close(-1), 0);
    EXPECT_EQ(SDescriptors().m_nClosedInVain, before.m_nClosedInVain + 1);
}

TEST(SndfileDescriptors, OfFilesThatAreRefusedAreClosedOnce) {
    CScratchDirectory scratch;
    RunTool("flac -s -f -o " + scratch / "x.flac" + " " + kVoice);
    const std::string flac = Content(scratch / "x.flac");
    const std::string voice = Content(kVoice);
    const std::string vorbis = Content(kBell).substr(0, 100);
    const std::string contents[] = {"Just a text of some length that is no sound at all.\n",
                                    RandomBytes(3000),
                                    voice.substr(0, 30),
                                    Chunk("RIFF", "AVI " + RandomBytes(200)),
                                    flac.substr(0, 30),
                                    flac.substr(0, 4) + RandomBytes(3000),
                                    vorbis,
                                    "OggS" + RandomBytes(3000),
                                    "caff" + RandomBytes(3000),
                                    "Creative Voice File",
                                    std::string("ID3\3\0\0\0\0\0\20", 10) + RandomBytes(3000)};
    SSource(kVoice).m_process->Start(nullptr);
    for (const std::string& content : contents) {
        const std::string path = scratch.Write("x.wav", content);
        std::optional<CExpectedLeaks> ofLibvorbis;
        if (content == vorbis) ofLibvorbis.emplace();
        const SDescriptors before;
        EXPECT_NE(RefusalOf(path), "") << &content - contents;
        EXPECT_EQ(SDescriptors(), before) << &content - contents;
    }
}

TEST(SndfileDescriptors, OfFilesThatOpenAreClosedOnce) {
    CScratchDirectory scratch;
    RunTool("lame --quiet -V2 -t " + kVoice + " " + scratch / "spliced.mp3");
    RunTool("flac -s -f -o " + scratch / "x.flac" + " " + kVoice);
    for (const std::string& path : {kVoice, kBell, scratch / "spliced.mp3", scratch / "x.flac"}) {
        const SDescriptors before;
        {
            SSource source(path);
            ASSERT_TRUE(source.m_process->Start(nullptr));
            EXPECT_NE(ReadOn(source), "");
            ASSERT_TRUE(source.m_seekable->Seek(100, nullptr));
            ASSERT_TRUE(source.m_process->End(nullptr));
            ASSERT_TRUE(source.m_process->Start(nullptr));
        }
        EXPECT_EQ(SDescriptors(), before) << path;
    }
}

// A codec that is told of a failed seek is opened anew.
TEST(SndfileDescriptors, OfFilesThatAreOpenedAnewAreClosedOnce) {
    CScratchDirectory scratch;
    RunTool("flac -s -f -o " + scratch / "x.flac" + " " + kVoice);
    std::string content = Content(scratch / "x.flac");
    content.replace(content.size() / 2, 40, 40, '\x55');
    const std::string path = scratch.Write("damaged.flac", content);
    const SDescriptors before;
    {
        SSource source(path);
        ASSERT_TRUE(source.m_process->Start(nullptr));
        std::vector<unsigned char> buffer(1 << 20);
        int count = 0;
        EAudioRawState state = ARS_MORE;
        for (int i = 0; i < 2; ++i) {
            while (source.m_reader->RawRead(buffer.data(), 1 << 20, &count, state, nullptr)) EXPECT_GT(count, 0);
            ASSERT_TRUE(source.m_seekable->Seek(0, nullptr));
        }
    }
    EXPECT_EQ(SDescriptors(), before);
}

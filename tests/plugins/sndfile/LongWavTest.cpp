// WAV files beyond 4 GiB.
#include <filesystem>

#include "plugins/sndfile/WrittenHeader.h"
#include "tests/plugins/sndfile/AudioFiles.h"
#include "tests/plugins/sndfile/SinkUnderTest.h"
#include "tests/support/ScratchDirectory.h"

namespace {

constexpr SWavFormat kStereo{44100, 16, 2};
constexpr std::uint64_t kLongest = 0xFFFFFFFFu;  // of a RIFF chunk's size, which is then not known
const std::string kEnd = "the last frames ";     // four of them

// Everything before the first sample of a file that the encoder has written.
std::string WrittenHeader(const CScratchDirectory& scratch) {
    const STarget target(scratch / "short.wav", "wav");
    EXPECT_TRUE(target.m_tags->SetTag(TAG_TITLE, "A title, COMM JUNK data", nullptr));
    SSink(target, kStereo).WriteAll("");
    return Content(scratch / "short.wav");
}

// Frames of a file that ends with kEnd, as this plug-in and as ffprobe find them.
void ExpectFrames(const CScratchDirectory& scratch, const std::string& path, std::uint64_t frames) {
    SSource source(path);
    EXPECT_EQ(source.m_blocks->GetDataLength(), frames);
    ASSERT_TRUE(source.m_process->Start(nullptr));
    ASSERT_TRUE(source.m_seekable->Seek(frames - 4, nullptr));
    EXPECT_EQ(ReadOn(source), kEnd);
    const auto info = CComPtr<IInfoReader>::Query(source.m_stream.Get(), IID_IInfoReader);
    EXPECT_STREQ(info->GetTitle(), "A title, COMM JUNK data");
    RunTool("ffprobe -v error -show_entries stream=duration_ts -of default=noprint_wrappers=1:nokey=1 " + path + " > " +
            scratch / "frames");
    EXPECT_EQ(Content(scratch / "frames"), std::to_string(frames) + "\n");
}

}  // namespace

TEST(SndfileLongWav, HeaderTellsSizesBeyond32Bits) {
    const CScratchDirectory scratch;
    const std::string header = WrittenHeader(scratch);
    const std::uint64_t frames = 1100000000;
    const std::uint64_t size = header.size() + 4 * frames;
    const std::string longHeader = CorrectedWavHeader(header, {size, 4 * frames, frames});
    ASSERT_EQ(longHeader.size(), header.size());
    const std::string path = scratch.Write("x.wav", longHeader);
    // Sparse: it takes no room.
    std::filesystem::resize_file(path, size - kEnd.size());
    std::ofstream(path, std::ios::binary | std::ios::app) << kEnd;
    ExpectFrames(scratch, path, frames);
}

TEST(SndfileLongWav, HeaderStaysAsItIsUpTo4GiB) {
    const CScratchDirectory scratch;
    const std::string header = WrittenHeader(scratch);
    EXPECT_EQ(CorrectedWavHeader(header, {kLongest + 7, kLongest + 7 - header.size(), 1}), "");
    EXPECT_NE(CorrectedWavHeader(header, {kLongest + 8, kLongest + 8 - header.size(), 1}), "");
    EXPECT_EQ(CorrectedWavHeader("", {0, 0, 0}), "");
}

TEST(SndfileLongWav, WithoutRoomInItsHeaderIsRefused) {
    const std::string header = WavFile(kStereo, "");
    EXPECT_THROW(CorrectedWavHeader(header, {kLongest + 8, kLongest + 8 - header.size(), 1}), std::exception);
}

// Writes 4 GiB.
TEST(SndfileLongWav, IsWrittenByTheEncoderItself) {
    if (std::getenv("KELO_LONG_TESTS") == nullptr) GTEST_SKIP() << "set KELO_LONG_TESTS=1 to run it";
    const CScratchDirectory scratch;
    const std::string path = scratch / "x.wav";
    const STarget target(path, "wav");
    EXPECT_TRUE(target.m_tags->SetTag(TAG_TITLE, "A title, COMM JUNK data", nullptr));
    SSink sink(target, kStereo);
    ASSERT_TRUE(sink.m_process->Start(nullptr));
    const std::string block(1 << 24, '\0');
    for (int i = 0; i < 256; ++i) ASSERT_TRUE(sink.Write(block)) << i;
    ASSERT_TRUE(sink.Write(kEnd) && sink.m_process->End(nullptr));
    char start[4] = {};
    std::ifstream(path, std::ios::binary).read(start, 4);
    EXPECT_EQ(std::string(start, 4), "RF64");
    ExpectFrames(scratch, path, (std::uint64_t{1} << 30) + 4);
}

// Timestamps that are no guide to positions: with gaps, or going back where another recording was joined on.
#include <filesystem>

#include "tests/plugins/libav/DecoderUnderTest.h"
#include "tests/plugins/libav/WrittenFiles.h"
#include "tests/support/ScratchDirectory.h"

namespace {

constexpr std::uint64_t kPiece = 2000;

struct SBrokenTimes {
    const char* m_strName;
    const char* m_strOptions;  // of the encoder
};

void PrintTo(const SBrokenTimes& file, std::ostream* out) { *out << file.m_strName; }

// Eight seconds of sound.
const std::string kSound = "ffmpeg -stream_loop 1 -i '" + Media("source.wav") + "' ";

// No length but that which reading delivers, and the frames of a linear read behind each seek.
void ExpectNoGuess(const std::string& path, double seconds) {
    SSource source(path);
    const auto length = static_cast<std::uint64_t>(seconds * source.m_reader->GetRawFormat().nSampleRate);
    EXPECT_EQ(source.m_blocks->GetDataLength(), 0u);
    const std::string linear = source.ReadOn();
    const auto block = static_cast<std::uint64_t>(source.m_blocks->GetBlockSize());
    EXPECT_EQ(source.m_strFailure, "");
    EXPECT_GE(linear.size() / block, length);
    EXPECT_EQ(source.m_blocks->GetDataLength(), linear.size() / block);
    for (const std::uint64_t target : {length - kPiece, length / 2, length / 20}) {
        ASSERT_TRUE(source.m_seekable->Seek(target, nullptr)) << target;
        EXPECT_TRUE(source.ReadOn(kPiece * block) == linear.substr(target * block, kPiece * block)) << target;
    }
}

std::string NameOf(const testing::TestParamInfo<SBrokenTimes>& parameter) {
    return std::filesystem::path(parameter.param.m_strName).extension().string().substr(1) +
           std::to_string(parameter.index);
}

class LibavGap : public testing::TestWithParam<SBrokenTimes> {
protected:
    CScratchDirectory m_scratch;
};

TEST_P(LibavGap, IsNotCountedAsSound) {
    const std::string path = m_scratch / GetParam().m_strName;
    RunTool(kSound + R"(-af 'asetpts=PTS+if(gt(T\,3)\,5/TB\,0)' )" + GetParam().m_strOptions + " " + path);
    ExpectNoGuess(path, 7.95);
}

INSTANTIATE_TEST_SUITE_P(Libav, LibavGap,
                         testing::Values(SBrokenTimes{"x.mkv", "-c:a pcm_s16le"}, SBrokenTimes{"x.mka", "-c:a flac"},
                                         SBrokenTimes{"x.m4a", "-c:a alac"}, SBrokenTimes{"x.flv", "-c:a aac"},
                                         SBrokenTimes{"x.webm", "-c:a libopus"}, SBrokenTimes{"x.wma", "-c:a wmav2"},
                                         SBrokenTimes{"x.ts", "-c:a ac3"}, SBrokenTimes{"x.vob", "-c:a mp2"},
                                         SBrokenTimes{"x.nut", "-c:a pcm_s16le"}),
                         NameOf);

class LibavJoin : public LibavGap {};

TEST_P(LibavJoin, HasAllItsSound) {
    RunTool(kSound + GetParam().m_strOptions + " " + m_scratch / GetParam().m_strName);
    const std::string whole = Content(m_scratch / GetParam().m_strName);
    ExpectNoGuess(m_scratch.Write(GetParam().m_strName, whole + whole), 15.95);
}

TEST_P(LibavJoin, OfLessThanASecondHasAllItsSound) {
    RunTool("ffmpeg -t 0.9 -i '" + Media("source.wav") + "' " + GetParam().m_strOptions + " " +
            m_scratch / GetParam().m_strName);
    const std::string whole = Content(m_scratch / GetParam().m_strName);
    ExpectNoGuess(m_scratch.Write(GetParam().m_strName, whole + whole), 1.75);
}

INSTANTIATE_TEST_SUITE_P(Libav, LibavJoin,
                         testing::Values(SBrokenTimes{"x.ts", "-c:a aac"}, SBrokenTimes{"x.vob", "-c:a ac3"},
                                         SBrokenTimes{"x.ogg", "-c:a libvorbis"}, SBrokenTimes{"x.flac", ""},
                                         SBrokenTimes{"x.opus", ""}, SBrokenTimes{"x.spx", "-ar 16000 -ac 1"}),
                         NameOf);

// More padding than is looked through (RFC 9639, 8.3), behind the description of the stream.
TEST_F(LibavJoin, OfALargeFileIsSeenWhileReading) {
    RunTool(kSound + m_scratch / "x.flac");
    const std::string whole = Content(m_scratch / "x.flac");
    const std::string path = m_scratch.Write("x.flac", whole.substr(0, 42));
    for (int i = 0; i < 32; ++i) {
        std::ofstream(path, std::ios::binary | std::ios::app) << '\1' + BigEndian(0xFFFFFF, 3);
        std::filesystem::resize_file(path, std::filesystem::file_size(path) + 0xFFFFFF);
    }
    std::ofstream(path, std::ios::binary | std::ios::app) << whole.substr(42) + whole;
    SSource source(path);
    EXPECT_EQ(source.m_blocks->GetDataLength(), 352802u);
    source.ReadOn(360000 * 4);
    EXPECT_EQ(source.m_blocks->GetDataLength(), 0u);
    source.ReadOn();
    EXPECT_EQ(source.m_strFailure, "");
    EXPECT_EQ(source.m_blocks->GetDataLength(), 2u * 352802);
}

// Blocks of a tenth of a second, each with the number of its first frame (WavPack 4 & 5 Binary File / Block Format).
class LibavBlocks : public LibavGap {
protected:
    static constexpr std::uint64_t kLength = 352802;
    static constexpr std::uint64_t kFrames = 4410;

    std::string Blocks() const {
        RunTool(kSound + m_scratch / "x.wav");
        RunTool("wavpack -q --blocksize=" + std::to_string(kFrames) + " " + m_scratch / "x.wav");
        return Content(m_scratch / "x.wv");
    }

    // `blocks` with lower numbers from block `first` on.
    static std::string SetBack(std::string blocks, int first, std::uint64_t frames) {
        constexpr std::size_t kNumber = 16;
        std::size_t at = 0;
        for (int i = 0; at < blocks.size(); at += BlockSize(blocks, at), ++i) {
            std::uint64_t number = 0;
            for (std::size_t byte = 4; byte-- > 0;) number = number << 8 | Byte(blocks, at + kNumber + byte);
            if (i >= first) blocks.replace(at + kNumber, 4, LittleEndian(number - frames, 4));
        }
        return blocks;
    }
};

// Also where the other recording lacks its beginning.
TEST_F(LibavBlocks, JoinedOnBehindAGapAreSeenWhileReading) {
    const std::string whole = Blocks();
    const std::string gap = WithoutPieces(whole, BlockSize, 5, 10);
    for (const int missing : {0, 30}) {
        SCOPED_TRACE(missing);
        SSource source(m_scratch.Write("x.wv", gap + WithoutPieces(whole, BlockSize, 0, missing)));
        EXPECT_EQ(source.m_blocks->GetDataLength(), kLength);
        source.ReadOn(kLength * 4);
        EXPECT_EQ(source.m_blocks->GetDataLength(), 0u);
        source.ReadOn();
        EXPECT_EQ(source.m_strFailure, "");
        EXPECT_EQ(source.m_blocks->GetDataLength(), 2 * kLength - (10 + static_cast<std::uint64_t>(missing)) * kFrames);
    }
}

// By less than a second: that is no other recording.
TEST_F(LibavBlocks, ThatGoBackALittleAreStillCutShort) {
    const std::string whole = Blocks();
    for (const std::uint64_t back : {3 * kFrames / 2, 9 * kFrames}) {
        SCOPED_TRACE(back);
        const std::string blocks = SetBack(whole, 50, back);
        for (const std::string& content :
             {WithoutPieces(blocks, BlockSize, 20, 10), WithoutPieces(blocks, BlockSize, 70, 10)}) {
            SSource source(m_scratch.Write("x.wv", content));
            EXPECT_EQ(source.m_blocks->GetDataLength(), kLength);
            source.ReadOn();
            EXPECT_THAT(source.m_strFailure, testing::HasSubstr("of 352802 frames are there"));
        }
    }
}

// What the encoder needs to begin with is no sound (RFC 7845, 4.2), in none of the streams.
TEST_F(LibavJoin, OfOpusLeavesOutEachPreSkip) {
    const std::string whole = Content(Media("opus.ogg"));
    SSource source(m_scratch.Write("x.opus", whole + whole + whole));
    EXPECT_EQ(source.ReadOn().size(), 3u * 192002 * 4);
    EXPECT_EQ(source.m_strFailure, "");
}

// The second stream lacks its comments: the page behind the first.
TEST_F(LibavJoin, OfOpusKeepsWhatIsNoHeader) {
    const std::string whole = Content(Media("opus.ogg"));
    SSource source(m_scratch.Write("x.opus", whole + WithoutPieces(whole, PageSize, 1)));
    EXPECT_EQ(source.ReadOn().size(), 2u * 192002 * 4);
}

// Long blocks alone at the beginning, and then short ones among them: a number that is no multiple of the first blocks.
TEST_F(LibavGap, IsNotSeenInBlocksOfOtherLengths) {
    RunTool(kSound + R"(-af 'volume=if(gt(mod(t\,3)\,1.5)\,1\,0.02):eval=frame' -c:a libvorbis )" +
            m_scratch / "x.mka");
    SSource source(m_scratch / "x.mka");
    const std::uint64_t length = source.m_blocks->GetDataLength();
    const std::string linear = source.ReadOn();
    EXPECT_EQ(length, linear.size() / 4);
    for (const std::uint64_t target : {length - kPiece, length / 2, length / 20}) {
        ASSERT_TRUE(source.m_seekable->Seek(target, nullptr)) << target;
        EXPECT_TRUE(source.ReadOn(kPiece * 4) == linear.substr(target * 4, kPiece * 4)) << target;
    }
}

// A few milliseconds at a time, as recordings by the clock lose or gain them.
TEST_F(LibavGap, ThatGrowsSlowlyIsNotCountedAsSound) {
    RunTool(kSound + "-af 'asetpts=PTS*1.01' -c:a flac " + m_scratch / "x.mka");
    ExpectNoGuess(m_scratch / "x.mka", 7.95);
}

// Packets of seven blocks, 0.168 seconds: the demuxer takes as many bytes as it does of PCM, and no parser divides
// them.
class LibavGapInLongPackets : public LibavGap {
protected:
    // Eight seconds or the first of them, and behind `packets` packets `gap` more.
    std::string Write(const std::string& gap, int packets = 21, const std::string& seconds = "8") const {
        RunTool(kSound + "-t " + seconds + " -ar 48000 -b:a 192k -c:a mp2 " + m_scratch / "x.wav");
        const std::string path = m_scratch / "x.nut";
        RunTool("ffmpeg -fflags +noparse -i " + m_scratch / "x.wav" + " -c copy -bsf:a " +
                "'setts=ts=(N*7*1152/48000+if(gte(N\\," + std::to_string(packets) + ")\\," + gap + "\\,0))/TB' " +
                path);
        return path;
    }
};

TEST_F(LibavGapInLongPackets, IsNotCountedAsSound) { ExpectNoGuess(Write("5"), 7.95); }

// Nothing but decoding tells that the packet before it is not so long.
TEST_F(LibavGapInLongPackets, ShorterThanAPacketIsSeenWhileReading) {
    SSource source(Write("0.1"));
    const std::uint64_t guess = source.m_blocks->GetDataLength();
    source.ReadOn(4 * 48000 * 4);
    EXPECT_EQ(source.m_blocks->GetDataLength(), 0u);
    source.ReadOn();
    EXPECT_EQ(source.m_strFailure, "");
    EXPECT_EQ(source.m_blocks->GetDataLength() + 4800, guess);
}

// It is decoded to its end when it is opened.
TEST_F(LibavGapInLongPackets, LeavesTheLengthOfAShortSoundAsCounted) {
    SSource source(Write("0.1", 10, "3"));
    const std::uint64_t length = source.m_blocks->GetDataLength();
    EXPECT_EQ(source.ReadOn(2 * 48000 * 4).size(), 2u * 48000 * 4);
    EXPECT_EQ(source.m_blocks->GetDataLength(), length);
    EXPECT_EQ(source.ReadOn().size() / 4 + 2 * 48000, length);
    EXPECT_EQ(source.m_strFailure, "");
}

TEST_F(LibavGapInLongPackets, IsNotSeenWhereThereIsNone) {
    SSource source(Write("0"));
    const std::uint64_t length = source.m_blocks->GetDataLength();
    EXPECT_EQ(length, source.ReadOn().size() / 4);
    EXPECT_EQ(source.m_blocks->GetDataLength(), length);
}

// As ALAC with `options`, and `size` bytes behind it, which are a hole in the file: a box of free space.
std::string SoundBefore(std::uint64_t size, const std::string& options, const CScratchDirectory& scratch) {
    const std::string path = scratch / "x.m4a";
    RunTool(kSound + options + " -c:a alac -y " + path);
    const std::string movie = Content(path);
    scratch.Write("x.m4a", movie + BigEndian(1, 4) + "free" + BigEndian(size, 8));
    std::filesystem::resize_file(path, movie.size() + size);
    return path;
}

const std::string kGap = R"(-af 'asetpts=PTS+if(gt(T\,3)\,5/TB\,0)')";

// More is not looked through when a file is opened.
constexpr std::uint64_t kLargeFile = 1 << 29;

TEST_F(LibavGap, OfAnAlbumIsSeenWhenItIsOpened) {
    ExpectNoGuess(SoundBefore(kLargeFile - (10 << 20), kGap, m_scratch), 7.95);
}

TEST_F(LibavGap, OfALargeFileIsSeenWhileReading) {
    SSource source(SoundBefore(kLargeFile, kGap, m_scratch));
    EXPECT_NE(source.m_blocks->GetDataLength(), 0u);
    source.ReadOn(140000 * 4);
    EXPECT_EQ(source.m_blocks->GetDataLength(), 0u);
    source.ReadOn();
    EXPECT_EQ(source.m_blocks->GetDataLength(), 352802u);
}

// A millisecond of A-law in each tag of an FLV file, and a gap behind more of them than are looked through.
TEST_F(LibavGap, BehindVeryManyPacketsIsLeftToTheReading) {
    constexpr std::uint64_t kTags = 530000;
    const std::string head = '\x08' + BigEndian(9, 3);
    const std::string tail = std::string(3, '\0') + '\x72' + std::string(8, '\x55') + BigEndian(20, 4);
    std::string file = std::string("FLV\1\4", 5) + BigEndian(9, 4) + BigEndian(0, 4);
    for (std::uint64_t i = 0; i < kTags; ++i) {
        const std::uint64_t time = i < kTags - 2000 ? i : i + 5000;
        file.append(head).append(BigEndian(time, 3)).append(1, static_cast<char>(time >> 24)).append(tail);
    }
    SSource source(m_scratch.Write("x.flv", file));
    EXPECT_EQ(source.m_blocks->GetDataLength(), 8 * (kTags + 5000));
    const auto block = static_cast<std::uint64_t>(source.m_blocks->GetBlockSize());
    source.ReadOn(8 * (kTags - 1000) * block);
    EXPECT_EQ(source.m_blocks->GetDataLength(), 0u);
    source.ReadOn();
    EXPECT_EQ(source.m_strFailure, "");
    EXPECT_EQ(source.m_blocks->GetDataLength(), 8 * kTags);
}

TEST_F(LibavGap, IsNotSeenInOneWrongTimestamp) {
    for (const std::uint64_t size : {std::uint64_t{16}, kLargeFile}) {
        SSource source(SoundBefore(size, R"(-bsf:a 'setts=ts=TS+if(eq(N\,30)\,900\,0)')", m_scratch));
        EXPECT_EQ(source.m_blocks->GetDataLength(), 352802u) << size;
        source.ReadOn(200000 * 4);
        EXPECT_EQ(source.m_blocks->GetDataLength(), 352802u) << size;
    }
}

}  // namespace

// Sizes that headers cannot tell, or that the codec does not take for what they are. The files are sparse.
#include <fcntl.h>

#include <filesystem>

#include "plugins/shared/FileDescriptor.h"
#include "plugins/sndfile/DataExtent.h"
#include "tests/plugins/sndfile/AudioFiles.h"
#include "tests/plugins/sndfile/PluginUnderTest.h"
#include "tests/support/ScratchDirectory.h"

namespace {

constexpr std::uint64_t kGiB = 1 << 30;
constexpr std::uint64_t kMiB = 1 << 20;
const std::string kEnd = "three frames";

std::string BigEndian(std::uint64_t value, int bytes) {
    const std::string little = LittleEndian(value, bytes);
    return {little.rbegin(), little.rend()};
}

// Two channels of 16 bits.
std::string AuHeader(std::uint64_t size) {
    return ".snd" + BigEndian(24, 4) + BigEndian(size, 4) + BigEndian(3, 4) + BigEndian(44100, 4) + BigEndian(2, 4);
}

std::string WavHeader(std::uint64_t size) {
    const std::string wav = WavFile({44100, 16, 2}, "");
    return wav.substr(0, wav.size() - 4) + LittleEndian(size, 4);
}

std::string AiffHeader(std::uint64_t size) {
    const std::string rate = BigEndian(0x400E, 2) + BigEndian(std::uint64_t{44100} << 48, 8);  // an extended float
    return "FORM" + BigEndian(0, 4) + "AIFFCOMM" + BigEndian(18, 4) + BigEndian(2, 2) + BigEndian(0, 4) +
           BigEndian(16, 2) + rate + "SSND" + BigEndian(size, 4) + BigEndian(0, 8);
}

// Names are GUIDs that begin with a name of RIFF; the first one has an end of its own.
std::string W64Name(const std::string& name) {
    return name + (name == "riff" ? std::string("\x2E\x91\xCF\x11\xA5\xD6\x28\xDB\x04\xC1\0\0", 12)
                                  : std::string("\xF3\xAC\xD3\x11\x8C\xD1\0\xC0\x4F\x8E\xDB\x8A", 12));
}

// Sizes count the name and themselves.
std::string W64Chunk(const std::string& name, std::uint64_t size) { return W64Name(name) + LittleEndian(24 + size, 8); }

std::string W64Header(std::uint64_t size) {
    const std::string wav = WavFile({44100, 16, 2}, "");
    return W64Chunk("riff", 16 + 40 + 24 + size) + W64Name("wave") + W64Chunk("fmt ", 16) + wav.substr(20, 16) +
           W64Chunk("data", size);
}

// A block of the newer type of sound.
std::string VocHeader(std::uint64_t size) {
    return "Creative Voice File\x1A" + LittleEndian(26, 2) + LittleEndian(0x010A, 2) + LittleEndian(0x1129, 2) +
           "\x09" + LittleEndian(size, 3) + LittleEndian(44100, 4) + "\x10\x02\x04" + std::string(5, '\0');
}

class SndfileExtent : public testing::Test {
protected:
    // Zeros and kEnd, `size` bytes in all, behind `header`.
    std::string Write(const std::string& name, const std::string& header, std::uint64_t size,
                      const std::string& more = "") const {
        const std::string path = m_scratch.Write(name, header);
        std::filesystem::resize_file(path, header.size() + size - kEnd.size());
        std::ofstream(path, std::ios::binary | std::ios::app) << kEnd << more;
        return path;
    }

    static SDataExtent ExtentOf(const std::string& path, const std::string& format) {
        const CFileDescriptor descriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
        CFileBytes file(descriptor.Get());
        const auto extent = FindDataExtent(file, format);
        EXPECT_TRUE(extent.has_value()) << path;
        return extent.value_or(SDataExtent{});
    }

    // Frames that the decoder finds and whose last ones are kEnd, highest byte first in AU.
    static std::uint64_t FramesOf(const std::string& path, bool swapped) {
        SSource source(path);
        const std::uint64_t frames = source.m_blocks->GetDataLength();
        EXPECT_TRUE(source.m_process->Start(nullptr));
        EXPECT_TRUE(source.m_seekable->Seek(frames - 3, nullptr));
        std::string end = kEnd;
        for (std::size_t i = 0; swapped && i < end.size(); i += 2) std::swap(end[i], end[i + 1]);
        EXPECT_EQ(ReadOn(source), end) << path;
        return frames;
    }

    CScratchDirectory m_scratch;
};

TEST_F(SndfileExtent, OfAuIsFoundWhateverItsSize) {
    const std::uint64_t unknown = 0xFFFFFFFF;
    for (const std::uint64_t size : {kGiB, 3 * kGiB, 5 * kGiB}) {
        for (const std::uint64_t told : {std::uint64_t{0}, unknown, unknown - 100, std::uint64_t{0x7FFFF000}, size}) {
            if (told > unknown) continue;
            SCOPED_TRACE(told);
            EXPECT_EQ(FramesOf(Write("x.au", AuHeader(told), size), true), size / 4);
        }
    }
}

TEST_F(SndfileExtent, OfAuEndsWhereTheHeaderSays) {
    for (const std::uint64_t size : {kMiB, 3 * kGiB}) {
        EXPECT_EQ(FramesOf(Write("x.au", AuHeader(size), size, "what is no sound"), true), size / 4);
    }
}

TEST_F(SndfileExtent, OfAuThatDeclaresMoreIsCutShort) {
    SSource source(Write("x.au", AuHeader(3 * kGiB), kMiB));
    ASSERT_TRUE(source.m_process->Start(nullptr));
    ASSERT_TRUE(source.m_seekable->Seek(kMiB / 4, nullptr));
    unsigned char buffer[4];
    int count = 0;
    EAudioRawState state = ARS_MORE;
    EXPECT_EQ(
        ReasonOf([&](IStatus** status) { return source.m_reader->RawRead(buffer, 4, &count, state, status); }),
        "x.au: cut short: " + std::to_string(kMiB / 4) + " of " + std::to_string(3 * kGiB / 4) + " frames are there");
}

TEST_F(SndfileExtent, OfWavIsFoundBehindASizeThatMeansUnknown) {
    for (const std::uint64_t size : {3 * kGiB, 5 * kGiB}) {
        for (const std::uint64_t told : {0ull, 0xFFFFFFFFull, 0x7FFFF000ull}) {
            EXPECT_EQ(FramesOf(Write("x.wav", WavHeader(told), size), false), size / 4) << told;
        }
    }
}

TEST_F(SndfileExtent, OfWavThatLooksLikeUnknownIsTakenWhereItFits) {
    const std::string list = Chunk("LIST", "INFO" + Chunk("INAM", std::string("Title\0", 6)));
    for (const std::string& more : {std::string(), list}) {
        EXPECT_EQ(FramesOf(Write("x.wav", WavHeader(0x7FFFF000), 0x7FFFF000, more), false), 0x7FFFF000u / 4);
    }
}

// Chunks begin at multiples of eight bytes. The codec would take all that follows for samples.
TEST_F(SndfileExtent, OfW64EndsWhereTheHeaderSays) {
    for (const std::uint64_t size : {0x1000u, 0x1004u, 0x7FFFF000u, 0x7FFFF004u}) {
        const std::string padding(size % 8, '\0');
        for (const std::string& more : {std::string(), padding, padding + W64Chunk("note", 8) + "no sound"}) {
            EXPECT_EQ(FramesOf(Write("x.w64", W64Header(size), size, more), false), size / 4) << more.size();
        }
    }
}

TEST_F(SndfileExtent, OfW64IsFoundBehindASizeThatMeansUnknown) {
    for (const std::uint64_t told : {0ull, 0x7FFFF004ull, 0xFFFFFFFFull}) {
        EXPECT_EQ(FramesOf(Write("x.w64", W64Header(told), 5 * kGiB), false), 5 * kGiB / 4) << told;
    }
}

TEST_F(SndfileExtent, OfAiffIsFoundBeyondWhatItsHeaderTells) {
    for (const std::uint64_t told : {0ull, 8ull, 0xFFFFFFFFull}) {
        EXPECT_EQ(FramesOf(Write("x.aiff", AiffHeader(told), 5 * kGiB), true), 5 * kGiB / 4) << told;
    }
}

// Another decoder may take it: libsndfile would end it somewhere.
TEST_F(SndfileExtent, BeyondWhatAHeaderTellsIsRefused) {
    const std::string reason = "x.wav: not readable as WAV audio: longer than its header can tell";
    const std::string big = "RIFX" + BigEndian(0, 4) + "WAVEfmt " + BigEndian(16, 4) + BigEndian(1, 2) +
                            BigEndian(2, 2) + BigEndian(44100, 4) + BigEndian(176400, 4) + BigEndian(4, 2) +
                            BigEndian(16, 2) + "data" + BigEndian(0, 4);
    EXPECT_EQ(FramesOf(Write("x.wav", big, 3 * kGiB), true), 3 * kGiB / 4);
    EXPECT_EQ(RefusalOf(Write("x.wav", big, 5 * kGiB)), reason);
    const std::string wav = WavFile({44100, 16, 2}, "");
    const std::string notes = Chunk("note", std::string(1 << 20, ' '));
    const std::string header = wav.substr(0, wav.size() - 8) + notes + "data" + LittleEndian(0, 4);
    EXPECT_EQ(FramesOf(Write("x.wav", header, 3 * kGiB), false), 3 * kGiB / 4);
    EXPECT_EQ(RefusalOf(Write("x.wav", header, 5 * kGiB)), reason);
}

TEST_F(SndfileExtent, OfVocIsTrustedUpToItsField) {
    const SDataExtent small = ExtentOf(Write("x.voc", VocHeader(0), 15 * kMiB), "VOC");
    EXPECT_TRUE(small.m_bMisleading);
    EXPECT_EQ(small.m_splice.m_strBytes, LittleEndian(15 * kMiB + 12, 3));
    const SDataExtent large = ExtentOf(Write("x.voc", VocHeader(0), 20 * kMiB), "VOC");
    EXPECT_FALSE(large.m_bMisleading);
    EXPECT_FALSE(large.m_bTooLong);
    EXPECT_EQ(large.m_nPresent, 20 * kMiB);
    SSource source(m_scratch / "x.voc");
    EXPECT_GE(source.m_blocks->GetDataLength() + 1, 20 * kMiB / 4);
}

}  // namespace

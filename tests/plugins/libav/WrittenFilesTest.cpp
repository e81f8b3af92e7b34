// DSD, FLAC of odd widths, and encoders' notes in MP4 files.
#include "tests/plugins/libav/DecoderUnderTest.h"
#include "tests/plugins/libav/WrittenFiles.h"
#include "tests/support/ScratchDirectory.h"

namespace {

constexpr int kDsdRate = 2822400;
constexpr std::size_t kDsdBytes = 70001;

TEST(LibavDsd, BothContainersComeOutAsTheSamePcm) {
    CScratchDirectory scratch;
    const std::string left = DsdSine(440, kDsdRate, kDsdBytes);
    const std::string right = DsdSine(1000, kDsdRate, kDsdBytes);
    SSource dsf(scratch.Write("x.dsf", DsfFile(left, right, kDsdRate)));
    SSource dff(scratch.Write("x.dff", DffFile(left, right, kDsdRate)));
    for (const SSource* const source : {&dsf, &dff}) {
        EXPECT_TRUE((SHeldWavFormat{source->m_reader->GetRawFormat(), 0} == SHeldWavFormat{{352800, 16, 2}, 0}));
        EXPECT_EQ(source->m_blocks->GetDataLength(), kDsdBytes);
    }
    const std::string samples = dsf.ReadOn();
    EXPECT_EQ(samples.size(), kDsdBytes * 4);
    // The first frames hang on what the codec takes for silence before them.
    EXPECT_TRUE(samples.substr(64) == dff.ReadOn().substr(64));

    for (SSource* const source : {&dsf, &dff}) {
        for (const std::uint64_t target : {60000u, 35001u, 16u}) {
            ASSERT_TRUE(source->m_seekable->Seek(target, nullptr));
            EXPECT_TRUE(source->ReadOn(8000) == samples.substr(target * 4, 8000)) << target;
        }
    }
}

TEST(LibavDsd, SineComesOutAsThatSine) {
    CScratchDirectory scratch;
    const std::string sine = DsdSine(1000, kDsdRate, kDsdBytes);
    SSource source(scratch.Write("x.dsf", DsfFile(sine, sine, kDsdRate)));
    const std::string samples = source.ReadOn();
    // 352.8 frames are a period: projections on the sine and on what is left.
    double sum = 0;
    double energy = 0;
    double cosine = 0;
    for (std::size_t i = 3528; i < 63504; ++i) {
        const double value = Sample16(samples, 2 * i);
        const double phase = 6.283185307179586 * static_cast<double>(i) / 352.8;
        sum += value * std::sin(phase);
        cosine += value * std::cos(phase);
        energy += value * value;
    }
    const double count = 63504 - 3528;
    const double sineEnergy = 2 * (sum * sum + cosine * cosine) / count;
    EXPECT_GT(sineEnergy / energy, 0.9);
    EXPECT_GT(std::sqrt(2 * energy / count), 0.2 * 32768);
}

// libsndfile refuses both; they go up to whole bytes with their highest bit in place.
TEST(LibavFlac, OddWidthsGoUpToWholeBytes) {
    CScratchDirectory scratch;
    const std::string deep = Content(Media("deep.pcm"));
    std::string twenty = deep.substr(0, 60000);
    for (std::size_t i = 0; i < twenty.size(); i += 3) twenty[i] = static_cast<char>(twenty[i] & 0xF0);
    std::string twelve = Content(Media("source.pcm")).substr(0, 60000);
    for (std::size_t i = 0; i < twelve.size(); i += 2) twelve[i] = static_cast<char>(twelve[i] & 0xF0);
    const struct {
        SWavFormat m_format;
        int m_nValid;
        const std::string& m_samples;
    } files[] = {{{48000, 24, 2}, 20, twenty}, {{44100, 16, 2}, 12, twelve}};
    for (const auto& file : files) {
        const std::string wav = scratch.Write("x.wav", ExtensibleWav(file.m_format, file.m_nValid, file.m_samples));
        RunTool("flac -s -f " + wav + " -o " + scratch / "x.flac");
        SSource source(scratch / "x.flac");
        EXPECT_EQ(source.m_reader->GetRawFormat().nBitsPerSample, file.m_format.nBitsPerSample);
        EXPECT_TRUE(source.ReadOn() == file.m_samples) << file.m_nValid;
    }
}

class LibavMp4 : public testing::Test {
protected:
    // 1024 frames of delay, 176401 of sound, and padding.
    std::string Encode(const std::string& options) {
        RunTool("ffmpeg -i '" + Media("source.wav") + "' -c:a aac -aac_pns 0 " + options + " " + m_scratch / "x.m4a");
        return Content(m_scratch / "x.m4a");
    }

    CScratchDirectory m_scratch;
};

TEST_F(LibavMp4, WithoutEditsTheEncodersNoteTellsDelayAndLength) {
    const std::string movie = Encode("-use_editlist 0");
    const std::string noted =
        WithEncoderNote(movie, " 00000000 00000400 000002EF 000000000002B111 00000000 00000000 00000000 00000000");
    SSource with(m_scratch.Write("noted.m4a", noted));
    EXPECT_EQ(with.m_blocks->GetDataLength(), 176401u);
    SSource edited(Media("aac.m4a"));
    EXPECT_TRUE(with.ReadOn() == edited.ReadOn());

    SSource without(m_scratch.Write("plain.m4a", movie));
    EXPECT_EQ(without.m_blocks->GetDataLength(), 177425u);
}

// In milliseconds the edit would cut the sound by up to half a millisecond.
TEST_F(LibavMp4, EditsInACoarseUnitDoNotCutFramesOff) {
    for (const char* const scale : {"1000", "600", "44100"}) {
        Encode(std::string("-y -movie_timescale ") + scale);
        SSource source(m_scratch / "x.m4a");
        EXPECT_EQ(source.m_blocks->GetDataLength(), 176401u) << scale;
        EXPECT_EQ(source.ReadOn().size(), 176401u * 4) << scale;
    }
}

}  // namespace

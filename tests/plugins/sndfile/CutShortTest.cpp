// Files that end before what they declare: what is there is delivered, then a read fails.
#include "tests/plugins/sndfile/AudioFiles.h"
#include "tests/plugins/sndfile/PluginUnderTest.h"
#include "tests/support/ScratchDirectory.h"

namespace {

constexpr std::size_t kVoiceFrames = 68545;

struct SOutcome {
    std::string m_strSamples;
    std::string m_strReason;  // of the read that failed
    std::uint64_t m_nLength;  // frames, at first
};

SOutcome ReadUntilItEnds(SSource& source) {
    SOutcome outcome{"", "", source.m_blocks->GetDataLength()};
    EXPECT_TRUE(source.m_process->IsInProcess() || source.m_process->Start(nullptr));
    for (;;) {
        unsigned char buffer[4096];
        int count = -1;
        EAudioRawState state = ARS_MORE;
        CComPtr<IStatus> status;
        const bool success = source.m_reader->RawRead(buffer, sizeof buffer, &count, state, status.Out());
        EXPECT_EQ(success, !status);
        EXPECT_TRUE(success || count == 0);
        if (status) outcome.m_strReason = status->GetDescription();
        if (!success || count == 0) return outcome;
        outcome.m_strSamples.append(reinterpret_cast<const char*>(buffer), static_cast<std::size_t>(count));
    }
}

SOutcome OutcomeOf(const std::string& path) {
    SSource source(path);
    return ReadUntilItEnds(source);
}

std::string CutShort(const std::string& name, std::size_t there, std::size_t declared) {
    return name + ": cut short: " + std::to_string(there) + " of " + std::to_string(declared) + " frames are there";
}

void ExpectWhole(const std::string& path, const std::string& samples) {
    const SOutcome outcome = OutcomeOf(path);
    EXPECT_EQ(outcome.m_strReason, "") << path;
    EXPECT_TRUE(outcome.m_strSamples == samples) << path << " " << outcome.m_strSamples.size();
}

std::string BigEndian(std::uint64_t value, int bytes) {
    const std::string little = LittleEndian(value, bytes);
    return std::string(little.rbegin(), little.rend());
}

// Two channels of 16 bits, highest byte first.
std::string AuFile(const std::string& samples, std::uint64_t size) {
    std::string swapped = samples;
    for (std::size_t i = 0; i + 1 < swapped.size(); i += 2) std::swap(swapped[i], swapped[i + 1]);
    return ".snd" + BigEndian(24, 4) + BigEndian(size, 4) + BigEndian(3, 4) + BigEndian(44100, 4) + BigEndian(2, 4) +
           swapped;
}

// The name of the samples' chunk in W64.
const std::string kW64Data("data\xF3\xAC\xD3\x11\x8C\xD1\x00\xC0\x4F\x8E\xDB\x8A", 16);

// The file with another size in the field that stands behind the first `mark`.
std::string WithSize(std::string file, const std::string& mark, const std::string& size) {
    return file.replace(file.find(mark) + mark.size(), size.size(), size);
}

// EBU Tech 3306; two channels of 16 bits, `size` bytes of samples by its own account.
std::string Rf64File(const std::string& samples, std::uint64_t size) {
    const std::string riff = WavFile({44100, 16, 2}, samples);
    const std::string sizes = LittleEndian(size != 0 ? riff.size() + 28 : 0, 8) + LittleEndian(size, 8) +
                              LittleEndian(size / 4, 8) + LittleEndian(0, 4);
    const std::string whole = "RF64" + LittleEndian(0xFFFFFFFF, 4) + "WAVE" + Chunk("ds64", sizes) + riff.substr(12);
    return WithSize(whole, "data", LittleEndian(0xFFFFFFFF, 4));
}

struct SContainer {
    const char* m_strName;
    const char* m_strOptions;  // to sox
};

std::ostream& operator<<(std::ostream& out, const SContainer& container) { return out << container.m_strName; }

class CCutContainer : public testing::TestWithParam<SContainer> {
protected:
    CCutContainer() {
        RunTool("sox -D " + kVoice + " " + GetParam().m_strOptions + " " + m_scratch / GetParam().m_strName);
        m_strWhole = Content(m_scratch / GetParam().m_strName);
        m_strSamples = Decoded(m_scratch / GetParam().m_strName);
    }

    CScratchDirectory m_scratch;
    std::string m_strWhole;
    std::string m_strSamples;
};

}  // namespace

TEST_P(CCutContainer, DeliversWhatIsThereAndThenTellsHowMuchIsMissing) {
    const std::string name = GetParam().m_strName;
    ASSERT_EQ(m_strSamples.size() % kVoiceFrames, 0u);
    const std::size_t block = m_strSamples.size() / kVoiceFrames;
    for (const std::size_t size : {m_strWhole.size() - 2 * block, m_strWhole.size() / 2, m_strWhole.size() / 10}) {
        SSource source(m_scratch.Write(name, m_strWhole.substr(0, size)));
        const SOutcome outcome = ReadUntilItEnds(source);
        const std::size_t there = outcome.m_strSamples.size() / block;
        EXPECT_GT(there, 0u);
        EXPECT_LT(there, kVoiceFrames);
        EXPECT_EQ(outcome.m_nLength, there);
        EXPECT_EQ(outcome.m_strReason, CutShort(name, there, kVoiceFrames));
        EXPECT_TRUE(m_strSamples.compare(0, outcome.m_strSamples.size(), outcome.m_strSamples) == 0);
        EXPECT_EQ(source.m_blocks->GetPos(), there);
    }
}

TEST_P(CCutContainer, IsWholeWithEveryFrameThere) { ExpectWhole(m_scratch / GetParam().m_strName, m_strSamples); }

INSTANTIATE_TEST_SUITE_P(SndfileCutShort, CCutContainer,
                         testing::Values(SContainer{"x.wav", ""}, SContainer{"deep.wav", "-b 24 -t wavpcm"},
                                         SContainer{"float.wav", "-e float -b 32"}, SContainer{"law.wav", "-e u-law"},
                                         SContainer{"x.aiff", ""}, SContainer{"x.aifc", ""},
                                         SContainer{"law.aifc", "-e a-law"}, SContainer{"x.au", ""},
                                         SContainer{"double.au", "-e float -b 64"}, SContainer{"x.caf", ""},
                                         SContainer{"x.8svx", ""}, SContainer{"x.w64", ""},
                                         SContainer{"deep.w64", "-b 24"}, SContainer{"x.sph", ""},
                                         SContainer{"law.sph", "-e u-law"}, SContainer{"x.avr", ""},
                                         SContainer{"x.sds", ""}),
                         [](const auto& parameter) {
                             std::string name = parameter.param.m_strName;
                             return name.replace(name.find('.'), 1, "_");
                         });

TEST(SndfileCutShort, ByLessThanAFrameLosesThatFrame) {
    CScratchDirectory scratch;
    const std::string samples = RandomBytes(4000);
    const std::string whole = WavFile({44100, 16, 2}, samples);
    const SOutcome outcome = OutcomeOf(scratch.Write("cut.wav", whole.substr(0, whole.size() - 1)));
    EXPECT_EQ(outcome.m_strReason, CutShort("cut.wav", 999, 1000));
    EXPECT_TRUE(outcome.m_strSamples == samples.substr(0, 3996));
}

TEST(SndfileCutShort, BeforeTheFirstFrameDeliversNone) {
    CScratchDirectory scratch;
    const std::string whole = WavFile({44100, 16, 2}, RandomBytes(4000));
    const SOutcome outcome = OutcomeOf(scratch.Write("cut.wav", whole.substr(0, 44)));
    EXPECT_EQ(outcome.m_strReason, CutShort("cut.wav", 0, 1000));
    EXPECT_EQ(outcome.m_strSamples, "");
}

TEST(SndfileCutShort, FailsEveryReadAtTheEndUntilASeek) {
    CScratchDirectory scratch;
    const std::string samples = RandomBytes(4000);
    const std::string whole = WavFile({44100, 16, 2}, samples);
    SSource source(scratch.Write("cut.wav", whole.substr(0, whole.size() - 400)));
    for (int i = 0; i < 2; ++i) EXPECT_EQ(ReadUntilItEnds(source).m_strReason, CutShort("cut.wav", 900, 1000));
    ASSERT_TRUE(source.m_seekable->Seek(100, nullptr));
    const SOutcome again = ReadUntilItEnds(source);
    EXPECT_TRUE(again.m_strSamples == samples.substr(400, 3200));
    EXPECT_EQ(again.m_strReason, CutShort("cut.wav", 900, 1000));
    EXPECT_FALSE(source.m_seekable->Seek(901, nullptr));
}

TEST(SndfileCutShort, IsNotSaidOfChunksBehindTheSamples) {
    CScratchDirectory scratch;
    for (const std::size_t size : {4000u, 3999u}) {
        const std::string samples = RandomBytes(size);
        const std::string list = Chunk("LIST", "INFO" + Chunk("INAM", std::string("Title\0", 6)));
        const std::string whole = WavFile({44100, 8, 1}, samples, 1, list);
        ExpectWhole(scratch.Write("x.wav", whole), samples);
        for (std::size_t less = 1; less <= list.size(); ++less) {
            ExpectWhole(scratch.Write("x.wav", whole.substr(0, whole.size() - less)), samples);
        }
    }
}

// Some writers declare a few bytes less than there are, so that the count is not told.
TEST(SndfileCutShort, InAVocFileTellsThatTheEndIsMissing) {
    CScratchDirectory scratch;
    RunTool("sox -D " + kVoice + " " + scratch / "x.voc");
    const std::string whole = Content(scratch / "x.voc");
    ExpectWhole(scratch / "x.voc", Decoded(kVoice));
    const SOutcome outcome = OutcomeOf(scratch.Write("cut.voc", whole.substr(0, whole.size() / 2)));
    const std::size_t there = outcome.m_strSamples.size() / 2;
    EXPECT_EQ(outcome.m_strReason,
              "cut.voc: cut short: the end is missing, " + std::to_string(there) + " frames are there");
    EXPECT_GT(there, kVoiceFrames / 2 - 50);
}

TEST(SndfileCutShort, InAWveFileIsToldByItsBytes) {
    CScratchDirectory scratch;
    RunTool("sox -D " + kVoice + " " + scratch / "x.wve");
    const std::string whole = Content(scratch / "x.wve");
    const std::string samples = Decoded(scratch / "x.wve");
    ASSERT_EQ(samples.size(), 2 * (whole.size() - 32));
    const SOutcome outcome = OutcomeOf(scratch.Write("cut.wve", whole.substr(0, 1032)));
    EXPECT_EQ(outcome.m_strReason, CutShort("cut.wve", 1000, whole.size() - 32));
    EXPECT_TRUE(outcome.m_strSamples == samples.substr(0, 2000));
}

// Only whole packets can be read; the last one of the sound need not be full.
TEST(SndfileCutShort, InASampleDumpIsToldByItsPackets) {
    CScratchDirectory scratch;
    const std::string samples = RandomBytes(2 * 1010);
    RunTool("sox " + scratch.Write("x.wav", WavFile({44100, 16, 1}, samples)) + " " + scratch / "x.sds");
    ExpectWhole(scratch / "x.sds", samples);
    const std::string whole = Content(scratch / "x.sds");
    ASSERT_GE(whole.size(), 21u + 26 * 127);
    for (const auto& [size, frames] : {std::pair(26u * 127, 1010u), std::pair(26u * 127 - 1, 1000u),
                                       std::pair(13u * 127, 520u), std::pair(12u * 127 + 5, 480u)}) {
        const SOutcome outcome = OutcomeOf(scratch.Write("cut.sds", whole.substr(0, 21 + size)));
        EXPECT_EQ(outcome.m_strReason, frames == 1010 ? "" : CutShort("cut.sds", frames, 1010));
        EXPECT_EQ(outcome.m_nLength, frames);
        EXPECT_TRUE(outcome.m_strSamples == samples.substr(0, 2 * frames)) << outcome.m_strSamples.size();
    }
    const SOutcome unfinished = OutcomeOf(scratch.Write("x.sds", std::string(whole).replace(10, 3, 3, '\0')));
    EXPECT_EQ(unfinished.m_strReason, "");
    EXPECT_TRUE(unfinished.m_strSamples.substr(0, samples.size()) == samples);
}

TEST(SndfileCutShort, EndsWhereAHeaderCountsItsFrames) {
    CScratchDirectory scratch;
    const std::string samples = RandomBytes(4000);
    RunTool("sox " + scratch.Write("x.wav", WavFile({44100, 16, 2}, samples)) + " " + scratch / "x.sph");
    ExpectWhole(scratch.Write("more.sph", Content(scratch / "x.sph") + RandomBytes(500)), samples);
}

TEST(SndfileCutShort, IsNotSaidOfAMissingPaddingByte) {
    CScratchDirectory scratch;
    const std::string samples = RandomBytes(3999);
    const std::string whole = WavFile({44100, 8, 1}, samples);
    ExpectWhole(scratch.Write("x.wav", whole.substr(0, whole.size() - 1)), samples);
}

TEST(SndfileCutShort, IsNotSaidOfSizesThatMeanUnknown) {
    CScratchDirectory scratch;
    const std::string samples = RandomBytes(4000);
    const std::string wav = WavFile({44100, 16, 2}, samples);
    for (const std::uint64_t size : {0xFFFFFFFFull, 0xFFFFFFDBull, 0x7FFFFFFFull, 0x7FFFF000ull, 0x80000000ull}) {
        ExpectWhole(scratch.Write("x.wav", WithSize(wav, "data", LittleEndian(size, 4))), samples);
    }
    ExpectWhole(scratch.Write("x.au", AuFile(samples, 0xFFFFFFFF)), samples);
    RunTool("sox " + scratch.Write("x.wav", wav) + " " + scratch / "x.caf");
    ExpectWhole(scratch.Write("x.caf", WithSize(Content(scratch / "x.caf"), "data", BigEndian(~0ull, 8))), samples);
}

// As a writer leaves it that could not go back, or was stopped.
TEST(SndfileCutShort, IsNotSaidOfSizesThatWereNeverFilledIn) {
    CScratchDirectory scratch;
    const std::string samples = RandomBytes(4000);
    const std::string wav = WavFile({44100, 16, 2}, samples);
    ExpectWhole(scratch.Write("x.wav", WithSize(wav, "data", LittleEndian(0, 4))), samples);
    for (const std::uint64_t size : {std::uint64_t{0}, ~std::uint64_t{0}}) {
        ExpectWhole(scratch.Write("x.wav", Rf64File(samples, size)), samples);
        ExpectWhole(scratch.Write("x.wav", WithSize(Rf64File(samples, size), "data", LittleEndian(0, 4))), samples);
    }
    for (const std::string name : {"x.aiff", "x.au", "x.caf", "x.w64"}) {
        RunTool("sox -D " + scratch.Write("whole.wav", wav) + " " + scratch / name);
        const std::string whole = Content(scratch / name);
        const std::string expected = Decoded(scratch / name);
        ASSERT_EQ(expected.size(), samples.size());
        const std::string none = name == "x.aiff"  ? WithSize(whole, "SSND", BigEndian(8, 4))
                                 : name == "x.au"  ? WithSize(whole, whole.substr(0, 8), BigEndian(0, 4))
                                 : name == "x.caf" ? WithSize(whole, "data", BigEndian(4, 8))
                                                   : WithSize(whole, kW64Data, LittleEndian(24, 8));
        const SOutcome outcome = OutcomeOf(scratch.Write(name, none));
        EXPECT_EQ(outcome.m_strReason, "") << name;
        EXPECT_TRUE(outcome.m_strSamples.substr(0, expected.size()) == expected) << name;
    }
}

TEST(SndfileCutShort, IsNotSaidOfAFileWithoutSamples) {
    CScratchDirectory scratch;
    const std::string list = Chunk("LIST", "INFO" + Chunk("INAM", std::string("Title\0", 6)));
    ExpectWhole(scratch.Write("x.wav", WavFile({44100, 16, 2}, "")), "");
    ExpectWhole(scratch.Write("x.wav", WavFile({44100, 16, 2}, "", 1, list)), "");
}

TEST(SndfileCutShort, InAnAuFileOfEitherByteOrderIsTold) {
    CScratchDirectory scratch;
    const std::string samples = RandomBytes(4000);
    const std::string little = "dns." + LittleEndian(24, 4) + LittleEndian(4000, 4) + LittleEndian(3, 4) +
                               LittleEndian(44100, 4) + LittleEndian(2, 4) + samples;
    ExpectWhole(scratch.Write("x.au", little), samples);
    for (const std::string& whole : {little, AuFile(samples, 4000)}) {
        const SOutcome outcome = OutcomeOf(scratch.Write("cut.au", whole.substr(0, whole.size() - 400)));
        EXPECT_EQ(outcome.m_strReason, CutShort("cut.au", 900, 1000));
        EXPECT_EQ(outcome.m_strSamples.size(), 3600u);
    }
}

TEST(SndfileCutShort, IsNotSaidOfWhatToolsWriteToAPipe) {
    CScratchDirectory scratch;
    const std::string samples = Decoded(kVoice);
    const std::string raw = "sox " + kVoice + " -t raw - | sox -t raw -r 48000 -b 16 -e signed -c 1 - ";
    for (const std::string type : {"wav", "aiff", "aifc", "au", "flac"}) {
        RunTool(raw + "-t " + type + " - | cat > " + scratch / ("x." + type));
        ExpectWhole(scratch / ("x." + type), samples);
    }
    for (const std::string rf64 : {"never", "auto", "always"}) {
        RunTool("ffmpeg -v error -i " + kVoice + " -rf64 " + rf64 + " -f wav - | cat > " + scratch / "x.wav");
        ExpectWhole(scratch / "x.wav", samples);
    }
}

TEST(SndfileCutShort, IsNotSaidOfOtherCodingsAndShortSounds) {
    CScratchDirectory scratch;
    for (const std::string options : {"-e ima-adpcm", "-e ms-adpcm", "-e gsm", "-e u-law", "-b 8"}) {
        for (const std::string length : {"0", "1", "777", "4001"}) {
            RunTool("sox -D " + kVoice + " " + options + " " + scratch / "x.wav" + " trim 0 " + length + "s");
            EXPECT_EQ(OutcomeOf(scratch / "x.wav").m_strReason, "") << options << " " << length;
        }
    }
}

TEST(SndfileCutShort, InAnAdpcmFileTellsThatTheEndIsMissing) {
    CScratchDirectory scratch;
    RunTool("sox -D " + kVoice + " -e ms-adpcm " + scratch / "x.wav");
    const std::string whole = Content(scratch / "x.wav");
    const SOutcome outcome = OutcomeOf(scratch.Write("cut.wav", whole.substr(0, whole.size() / 2)));
    EXPECT_EQ(outcome.m_strReason, "cut.wav: cut short: the end is missing, " +
                                       std::to_string(outcome.m_strSamples.size() / 2) + " frames are there");
    EXPECT_GT(outcome.m_strSamples.size(), 60000u);
}

TEST(SndfileCutShort, InAnRf64FileIsToldByItsLongSize) {
    CScratchDirectory scratch;
    const std::string samples = RandomBytes(4000);
    const std::string whole = Rf64File(samples, 4000);
    ExpectWhole(scratch.Write("x.wav", whole), samples);
    const SOutcome outcome = OutcomeOf(scratch.Write("cut.wav", whole.substr(0, whole.size() - 400)));
    EXPECT_EQ(outcome.m_strReason, CutShort("cut.wav", 900, 1000));
}

TEST(SndfileCutShort, InsideAFlacFrameTellsTheDamage) {
    CScratchDirectory scratch;
    RunTool("flac -s -f -o " + scratch / "x.flac" + " " + kVoice);
    const std::string whole = Content(scratch / "x.flac");
    const SOutcome outcome = OutcomeOf(scratch.Write("cut.flac", whole.substr(0, whole.size() / 2)));
    EXPECT_EQ(outcome.m_strReason.rfind("cut.flac: damaged FLAC audio after frame ", 0), 0u) << outcome.m_strReason;
    EXPECT_TRUE(Decoded(kVoice).compare(0, outcome.m_strSamples.size(), outcome.m_strSamples) == 0);
    EXPECT_GT(outcome.m_strSamples.size(), 0u);
}

class CCutOgg : public testing::TestWithParam<const char*> {
protected:
    CCutOgg() {
        const std::string path = m_scratch / "x.ogg";
        RunTool("sox " + kVoice + " -b 16 " + m_scratch / "x.wav" + " repeat 20");
        RunTool(std::string(GetParam()) == "opus" ? "opusenc --quiet " + m_scratch / "x.wav" + " " + path
                                                  : "oggenc -Q -o " + path + " " + m_scratch / "x.wav");
        m_strWhole = Content(path);
        m_strSamples = Decoded(path);
        m_nLastPage = m_strWhole.rfind("OggS");
    }

    CScratchDirectory m_scratch;
    std::string m_strWhole;
    std::string m_strSamples;
    std::size_t m_nLastPage;
};

TEST_P(CCutOgg, DeliversTheWholePagesAndThenTellsThatTheEndIsMissing) {
    for (const std::size_t size : {m_strWhole.size() - 1, m_nLastPage + 2, m_nLastPage + 20, m_nLastPage - 1,
                                   m_strWhole.size() / 2, m_strWhole.size() / 3}) {
        SSource source(m_scratch.Write("cut.ogg", m_strWhole.substr(0, size)));
        const SOutcome outcome = ReadUntilItEnds(source);
        const std::size_t there = outcome.m_strSamples.size() / 2;
        EXPECT_EQ(outcome.m_strReason,
                  "cut.ogg: cut short: the end is missing, " + std::to_string(there) + " frames are there");
        EXPECT_GT(there, 10000u) << size;
        EXPECT_EQ(outcome.m_nLength, there);
        EXPECT_LE(GreatestDifference(outcome.m_strSamples, m_strSamples), 1);
    }
}

TEST_P(CCutOgg, IsWholeAtTheEndOfAPageEvenWithoutAnEndOfStream) {
    const SOutcome outcome = OutcomeOf(m_scratch.Write("x.ogg", m_strWhole.substr(0, m_nLastPage)));
    EXPECT_EQ(outcome.m_strReason, "");
    EXPECT_GT(outcome.m_strSamples.size(), 100000u);
    EXPECT_LT(outcome.m_strSamples.size(), m_strSamples.size());
}

TEST_P(CCutOgg, IsWholeWithOtherBytesBehindTheEndOfTheStream) {
    const SOutcome outcome = OutcomeOf(m_scratch.Write("x.ogg", m_strWhole + "TAG" + RandomBytes(125)));
    EXPECT_EQ(outcome.m_strReason, "");
    EXPECT_TRUE(outcome.m_strSamples == m_strSamples);
}

INSTANTIATE_TEST_SUITE_P(SndfileCutShort, CCutOgg, testing::Values("vorbis", "opus"),
                         [](const auto& parameter) { return std::string(parameter.param); });

TEST(SndfileCutShort, OggBeforeItsFirstWholePageOfSoundDeliversNone) {
    CScratchDirectory scratch;
    RunTool("oggenc -Q -o " + scratch / "x.ogg" + " " + kVoice);
    const std::string whole = Content(scratch / "x.ogg");
    const SOutcome outcome = OutcomeOf(scratch.Write("cut.ogg", whole.substr(0, whole.size() * 3 / 10)));
    EXPECT_EQ(outcome.m_strReason, "cut.ogg: cut short: the end is missing, 0 frames are there");
    EXPECT_EQ(outcome.m_strSamples, "");
}

TEST(SndfileCutShort, Mp3ThatDeclaresMoreFramesIsTold) {
    CScratchDirectory scratch;
    for (const std::string options : {"", "-V2", "-V2 --id3v2-only --tt Title"}) {
        RunTool("lame --quiet " + options + " " + kVoice + " " + scratch / "x.mp3");
        const std::string whole = Content(scratch / "x.mp3");
        for (const std::size_t size : {whole.size() - 1, whole.size() / 2}) {
            SSource source(scratch.Write("cut.mp3", whole.substr(0, size)));
            const SOutcome outcome = ReadUntilItEnds(source);
            const std::size_t there = outcome.m_strSamples.size() / 2;
            EXPECT_EQ(outcome.m_strReason, CutShort("cut.mp3", there, kVoiceFrames));
            EXPECT_EQ(outcome.m_nLength, there);
            EXPECT_GT(there, 20000u);
            EXPECT_LE(GreatestDifference(outcome.m_strSamples, Decoded(scratch / "x.mp3")), 1);
        }
    }
}

TEST(SndfileCutShort, Mp3ThatDeclaresNothingDeliversItsWholeFrames) {
    CScratchDirectory scratch;
    RunTool("lame --quiet -V2 -t " + kVoice + " " + scratch / "x.mp3");
    const std::string whole = Content(scratch / "x.mp3");
    const std::string samples = Decoded(scratch / "x.mp3");
    const SOutcome outcome = OutcomeOf(scratch.Write("cut.mp3", whole.substr(0, whole.size() - 1)));
    EXPECT_EQ(outcome.m_strReason, "");
    EXPECT_TRUE(outcome.m_strSamples == samples.substr(0, samples.size() - 2 * 1152));
}

// The template of a host that writes.
#include <cstdlib>

#include "tests/examples/ExamplesTest.h"
#include "tests/support/HeldLibgomp.h"

namespace {

class WritingHost : public CExamplesTest {
protected:
    WritingHost() {
        Add("decoder", "plain_decoder");
        Add("encoder", "plain_encoder");
    }

    // The exit status; runs in the scratch directory.
    int Write(const std::string& sound, const std::string& file) const {
        const std::string host = (std::filesystem::path(KELO_EXAMPLES) / "writing-host" / "writing-host").string();
        const std::string command = "cd '" + m_scratch.Path().string() + "' && '" + host + "' '" +
                                    PluginDirectory().string() + "' '" + sound + "' '" + file + "' 2> failure";
        return std::system(command.c_str());
    }

    // The line on standard error.
    std::string FailureOf(const std::string& sound, const std::string& file) const {
        EXPECT_NE(Write(sound, file), 0);
        return ReadFile(m_scratch / "failure");
    }
};

TEST_F(WritingHost, WritesTheSamples) {
    const std::string file = PlainFile(40000);
    m_scratch.Write("some.plain", file);
    EXPECT_EQ(Write("some.plain", "other.PLAIN"), 0) << ReadFile(m_scratch / "failure");
    EXPECT_TRUE(SamplesOf(ReadFile(m_scratch / "other.PLAIN")) == SamplesOf(file));
    EXPECT_FALSE(std::filesystem::exists(m_scratch / "other.PLAIN.part"));
}

TEST_F(WritingHost, TellsWhyNothingIsWritten) {
    m_scratch.Write("some.plain", PlainFile(100));
    m_scratch.Write("other.plain", "something else");
    EXPECT_EQ(FailureOf("nowhere.plain", "new.plain"), "nowhere.plain: No such file or directory\n");
    EXPECT_EQ(FailureOf("other.plain", "new.plain"), "other.plain: other.plain: not a plain file\n");
    EXPECT_EQ(FailureOf("gopher://nowhere", "new.plain"), "gopher://nowhere: failed\n");
    EXPECT_EQ(FailureOf("some.plain", "new.wav"), "no encoder lists \"wav\"\n");
    EXPECT_EQ(FailureOf("some.plain", "new"), "no encoder lists \"\"\n");
    EXPECT_EQ(FailureOf("some.plain", "missing/new.plain"),
              "missing/new.plain: new.plain.part: cannot be written: No such file or directory\n");
    EXPECT_FALSE(std::filesystem::exists(m_scratch / "new.plain"));
}

TEST_F(WritingHost, LeavesNothingHalfDoneAndWhatWasThere) {
    m_scratch.Write("some.plain", PlainFile(100));
    m_scratch.Write("old.plain.part", "somebody's");
    EXPECT_EQ(FailureOf("some.plain", "old.plain"), "old.plain.part: is there already\n");
    EXPECT_EQ(ReadFile(m_scratch / "old.plain.part"), "somebody's");
    std::filesystem::create_directory(m_scratch / "directory.plain");
    FailureOf("some.plain", "directory.plain");
    EXPECT_FALSE(std::filesystem::exists(m_scratch / "directory.plain.part"));
}

#ifdef KELO_SNDFILE_PLUGIN
class WritingHostAmongCodecs : public WritingHost {
protected:
    WritingHostAmongCodecs() {
        for (const std::filesystem::path plugin : {KELO_SNDFILE_PLUGIN, KELO_SOXR_PLUGIN}) {
            std::filesystem::copy_file(plugin, PluginDirectory() / plugin.filename());
        }
        support::HoldLibgompInPrograms();
    }
};

// A second of 44100 Hz, and Opus has 48000 Hz: what a resampler still holds at the end is there as well.
TEST_F(WritingHostAmongCodecs, WritesWhatTheFileTakes) {
    m_scratch.Write("some.plain", PlainFile(44100).replace(4, 2, "\x44\xAC"));
    ASSERT_EQ(Write("some.plain", "some.opus"), 0) << ReadFile(m_scratch / "failure");
    ASSERT_EQ(Write("some.opus", "back.plain"), 0) << ReadFile(m_scratch / "failure");
    EXPECT_EQ(ReadFile(m_scratch / "back.plain").substr(0, 12), PlainFile(0).substr(0, 12));
    EXPECT_EQ(SamplesOf(ReadFile(m_scratch / "back.plain")).size(), 48000U * 4);
}

TEST_F(WritingHostAmongCodecs, LeavesTheOldFileWhereASoundBreaksOff) {
    m_scratch.Write("some.plain", PlainFile(100000));
    ASSERT_EQ(Write("some.plain", "cut.flac"), 0) << ReadFile(m_scratch / "failure");
    std::filesystem::resize_file(m_scratch / "cut.flac", std::filesystem::file_size(m_scratch / "cut.flac") / 2);
    m_scratch.Write("old.plain", "the old one");
    EXPECT_NE(Write("cut.flac", "old.plain"), 0);
    EXPECT_EQ(ReadFile(m_scratch / "old.plain"), "the old one");
    EXPECT_FALSE(std::filesystem::exists(m_scratch / "old.plain.part"));
}
#endif

}  // namespace

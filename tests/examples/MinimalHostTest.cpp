// The host template.
#include <cstdlib>

#include "tests/examples/ExamplesTest.h"

namespace {

class MinimalHost : public CExamplesTest {
protected:
    MinimalHost() { Add("decoder", "plain_decoder"); }

    // The exit status; `redirections` are the shell's. Runs in the scratch directory.
    int Play(const std::string& sound, const std::string& redirections) const {
        const std::string host = (std::filesystem::path(KELO_EXAMPLES) / "host" / "minimal-host").string();
        const std::string command = "cd '" + m_scratch.Path().string() + "' && '" + host + "' '" +
                                    PluginDirectory().string() + "' '" + sound + "' " + redirections;
        return std::system(command.c_str());
    }

    // The line on standard error.
    std::string FailureOf(const std::string& sound, const std::string& redirections = "") const {
        EXPECT_NE(Play(sound, redirections + " 2> failure"), 0);
        return ReadFile(m_scratch / "failure");
    }
};

TEST_F(MinimalHost, WritesTheSamples) {
    const std::string file = PlainFile(40000);
    for (const std::string& sound : {m_scratch.Write("some.plain", file), std::string("some.plain")}) {
        EXPECT_EQ(Play(sound, "> samples.raw"), 0) << sound;
        EXPECT_TRUE(ReadFile(m_scratch / "samples.raw") == SamplesOf(file)) << sound;
    }
}

TEST_F(MinimalHost, TellsWhyASoundCannotBePlayed) {
    m_scratch.Write("other.plain", "something else");
    m_scratch.Write("other.wav", "something else");
    EXPECT_EQ(FailureOf("other.plain"), "other.plain: other.plain: not a plain file\n");
    EXPECT_EQ(FailureOf("other.wav"), "other.wav: no decoder opened it\n");
    EXPECT_EQ(FailureOf("nowhere.plain"), "nowhere.plain: No such file or directory\n");
    EXPECT_EQ(FailureOf("gopher://nowhere"), "gopher://nowhere: failed\n");
    EXPECT_EQ(FailureOf(""), ": failed\n");
}

TEST_F(MinimalHost, TellsThatItsOutputCannotBeWritten) {
    m_scratch.Write("some.plain", PlainFile(40000));
    EXPECT_EQ(FailureOf("some.plain", "> /dev/full"), "standard output: failed\n");
}

}  // namespace

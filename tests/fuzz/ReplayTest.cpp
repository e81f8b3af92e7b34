// The replay of stored inputs, by its exit status and what it prints.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

#include "tests/support/ScratchDirectory.h"

namespace {

struct SReplay {
    int m_nExit;
    std::string m_strErr;
};

SReplay Replay(const std::string& arguments) {
    const CScratchDirectory scratch;
    const std::string output = scratch / "err";
    const int status = std::system(("'" KELO_REPLAY "' " + arguments + " 2>" + output).c_str());
    std::ifstream stream(output);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1,
            {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()}};
}

}  // namespace

TEST(FuzzReplay, RunsEveryInputOfAFolderAndNamesIt) {
    const CScratchDirectory scratch;
    const std::string a = scratch.Write("a", "");
    const std::string b = scratch.Write("b", "\x01*.so");
    const SReplay replay = Replay(scratch.Path().string());
    EXPECT_EQ(replay.m_nExit, 0);
    EXPECT_EQ(replay.m_strErr, a + "\n" + b + "\n");
}

TEST(FuzzReplay, RunsSingleInputs) {
    const CScratchDirectory scratch;
    EXPECT_EQ(Replay(scratch.Write("a", "\x01*.so")).m_nExit, 0);
}

TEST(FuzzReplay, AMissingInputIsAnError) { EXPECT_EQ(Replay("/no-such-folder/input").m_nExit, 1); }

TEST(FuzzReplay, NothingToReplayIsAnError) {
    const CScratchDirectory scratch;
    EXPECT_EQ(Replay("").m_nExit, 2);
    EXPECT_EQ(Replay(scratch.Path().string()).m_nExit, 2);
}

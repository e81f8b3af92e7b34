// The mending of sizes and checksums: whole files stay as they are, damaged ones become what they were.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

#include "fuzz/ContainerRepair.h"

namespace {

std::string Seed(const std::string& name) {
    std::ifstream stream(KELO_FUZZ_CORPUS "/sndfile_decoder/" + name, std::ios::binary);
    if (!stream) throw std::runtime_error("no seed " + name);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

// The file with some bytes overwritten.
std::string Damaged(std::string file, std::size_t at, const std::string& bytes) {
    return file.replace(at, bytes.size(), bytes);
}

std::string Repaired(std::string file) {
    RepairContainer(file);
    return file;
}

// Whether the damage is one, and is mended.
void ExpectMended(const std::string& whole, std::size_t at, const std::string& bytes) {
    const std::string damaged = Damaged(whole, at, bytes);
    EXPECT_NE(damaged, whole) << at;
    EXPECT_EQ(Repaired(damaged), whole) << at;
}

}  // namespace

TEST(ContainerRepair, LeavesWholeFilesAlone) {
    for (const char* const name : {"pcm16.wav", "pcm24.wav", "float.wav", "msadpcm.wav", "tags.wav", "mono.flac",
                                   "stereo.flac", "vorbis.ogg", "opus.ogg", "flac.oga", "pcm.aiff", "layer3.mp3"}) {
        EXPECT_EQ(Repaired(Seed(name)), Seed(name)) << name;
    }
}

TEST(ContainerRepair, LeavesTextsAndStartsOfFilesAlone) {
    for (const char* const text : {"", "R", "RIFF", "fLaC", "OggS", "no sound at all"}) {
        EXPECT_EQ(Repaired(text), text);
    }
}

TEST(ContainerRepair, MendsSizesInWavFiles) {
    const std::string whole = Seed("pcm16.wav");
    ExpectMended(whole, 4, "\xFF\xFF\xFF\xFF");
    ExpectMended(whole, whole.find("data") + 4, "\xFF\xFF\xFF\x7F");
    ExpectMended(whole, 28, "\x01\x02\x03\x04\x05\x06");
}

TEST(ContainerRepair, MendsTheFirstBlockOfFlacFiles) {
    const std::string whole = Seed("mono.flac");
    ExpectMended(whole, 4, "\x05");
    ExpectMended(whole, 5, "\xFF\xFF\xFF");
    EXPECT_EQ(Repaired(Damaged(whole, 18, std::string(2, '\0') + '\x0F')).substr(18, 3), std::string("\0\x01\x0F", 3));
}

TEST(ContainerRepair, MendsTheChecksumsOfFlacFrames) {
    const std::string whole = Seed("mono.flac");
    const std::size_t first = whole.find("\xFF\xF8");
    const std::size_t second = whole.find("\xFF\xF8", first + 2);
    ASSERT_NE(second, std::string::npos);
    ExpectMended(whole, second - 2, "\x12\x34");
    ExpectMended(whole, whole.size() - 2, "\x12\x34");
    // Behind the sync code, two bytes of codes and the frame's number.
    ExpectMended(whole, first + 5, "\x12");
}

TEST(ContainerRepair, MendsThePagesOfOggFiles) {
    const std::string whole = Seed("opus.ogg");
    const std::size_t second = whole.find("OggS", 1);
    ExpectMended(whole, 22, "\x12\x34\x56\x78");
    ExpectMended(whole, second + 22, "\x12\x34\x56\x78");
    const std::string cut = Repaired(whole.substr(0, whole.size() - 3));
    EXPECT_EQ(Repaired(cut), cut);
    EXPECT_EQ(cut.size(), whole.size() - 3);
}

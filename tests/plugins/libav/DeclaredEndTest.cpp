// Where files end by their own account.
#include <gtest/gtest.h>

#include "plugins/libav/DeclaredEnd.h"
#include "tests/support/ScratchDirectory.h"

namespace {

struct SFileWithEnd {
    const char* m_strWhat;
    std::string m_strContent;
    bool m_bCutShort;
};

const std::string kZeros(200, '\0');

std::string Text(const char* bytes, std::size_t count) { return std::string(bytes, count); }

const std::string kWholeRiff = "RIFF" + Text("d\0\0\0", 4) + kZeros.substr(0, 100);
const std::string kBox = Text("\0\0\0\x10", 4) + "ftypM4A 0000";

// A size of 100 behind a header of `start`.
const SFileWithEnd kFiles[] = {
    {"a whole RIFF file", "RIFF" + Text("d\0\0\0", 4) + kZeros.substr(0, 100), false},
    {"RIFF with more behind it", "RIFF" + Text("d\0\0\0", 4) + kZeros, false},
    {"RIFF that is cut", "RIFF" + Text("d\0\0\0", 4) + kZeros.substr(0, 80), true},
    {"RIFF without its last padding", "RIFF" + Text("d\0\0\0", 4) + kZeros.substr(0, 99), false},
    {"RIFF of a size that was never filled in", "RIFF" + Text("\0\0\0\0", 4) + kZeros, false},
    {"RIFF of unknown size", "RIFF\xFF\xFF\xFF\xFF" + kZeros, false},
    {"a second RIFF part that is cut",
     "RIFF" + Text("d\0\0\0", 4) + kZeros.substr(0, 100) + "RIFF" + Text("d\0\0\0", 4) + "AVIX", true},
    {"whole boxes", Text("\0\0\0\x10", 4) + "ftypM4A 0000" + Text("\0\0\0\x28moov", 8) + kZeros.substr(0, 32), false},
    {"a box that is cut", Text("\0\0\0\x10", 4) + "ftypM4A 0000" + Text("\0\0\0\x78moov", 8) + kZeros.substr(0, 50),
     true},
    {"a box to the end of the file", Text("\0\0\0\x10", 4) + "ftypM4A 0000" + Text("\0\0\0\0mdat", 8) + kZeros, false},
    {"a box with a long size that is cut",
     Text("\0\0\0\x10", 4) + "ftypM4A 0000" + Text("\0\0\0\1mdat\0\0\0\0\0\0\1\0", 16) + kZeros.substr(0, 90), true},
    {"a box with a size that cannot be", Text("\0\0\0\x10", 4) + "ftypM4A 0000" + Text("\0\0\0\5moov", 8), false},
    {"a whole Matroska file",
     Text("\x1A\x45\xDF\xA3\x84", 5) + "0000" + Text("\x18\x53\x80\x67\x40\x64", 6) + kZeros.substr(0, 100), false},
    {"Matroska that is cut",
     Text("\x1A\x45\xDF\xA3\x84", 5) + "0000" + Text("\x18\x53\x80\x67\x40\x64", 6) + kZeros.substr(0, 70), true},
    {"Matroska of unknown size",
     Text("\x1A\x45\xDF\xA3\x84", 5) + "0000" + Text("\x18\x53\x80\x67\x01\xFF\xFF\xFF\xFF\xFF\xFF\xFF", 12), false},
    {"Matroska with nonsense behind its header", Text("\x1A\x45\xDF\xA3\x84", 5) + "0000" + kZeros, false},
    {"Matroska that ends in a size", Text("\x1A\x45\xDF\xA3\x84", 5) + "0000" + Text("\x18\x53\x80\x67\x01\x00", 6),
     true},
    {"RIFF and a byte", kWholeRiff + "\n", false},
    {"RIFF and two bytes", kWholeRiff + "RI", false},
    {"RIFF and the beginning of a size", kWholeRiff + "RIFFd", false},
    {"boxes and a byte", kBox + "\n", false},
    {"boxes and three bytes", kBox + Text("\0\0\0", 3), false},
    {"boxes and the beginning of one with a long size", kBox + Text("\0\0\0\1mda", 7), false},
    {"boxes and the beginning of a long size", kBox + Text("\0\0\0\1mdat\0", 9), false},
    {"another format", "fLaC" + kZeros, false},
    {"a single byte", "R", false},
};

TEST(LibavDeclaredEnd, FilesThatGoOnBeyondTheirEndAreCutShort) {
    const CScratchDirectory scratch;
    for (const SFileWithEnd& file : kFiles) {
        const CInputFile input(scratch.Write("x", file.m_strContent));
        EXPECT_EQ(IsCutShort(input), file.m_bCutShort) << file.m_strWhat;
    }
}

}  // namespace

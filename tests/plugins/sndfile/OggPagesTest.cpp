// Where the pages of an Ogg file end, on pages made by hand.
#include <fcntl.h>

#include "plugins/shared/FileDescriptor.h"
#include "plugins/sndfile/OggPages.h"
#include "tests/plugins/sndfile/AudioFiles.h"
#include "tests/plugins/sndfile/PluginUnderTest.h"
#include "tests/support/ScratchDirectory.h"

namespace {

// A page of one packet, or of a piece of one that goes on in the next page.
std::string Page(std::size_t bytes, bool endOfStream, bool goesOn = false) {
    std::string lacing(goesOn ? bytes / 255 : bytes / 255 + 1, '\xFF');
    if (!goesOn) lacing.back() = static_cast<char>(bytes % 255);
    const std::string header = std::string("OggS\0", 5) + (endOfStream ? '\x04' : '\x00') + std::string(20, '\x01') +
                               static_cast<char>(lacing.size());
    return header + lacing + std::string(bytes, '\x5A');
}

SOggEnd EndOf(const std::string& content) {
    const CScratchDirectory scratch;
    const CFileDescriptor descriptor(open(scratch.Write("x.ogg", content).c_str(), O_RDONLY | O_CLOEXEC));
    CFileBytes file(descriptor.Get());
    return FindOggEnd(file);
}

// RFC 3533, 6: the polynomial 0x04C11DB7, neither side reflected, over the page with the field itself at zero.
std::uint32_t PageChecksum(const std::string& page) {
    std::uint32_t sum = 0;
    for (const char byte : page) {
        sum ^= std::uint32_t{static_cast<unsigned char>(byte)} << 24;
        for (int bit = 0; bit < 8; ++bit) sum = sum << 1 ^ (sum >> 31 != 0 ? 0x04C11DB7u : 0u);
    }
    return sum;
}

std::string WithLastGranule(const std::string& file, std::uint64_t granule) {
    const std::size_t at = file.rfind("OggS");
    std::string page = file.substr(at);
    page.replace(6, 8, LittleEndian(granule, 8)).replace(22, 4, 4, '\0');
    page.replace(22, 4, LittleEndian(PageChecksum(page), 4));
    return file.substr(0, at) + page;
}

}  // namespace

TEST(SndfileOggPages, EndInsideAPageOrAPacketOnlyWithoutTheEndOfTheStream) {
    const std::string body = Page(4000, false) + Page(700, false);
    const std::string last = Page(300, true);
    struct SRow {
        std::string m_strContent;
        std::size_t m_nEnd;
        bool m_bCutShort;
    };
    const SRow rows[] = {{body + last, body.size() + last.size(), false},
                         {body, body.size(), false},
                         {body + last.substr(0, 2), body.size(), true},
                         {body + last.substr(0, 27), body.size(), true},
                         {body + last.substr(0, 28), body.size(), true},
                         {body + last.substr(0, last.size() - 1), body.size(), true},
                         {body + Page(510, false, true), body.size() + 27 + 2 + 510, true},
                         {body + Page(510, true, true), body.size() + 27 + 2 + 510, false},
                         {body + last + "TAG", body.size() + last.size(), false},
                         {body + last + last.substr(0, 100), body.size() + last.size(), true},
                         {body + "between" + last, body.size() + 7 + last.size(), false},
                         {last.substr(0, 100), 0, true},
                         {"", 0, false}};
    for (const SRow& row : rows) {
        const SOggEnd end = EndOf(row.m_strContent);
        EXPECT_EQ(end.m_nAt, row.m_nEnd) << &row - rows;
        EXPECT_EQ(end.m_bCutShort, row.m_bCutShort) << &row - rows;
    }
}

TEST(SndfileOggPages, AreFoundAtTheEndOfALongFile) {
    std::string body;
    while (body.size() < 400000) body += Page(64000, false);
    const std::string last = Page(64000, true);
    EXPECT_EQ(EndOf(body + last).m_nAt, body.size() + last.size());
    EXPECT_FALSE(EndOf(body + last).m_bCutShort);
    EXPECT_EQ(EndOf(body + last.substr(0, 40000)).m_nAt, body.size());
    EXPECT_TRUE(EndOf(body + last.substr(0, 40000)).m_bCutShort);
}

// A packet may hold what looks like the beginning of a page.
TEST(SndfileOggPages, AreNotTakenFromInsideAPacket) {
    std::string body;
    while (body.size() < 400000) {
        std::string page = Page(64000, false);
        body += page.replace(30000, 5, std::string("OggS\0", 5));
    }
    const std::string last = Page(100, true);
    EXPECT_EQ(EndOf(body + last).m_nAt, body.size() + last.size());
    EXPECT_FALSE(EndOf(body + last).m_bCutShort);
}

TEST(SndfileOggPages, OfAPositionThatCannotBeLeaveTheLengthUnknownUntilTheEnd) {
    CScratchDirectory scratch;
    RunTool("sox " + kVoice + " -b 16 " + scratch / "x.wav" + " repeat 3");
    RunTool("oggenc -Q -o " + scratch / "x.ogg" + " " + scratch / "x.wav");
    RunTool("opusenc --quiet " + scratch / "x.wav" + " " + scratch / "x.opus");
    for (const std::string name : {"x.ogg", "x.opus"}) {
        const std::string samples = Decoded(scratch / name);
        for (const std::uint64_t granule : {std::uint64_t{1} << 62, std::uint64_t{1} << 40}) {
            SSource source(scratch.Write("lie.ogg", WithLastGranule(Content(scratch / name), granule)));
            EXPECT_EQ(source.m_reader->GetRawLen(), 0u) << name << " " << granule;
            EXPECT_EQ(source.m_blocks->GetDataLength(), 0u);
            ASSERT_TRUE(source.m_process->Start(nullptr));
            const std::string all = ReadOn(source);
            ASSERT_GE(all.size(), samples.size());
            EXPECT_TRUE(all.substr(0, samples.size()) == samples) << name << " " << granule;
            EXPECT_EQ(source.m_reader->GetRawLen(), all.size());
            for (const std::uint64_t target : {100000u, 250000u}) {
                ASSERT_TRUE(source.m_seekable->Seek(target, nullptr));
                EXPECT_LE(GreatestDifference(ReadOn(source, 4096, 8192), all.substr(2 * target, 8192)), 1) << target;
            }
        }
    }
}

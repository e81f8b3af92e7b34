// The decoder template.
#include <sys/stat.h>

#include "tests/examples/ExamplesTest.h"

namespace {

using PlainDecoder = CExamplesTest;

TEST_F(PlainDecoder, ReadsSamplesAndTags) {
    Add("decoder", "plain_decoder");
    Load();
    const std::string file = PlainFile(1000);
    const auto stream = Open(m_scratch.Write("some.plain", file));
    EXPECT_EQ(CComPtr<IAudioRawReader>::Query(stream.Get(), IID_IAudioRawReader)->GetRawFormat(), kFormat);
    EXPECT_EQ(CComPtr<IAudioRawBlockInfo>::Query(stream.Get(), IID_IAudioRawBlockInfo)->GetDataLength(), 1000U);
    EXPECT_EQ(ReadAll(stream), SamplesOf(file));
    EXPECT_EQ(TitleOf(m_scratch / "some.plain"), "A title");
}

TEST_F(PlainDecoder, GivesEveryTitleAsUtf8) {
    Add("decoder", "plain_decoder");
    Load();
    const std::string cut = std::string(kTitleBytes - 1, 'a') + "\xC3";
    EXPECT_EQ(TitleOf(m_scratch.Write("utf8.plain", PlainFile(1, "\xC3\xA9t\xC3\xA9"))), "\xC3\xA9t\xC3\xA9");
    EXPECT_EQ(TitleOf(m_scratch.Write("latin1.plain", PlainFile(1, "\xE9t\xE9"))), "\xC3\xA9t\xC3\xA9");
    EXPECT_EQ(TitleOf(m_scratch.Write("cut.plain", PlainFile(1, cut))), cut.substr(0, kTitleBytes - 1) + "\xC3\x83");
}

TEST_F(PlainDecoder, RefusesOtherFiles) {
    Add("decoder", "plain_decoder");
    Load();
    for (const std::string& content :
         {std::string(), std::string("PLN2") + PlainFile(3).substr(4), std::string("PL")}) {
        EXPECT_EQ(RefusalOf(m_scratch.Write("other.plain", content)), "other.plain: not a plain file");
    }
}

// What is in the pipe would be refused for another reason.
TEST_F(PlainDecoder, RefusesAPipeUnopened) {
    Add("decoder", "plain_decoder");
    Load();
    const std::string pipe = m_scratch / "pipe.plain";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    std::fstream writer(pipe);
    writer << std::string(100, 'x') << std::flush;
    EXPECT_EQ(RefusalOf(pipe), "pipe.plain: not a regular file");
}

}  // namespace

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

TEST_F(PlainDecoder, SeeksToTheVeryFrame) {
    Add("decoder", "plain_decoder");
    Load();
    const std::string file = PlainFile(1000);
    const auto stream = OpenBare(m_scratch.Write("some.plain", file));
    const auto seekable = CComPtr<ISeekable>::Query(stream.Get(), IID_ISeekable);
    ASSERT_TRUE(seekable);
    ASSERT_TRUE(CComPtr<IProcess>::Query(stream.Get(), IID_IProcess)->Start(nullptr));
    for (const std::size_t frame : {500U, 0U, 1U, 999U, 1000U}) {
        ASSERT_TRUE(seekable->Seek(frame, nullptr)) << frame;
        EXPECT_EQ(ReadOn(stream), SamplesOf(file).substr(4 * frame)) << frame;
    }
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

TEST_F(PlainDecoder, RefusesUnknownSampleFormats) {
    Add("decoder", "plain_decoder");
    Load();
    // Rates of 0 and 768001, 0 and 9 channels, 0, 12 and 64 bits.
    const std::vector<std::pair<std::size_t, std::string>> fields = {
        {4, {0, 0, 0, 0}}, {4, "\x01\xB8\x0B" + std::string(1, '\0')},
        {8, {0, 0}},       {8, {9, 0}},
        {10, {0, 0}},      {10, {12, 0}},
        {10, {64, 0}}};
    for (const auto& [place, field] : fields) {
        const std::string file = PlainFile(3).replace(place, field.size(), field);
        EXPECT_EQ(RefusalOf(m_scratch.Write("other.plain", file)),
                  "other.plain: a plain file of an unknown sample format")
            << testing::PrintToString(field);
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

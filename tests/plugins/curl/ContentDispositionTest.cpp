// The file name in a Content-Disposition header.
#include <gtest/gtest.h>

#include "plugins/curl/ContentDisposition.h"

namespace {

struct SHeader {
    const char* m_szHeader;
    const char* m_szName;
};

void ExpectNames(std::initializer_list<SHeader> headers) {
    for (const SHeader& header : headers) {
        EXPECT_EQ(FileNameOfDisposition(header.m_szHeader), header.m_szName) << header.m_szHeader;
    }
}

TEST(ContentDisposition, FileNameIsATokenOrAQuotedString) {
    ExpectNames({{"attachment; filename=song.mp3", "song.mp3"},
                 {"attachment;filename=song.mp3;size=3", "song.mp3"},
                 {"attachment; filename=\"my song.mp3\"", "my song.mp3"},
                 {"inline; filename=\"a;b=c.mp3\"; size=3", "a;b=c.mp3"},
                 {"attachment; filename=\"say \\\"hi\\\".mp3\"", "say \"hi\".mp3"},
                 {"ATTACHMENT ; FileName = \"song.mp3\" ", "song.mp3"},
                 {"attachment; size=3; filename=song.mp3", "song.mp3"},
                 {"attachment; filename=first.mp3; filename=second.mp3", "first.mp3"}});
}

TEST(ContentDisposition, ExtendedFileNameComesFirst) {
    ExpectNames({{"attachment; filename=plain.mp3; filename*=UTF-8''caf%c3%a9.mp3", "caf\xC3\xA9.mp3"},
                 {"attachment; filename*=utf-8'en'%e2%82%ac%20rates.mp3; filename=plain.mp3", "\xE2\x82\xAC rates.mp3"},
                 {"attachment; filename*=iso-8859-1''caf%E9.mp3", "caf\xC3\xA9.mp3"},
                 {"attachment; filename*=\"UTF-8''quoted.mp3\"", "quoted.mp3"}});
}

TEST(ContentDisposition, ExtendedFileNameThatCannotBeReadIsPassedOver) {
    ExpectNames({{"attachment; filename=plain.mp3; filename*=shift_jis''%83.mp3", "plain.mp3"},
                 {"attachment; filename=plain.mp3; filename*=nonsense", "plain.mp3"},
                 {"attachment; filename=plain.mp3; filename*=", "plain.mp3"},
                 {"attachment; filename*=shift_jis''%83.mp3", ""}});
}

TEST(ContentDisposition, FoldersAreTheServersOwn) {
    ExpectNames({{"attachment; filename=\"../../etc/song.mp3\"", "song.mp3"},
                 {"attachment; filename=\"C:\\\\music\\\\song.mp3\"", "song.mp3"},
                 {"attachment; filename*=UTF-8''%2Fetc%2Fsong.mp3", "song.mp3"},
                 {"attachment; filename=\"folder/\"", ""}});
}

TEST(ContentDisposition, WithoutAFileNameThereIsNone) {
    ExpectNames({{"", ""},
                 {";", ""},
                 {";;;", ""},
                 {"attachment", ""},
                 {"attachment; size=3", ""},
                 {"attachment; filename", ""},
                 {"attachment; filename=", ""},
                 {"filename=song.mp3", ""},
                 {"attachment; notfilename=song.mp3", ""}});
}

TEST(ContentDisposition, BrokenHeadersEndWhereTheyEnd) {
    ExpectNames({{"attachment; filename=\"song.mp3", "song.mp3"},
                 {"attachment; filename=\"", ""},
                 {"attachment; filename=\"song.mp3\\", ""},
                 {"attachment; filename=\"song.mp3\"garbage; size=3", "song.mp3"},
                 {"attachment; =; filename=song.mp3", "song.mp3"}});
}

}  // namespace

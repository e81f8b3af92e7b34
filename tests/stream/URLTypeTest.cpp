// Classes of source names.
#include <gtest/gtest.h>

#include "tests/support/ManagerHold.h"

namespace {

struct SClassified {
    const char* m_pURL;
    int m_nType;
};

static_assert(URL_UNKNOWN == 0 && URL_LOCAL_PATH == 1 && URL_HTTP == 2 && URL_FTP == 4, "values of the contract");

void ExpectTypes(const std::initializer_list<SClassified>& table) {
    const support::CManagerHold manager;
    for (const SClassified& row : table) {
        EXPECT_EQ(manager->GetURLType(row.m_pURL), row.m_nType) << (row.m_pURL != nullptr ? row.m_pURL : "(null)");
    }
}

TEST(URLType, KnowsPathsAndBothRemoteSchemes) {
    ExpectTypes({{"/a", URL_LOCAL_PATH},
                 {"/music/Band - Song.mp3", URL_LOCAL_PATH},
                 {"//", URL_LOCAL_PATH},
                 {"http://x", URL_HTTP},
                 {"http:///", URL_HTTP},
                 {"ftp://x", URL_FTP}});
}

TEST(URLType, IgnoresTheCaseOfTheScheme) {
    ExpectTypes({{"HTTP://x", URL_HTTP}, {"hTtP://x", URL_HTTP}, {"FtP://x", URL_FTP}, {"FTP://X", URL_FTP}});
}

TEST(URLType, APrefixAloneIsUnknown) {
    ExpectTypes({{"http://", URL_UNKNOWN}, {"ftp://", URL_UNKNOWN}, {"/", URL_UNKNOWN}});
}

TEST(URLType, NullAndEmptyAreUnknown) { ExpectTypes({{nullptr, URL_UNKNOWN}, {"", URL_UNKNOWN}}); }

TEST(URLType, RelativePathsAndOtherSchemesAreUnknown) {
    ExpectTypes({{"song.wav", URL_UNKNOWN},
                 {"./song.wav", URL_UNKNOWN},
                 {"a", URL_UNKNOWN},
                 {"file:///song.wav", URL_UNKNOWN},
                 {"https://x", URL_UNKNOWN},
                 {"ftps://x", URL_UNKNOWN},
                 {" /song.wav", URL_UNKNOWN},
                 {"http:/x/y/z", URL_UNKNOWN}});
}

}  // namespace

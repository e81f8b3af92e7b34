// The limits of a fetch and the variables that set them.
#include "plugins/curl/FetchLimits.h"
#include "tests/plugins/curl/FetchTest.h"
#include "tests/support/ProcessState.h"

namespace {

std::string Complaint() {
    try {
        ReadFetchLimits();
        return "none";
    } catch (const std::runtime_error& failure) {
        return failure.what();
    }
}

TEST(FetchLimits, AreTheDefaultsWithoutVariables) {
    support::ClearFetchVariables();
    const SFetchLimits limits = ReadFetchLimits();
    EXPECT_EQ(limits.m_nConnectSeconds, 10);
    EXPECT_EQ(limits.m_nStallSeconds, 30);
    EXPECT_EQ(limits.m_nBytes, 4294967296);
    EXPECT_EQ(limits.m_nRedirects, 5);
}

TEST(FetchLimits, EachHasAVariable) {
    support::ClearFetchVariables();
    const CScopedVariable connect("KELO_CURL_CONNECT_TIMEOUT", "1");
    const CScopedVariable stall("KELO_CURL_STALL_TIMEOUT", "86400");
    const CScopedVariable size("KELO_CURL_SIZE_LIMIT", "9223372036854775807");
    const CScopedVariable redirects("KELO_CURL_REDIRECTS", "0");
    const SFetchLimits limits = ReadFetchLimits();
    EXPECT_EQ(limits.m_nConnectSeconds, 1);
    EXPECT_EQ(limits.m_nStallSeconds, 86400);
    EXPECT_EQ(limits.m_nBytes, 9223372036854775807);
    EXPECT_EQ(limits.m_nRedirects, 0);
}

TEST(FetchLimits, TakeNothingButWholeNumbersInTheirRange) {
    support::ClearFetchVariables();
    for (const char* const value :
         {"", " ", "0", "-1", "+1", " 1", "1 ", "1.5", "0x10", "10s", "86401", "1e1", "ten", "99999999999999999999"}) {
        const CScopedVariable stall("KELO_CURL_STALL_TIMEOUT", value);
        EXPECT_EQ(Complaint(),
                  "KELO_CURL_STALL_TIMEOUT is \"" + std::string(value) + "\" and not a whole number from 1 to 86400");
    }
}

TEST(FetchLimits, NameTheVariableThatIsWrong) {
    support::ClearFetchVariables();
    for (const char* const name :
         {"KELO_CURL_CONNECT_TIMEOUT", "KELO_CURL_STALL_TIMEOUT", "KELO_CURL_SIZE_LIMIT", "KELO_CURL_REDIRECTS"}) {
        const CScopedVariable variable(name, "many");
        EXPECT_EQ(Complaint().find(std::string(name) + " is \"many\""), 0U) << Complaint();
    }
}

class FetchLimitsOfAFetch : public CFetchTest {};

TEST_F(FetchLimitsOfAFetch, ThatAreWrongFailItBeforeTheServerIsAsked) {
    setenv("KELO_CURL_SIZE_LIMIT", "4G", 1);
    EXPECT_EQ(Refusal("http://station.invalid/song.flac"),
              "KELO_CURL_SIZE_LIMIT is \"4G\" and not a whole number from 1 to 9223372036854775807");
}

}  // namespace

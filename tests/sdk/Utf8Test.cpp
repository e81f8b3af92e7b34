// Texts of files as UTF-8.
#include <gtest/gtest.h>

#include "sdk/Utf8.h"

namespace {

TEST(SdkUtf8, KnowsSequencesOfEveryLength) {
    EXPECT_TRUE(IsUtf8(""));
    EXPECT_TRUE(IsUtf8("a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x8E\xB5z"));
    EXPECT_TRUE(IsUtf8("\xC2\x80\xDF\xBF\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"));
}

TEST(SdkUtf8, RefusesWhatTheStandardForbids) {
    const char* const texts[] = {
        "\x80",              // a byte that only follows
        "\xC3",              // cut short
        "\xC0\x80",          // two bytes for what needs one
        "\xC1\xBF",          // the same
        "\xE0\x9F\xBF",      // three bytes for what needs two
        "\xED\xA0\x80",      // half of a surrogate pair
        "\xF0\x8F\xBF\xBF",  // four bytes for what needs three
        "\xF4\x90\x80\x80",  // beyond U+10FFFF
        "\xF5\x80\x80\x80",  // the same
        "\xE2\x82",          // cut short
        "a\xE2\x28\xA1",     // the second byte does not follow
    };
    for (const char* const text : texts) EXPECT_FALSE(IsUtf8(text)) << text;
}

TEST(SdkUtf8, ReadsOtherTextsAsLatin1) {
    EXPECT_EQ(AsUtf8("caf\xE9"), "caf\xC3\xA9");
    EXPECT_EQ(AsUtf8("caf\xC3\xA9"), "caf\xC3\xA9");
    EXPECT_EQ(AsUtf8("\xFF\x80"), "\xC3\xBF\xC2\x80");
    EXPECT_EQ(FromLatin1("caf\xC3\xA9"), "caf\xC3\x83\xC2\xA9");
}

}  // namespace

// Reversing and case conversion in place.
#include <errno.h>
#include <gtest/gtest.h>
#include <string.h>

#include "portable/StringCase.h"
#include "tests/portable/EightBitLocale.h"

namespace {

constexpr int kUntouchedErrno = 77;

class StringCase : public testing::Test {
protected:
    void SetUp() override { errno = kUntouchedErrno; }
};

}  // namespace

TEST_F(StringCase, ReversesInPlace) {
    char odd[] = "abc";
    EXPECT_EQ(odd, _strrev(odd));
    EXPECT_STREQ("cba", odd);
    char even[] = "abcd";
    EXPECT_STREQ("dcba", _strrev(even));
    char empty[] = "";
    EXPECT_STREQ("", _strrev(empty));
}

TEST_F(StringCase, LowersEveryByte) {
    char text[] = "MiXed 1[Z\xC9";
    EXPECT_EQ(text, _strlwr(text));
    EXPECT_STREQ("mixed 1[z\xC9", text);
}

TEST_F(StringCase, UppersEveryByte) {
    char text[] = "MiXed 1{z\xE9";
    EXPECT_EQ(text, _strupr(text));
    EXPECT_STREQ("MIXED 1{Z\xE9", text);
}

TEST_F(StringCase, ConvertsTheBytesOfTheLocale) {
    const CEightBitLocale locale;
    if (!locale.IsThere()) GTEST_SKIP() << "no sources of locales";
    char text[] = "\xC9t\xE9";
    EXPECT_STREQ("\xE9t\xE9", _strlwr(text));
    EXPECT_STREQ("\xC9T\xC9", _strupr(text));
    EXPECT_EQ(0, _strlwr_s(text, sizeof text));
    EXPECT_STREQ("\xE9t\xE9", text);
    EXPECT_EQ(0, _strupr_s(text, sizeof text));
    EXPECT_STREQ("\xC9T\xC9", text);
}

TEST_F(StringCase, BoundedFormsConvertTextThatEndsWithinTheSize) {
    char lower[] = "ABC";
    EXPECT_EQ(0, _strlwr_s(lower, 4));
    EXPECT_STREQ("abc", lower);
    char upper[] = "abc";
    EXPECT_EQ(0, _strupr_s(upper, 4));
    EXPECT_STREQ("ABC", upper);
    EXPECT_EQ(kUntouchedErrno, errno);
}

TEST_F(StringCase, BoundedFormsRefuseNull) {
    EXPECT_EQ(EINVAL, _strlwr_s(nullptr, 4));
    EXPECT_EQ(EINVAL, errno);
    errno = 0;
    EXPECT_EQ(EINVAL, _strupr_s(nullptr, 4));
    EXPECT_EQ(EINVAL, errno);
}

TEST_F(StringCase, BoundedFormsEmptyTextWithoutTerminatorWithinTheSize) {
    char lower[] = "ABC";
    EXPECT_EQ(EINVAL, _strlwr_s(lower, 3));
    EXPECT_STREQ("", lower);
    EXPECT_EQ('B', lower[1]);
    EXPECT_EQ(EINVAL, errno);
    errno = 0;
    char upper[] = "abc";
    EXPECT_EQ(EINVAL, _strupr_s(upper, 3));
    EXPECT_STREQ("", upper);
    EXPECT_EQ(EINVAL, errno);
}

TEST_F(StringCase, BoundedFormsTouchNothingAtSizeZero) {
    char text[] = "Abc";
    EXPECT_EQ(EINVAL, _strlwr_s(text, 0));
    EXPECT_EQ(EINVAL, _strupr_s(text, 0));
    EXPECT_STREQ("Abc", text);
}

// Integers as text.
#include <errno.h>
#include <gtest/gtest.h>
#include <limits.h>
#include <string.h>

#include <string>

#include "portable/NumberText.h"

namespace {

constexpr int kUntouchedErrno = 77;

class NumberText : public testing::Test {
protected:
    void SetUp() override {
        memset(m_buffer, '#', sizeof m_buffer);
        errno = kUntouchedErrno;
    }

    char m_buffer[40];
};

}  // namespace

TEST_F(NumberText, WritesDigitsOfEveryBase) {
    struct SCase {
        int m_nValue;
        int m_nBase;
        const char* m_pExpected;
    };
    const SCase cases[] = {{255, 16, "ff"},
                           {1234567890, 10, "1234567890"},
                           {35, 36, "z"},
                           {36, 36, "10"},
                           {10, 11, "a"},
                           {9, 10, "9"},
                           {5, 2, "101"},
                           {INT_MAX, 10, "2147483647"},
                           {INT_MAX, 2, "1111111111111111111111111111111"}};
    for (const SCase& c : cases) {
        EXPECT_EQ(m_buffer, _itoa(c.m_nValue, m_buffer, c.m_nBase));
        EXPECT_STREQ(c.m_pExpected, m_buffer);
    }
}

TEST_F(NumberText, ZeroIsTheEmptyText) { EXPECT_STREQ("", _itoa(0, m_buffer, 10)); }

TEST_F(NumberText, NegativeValuesHaveNoSignAndCharactersBelowZero) {
    EXPECT_STREQ("/", _itoa(-1, m_buffer, 10));
    EXPECT_STREQ("/.", _itoa(-12, m_buffer, 10));
    EXPECT_EQ("/" + std::string(31, '0'), _itoa(INT_MIN, m_buffer, 2));
}

TEST_F(NumberText, BoundedFormCopiesDigitsThatFit) {
    EXPECT_EQ(0, _itoa_s(255, m_buffer, 3, 16));
    EXPECT_STREQ("ff", m_buffer);
    EXPECT_EQ('#', m_buffer[3]);
    EXPECT_EQ(0, _itoa_s(0, m_buffer, 2, 10));
    EXPECT_STREQ("", m_buffer);
    EXPECT_EQ(kUntouchedErrno, errno);
}

TEST_F(NumberText, BoundedFormRefusesNullAndSizeZero) {
    EXPECT_EQ(EINVAL, _itoa_s(1, nullptr, 10, 10));
    EXPECT_EQ(EINVAL, errno);
    errno = 0;
    EXPECT_EQ(EINVAL, _itoa_s(1, m_buffer, 0, 10));
    EXPECT_EQ(EINVAL, errno);
    EXPECT_EQ('#', m_buffer[0]);
}

TEST_F(NumberText, BoundedFormEmptiesABufferThatIsTooSmall) {
    struct SCase {
        int m_nValue;
        size_t m_nSize;
        int m_nBase;
    };
    // The size is tested before the base; a negative value in base 10 needs room for a sign that is never written.
    const SCase cases[] = {{255, 2, 16}, {1, 1, 10}, {0, 1, 10}, {-1, 2, 10}, {1000, 4, 10}, {1, 1, 99}};
    for (const SCase& c : cases) {
        errno = 0;
        strcpy(m_buffer, "old");
        EXPECT_EQ(ERANGE, _itoa_s(c.m_nValue, m_buffer, c.m_nSize, c.m_nBase)) << c.m_nValue << ' ' << c.m_nSize;
        EXPECT_EQ(ERANGE, errno);
        EXPECT_STREQ("", m_buffer);
    }
}

TEST_F(NumberText, BoundedFormTakesNegativeValuesOfOtherBasesInTwoBytes) {
    EXPECT_EQ(0, _itoa_s(-1, m_buffer, 2, 16));
    EXPECT_STREQ("/", m_buffer);
    EXPECT_EQ(0, _itoa_s(-1, m_buffer, 3, 10));
    EXPECT_STREQ("/", m_buffer);
}

TEST_F(NumberText, BoundedFormRefusesOtherBases) {
    for (const int base : {-10, 0, 1, 37}) {
        errno = 0;
        strcpy(m_buffer, "old");
        EXPECT_EQ(EINVAL, _itoa_s(5, m_buffer, 10, base)) << base;
        EXPECT_EQ(EINVAL, errno) << base;
        EXPECT_STREQ("", m_buffer) << base;
    }
    EXPECT_EQ(0, _itoa_s(5, m_buffer, 10, 2));
    EXPECT_EQ(0, _itoa_s(5, m_buffer, 10, 36));
}

// printf and scanf into bounded buffers.
#include <errno.h>
#include <gtest/gtest.h>
#include <limits.h>
#include <string.h>
#include <wchar.h>

#include <string>

#include "portable/BoundedFormat.h"

namespace {

constexpr int kUntouchedErrno = 77;

// A null format that the compiler's format checks do not see.
const char* const volatile g_pNullFormat = nullptr;

// A character that no locale of this process can encode makes printf's "%lc" fail.
constexpr wint_t kNoCharacter = 0x7FFFFFFF;

class BoundedFormat : public testing::Test {
protected:
    void SetUp() override {
        memset(m_buffer, '#', sizeof m_buffer);
        errno = kUntouchedErrno;
    }

    int ForwardToVsprintf(char* dst, size_t size, const char* fmt, ...) __attribute__((format(printf, 4, 5))) {
        va_list args;
        va_start(args, fmt);
        const int result = _vsprintf_s(dst, size, fmt, args);
        va_end(args);
        return result;
    }

    int ForwardToVsnprintf(char* dst, size_t size, size_t count, const char* fmt, ...)
        __attribute__((format(printf, 5, 6))) {
        va_list args;
        va_start(args, fmt);
        const int result = _vsnprintf_s(dst, size, count, fmt, args);
        va_end(args);
        return result;
    }

    char m_buffer[10];
};

}  // namespace

TEST_F(BoundedFormat, SprintfReturnsTheCharactersWritten) {
    EXPECT_EQ(5, sprintf_s(m_buffer, sizeof m_buffer, "%s-%d", "ab", 12));
    EXPECT_STREQ("ab-12", m_buffer);
    EXPECT_EQ(kUntouchedErrno, errno);
}

TEST_F(BoundedFormat, SprintfFillsTheBufferToTheLastByte) {
    EXPECT_EQ(9, sprintf_s(m_buffer, sizeof m_buffer, "%s", "123456789"));
    EXPECT_STREQ("123456789", m_buffer);
}

TEST_F(BoundedFormat, SprintfEmptiesABufferThatIsTooSmall) {
    EXPECT_EQ(-1, sprintf_s(m_buffer, sizeof m_buffer, "%s", "1234567890"));
    EXPECT_STREQ("", m_buffer);
    EXPECT_EQ(ERANGE, errno);
}

TEST_F(BoundedFormat, SprintfRefusesNullArgumentsAndSizeZero) {
    EXPECT_EQ(-1, sprintf_s(m_buffer, sizeof m_buffer, g_pNullFormat, 0));
    EXPECT_EQ(EINVAL, errno);
    errno = 0;
    EXPECT_EQ(-1, sprintf_s(nullptr, 4, "%d", 1));
    EXPECT_EQ(EINVAL, errno);
    errno = 0;
    EXPECT_EQ(-1, sprintf_s(m_buffer, 0, "%d", 1));
    EXPECT_EQ(EINVAL, errno);
    EXPECT_EQ('#', m_buffer[0]);
}

TEST_F(BoundedFormat, SprintfEmptiesTheBufferAfterAFormattingError) {
    EXPECT_EQ(-1, sprintf_s(m_buffer, sizeof m_buffer, "a%lc", kNoCharacter));
    EXPECT_STREQ("", m_buffer);
    EXPECT_NE(ERANGE, errno);
}

TEST_F(BoundedFormat, VsprintfFormatsItsArgumentList) {
    EXPECT_EQ(3, ForwardToVsprintf(m_buffer, sizeof m_buffer, "%d", 123));
    EXPECT_STREQ("123", m_buffer);
    EXPECT_EQ(-1, ForwardToVsprintf(m_buffer, 3, "%d", 123));
    EXPECT_STREQ("", m_buffer);
    EXPECT_EQ(ERANGE, errno);
}

TEST_F(BoundedFormat, ACountBelowTheSizeCutsTheText) {
    EXPECT_EQ(-1, ForwardToVsnprintf(m_buffer, 10, 3, "%s", "abcdef"));
    EXPECT_STREQ("abc", m_buffer);
    EXPECT_EQ(kUntouchedErrno, errno);
}

TEST_F(BoundedFormat, ACountBelowTheSizeKeepsTextThatFits) {
    EXPECT_EQ(3, _snprintf_s(m_buffer, 10, 3, "%s", "abc"));
    EXPECT_STREQ("abc", m_buffer);
    EXPECT_EQ('#', m_buffer[4]);
    EXPECT_EQ(1, _snprintf_s(m_buffer, 10, 3, "%s", "a"));
    EXPECT_STREQ("a", m_buffer);
}

TEST_F(BoundedFormat, ACountOfZeroWritesTheTerminatorAlone) {
    EXPECT_EQ(-1, _snprintf_s(m_buffer, 10, 0, "%s", "abc"));
    EXPECT_STREQ("", m_buffer);
    EXPECT_EQ(0, _snprintf_s(m_buffer, 10, 0, "%s", ""));
    EXPECT_STREQ("", m_buffer);
}

TEST_F(BoundedFormat, TruncateKeepsWhatFits) {
    EXPECT_EQ(-1, _snprintf_s(m_buffer, 4, _TRUNCATE, "%s", "abcdef"));
    EXPECT_STREQ("abc", m_buffer);
    EXPECT_EQ('#', m_buffer[4]);
    EXPECT_EQ(kUntouchedErrno, errno);
}

TEST_F(BoundedFormat, TruncateReturnsTheLengthOfTextThatFits) {
    EXPECT_EQ(3, _snprintf_s(m_buffer, 4, _TRUNCATE, "%s", "abc"));
    EXPECT_STREQ("abc", m_buffer);
}

TEST_F(BoundedFormat, ACountOfTheSizeOrAboveEmptiesABufferThatIsTooSmall) {
    for (const size_t count : {size_t{4}, size_t{5}, size_t{1000}}) {
        errno = 0;
        EXPECT_EQ(-1, _snprintf_s(m_buffer, 4, count, "%s", "abcd")) << count;
        EXPECT_STREQ("", m_buffer) << count;
        EXPECT_EQ(ERANGE, errno) << count;
        EXPECT_EQ(3, _snprintf_s(m_buffer, 4, count, "%s", "abc")) << count;
        EXPECT_STREQ("abc", m_buffer) << count;
    }
}

TEST_F(BoundedFormat, ACountOfTheSizeOrAboveTerminatesTheLastByte) {
    EXPECT_EQ(1, _snprintf_s(m_buffer, 4, _TRUNCATE, "%s", "a"));
    EXPECT_EQ('\0', m_buffer[3]);
}

TEST_F(BoundedFormat, NothingAtAllIsAccepted) {
    EXPECT_EQ(0, _snprintf_s(nullptr, 0, 0, "%d", 1));
    EXPECT_EQ(kUntouchedErrno, errno);
}

TEST_F(BoundedFormat, SnprintfRefusesNullArgumentsAndSizeZero) {
    struct SCase {
        char* m_pDst;
        size_t m_nSize;
        size_t m_nCount;
        const char* m_pFormat;
    };
    const SCase cases[] = {
        {m_buffer, 10, 3, nullptr}, {nullptr, 0, 0, nullptr}, {nullptr, 10, 3, ""},
        {nullptr, 0, 3, ""},        {nullptr, 10, 0, ""},     {m_buffer, 0, 3, ""},
    };
    for (const SCase& c : cases) {
        errno = 0;
        EXPECT_EQ(-1, _snprintf_s(c.m_pDst, c.m_nSize, c.m_nCount, c.m_pFormat, 0)) << &c - cases;
        EXPECT_EQ(EINVAL, errno) << &c - cases;
        EXPECT_EQ('#', m_buffer[0]) << &c - cases;
    }
}

TEST_F(BoundedFormat, SnprintfEmptiesTheBufferAfterAFormattingError) {
    for (const size_t count : {size_t{3}, size_t{10}, _TRUNCATE}) {
        EXPECT_EQ(-1, _snprintf_s(m_buffer, 10, count, "a%lc", kNoCharacter)) << count;
        EXPECT_STREQ("", m_buffer) << count;
        EXPECT_NE(ERANGE, errno) << count;
    }
}

TEST_F(BoundedFormat, AFormatInWritableMemoryMayCountWhatWasWritten) {
    char format[] = "ab%n-%d";
    int count = 0;
    EXPECT_EQ(4, sprintf_s(m_buffer, sizeof m_buffer, format, &count, 7));
    EXPECT_EQ(2, count);
    EXPECT_STREQ("ab-7", m_buffer);
    for (const size_t room : {size_t{5}, _TRUNCATE}) {
        count = 0;
        EXPECT_EQ(4, _snprintf_s(m_buffer, sizeof m_buffer, room, format, &count, 8)) << room;
        EXPECT_EQ(2, count) << room;
        EXPECT_STREQ("ab-8", m_buffer) << room;
    }
    EXPECT_EQ(4, ForwardToVsprintf(m_buffer, sizeof m_buffer, format, &count, 9));
    EXPECT_EQ(4, ForwardToVsnprintf(m_buffer, sizeof m_buffer, 5, format, &count, 9));
}

TEST_F(BoundedFormat, AFormatInWritableMemoryMayLeaveArgumentsOut) {
    char format[] = "%2$d";
    EXPECT_EQ(1, sprintf_s(m_buffer, sizeof m_buffer, format, 1, 2));
    EXPECT_STREQ("2", m_buffer);
    EXPECT_EQ(1, _snprintf_s(m_buffer, sizeof m_buffer, 5, format, 1, 3));
    EXPECT_STREQ("3", m_buffer);
    EXPECT_EQ(1, ForwardToVsprintf(m_buffer, sizeof m_buffer, format, 1, 4));
    EXPECT_STREQ("4", m_buffer);
    EXPECT_EQ(1, ForwardToVsnprintf(m_buffer, sizeof m_buffer, _TRUNCATE, format, 1, 5));
    EXPECT_STREQ("5", m_buffer);
}

TEST_F(BoundedFormat, SscanfReadsWithoutBufferSizes) {
    char word[8] = "";
    char letter = '\0';
    char set[8] = "";
    int number = 0;
    EXPECT_EQ(4, sscanf_s("word x abab 42", "%7s %c %7[ab] %d", word, &letter, set, &number));
    EXPECT_STREQ("word", word);
    EXPECT_EQ('x', letter);
    EXPECT_STREQ("abab", set);
    EXPECT_EQ(42, number);
}

TEST_F(BoundedFormat, SscanfRefusesNullArguments) {
    int number = 0;
    EXPECT_EQ(-1, sscanf_s(nullptr, "%d", &number));
    EXPECT_EQ(EINVAL, errno);
    errno = 0;
    EXPECT_EQ(-1, sscanf_s("1", g_pNullFormat, &number));
    EXPECT_EQ(EINVAL, errno);
}

TEST_F(BoundedFormat, SscanfReportsTheEndOfInput) {
    int number = 0;
    EXPECT_EQ(-1, sscanf_s("", "%d", &number));
    EXPECT_NE(EINVAL, errno);
}

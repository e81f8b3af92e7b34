// Copying, appending and splitting text in bounded buffers.
#include <errno.h>
#include <gtest/gtest.h>
#include <string.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "portable/BoundedStrings.h"

namespace {

constexpr int kUntouchedErrno = 77;

// A buffer of '#' whose end is watched, in bytes and in 16-bit units.
template <typename TChar>
class BoundedText : public testing::Test {
protected:
    static constexpr size_t kCapacity = 16;

    void SetUp() override {
        Fill("");
        errno = kUntouchedErrno;
    }

    // Puts `text` into a buffer of '#'.
    void Fill(std::string_view text) {
        std::fill_n(m_buffer, kCapacity, TChar{'#'});
        std::copy(text.begin(), text.end(), m_buffer);
        m_buffer[text.size()] = TChar();
        if (text.empty()) m_buffer[0] = TChar{'#'};
    }

    static std::vector<TChar> Units(std::string_view text) {
        std::vector<TChar> units(text.begin(), text.end());
        units.push_back(TChar());
        return units;
    }

    // The text in the buffer; all of it where no terminator stands.
    std::string Text() const {
        const TChar* const end = std::find(m_buffer, m_buffer + kCapacity, TChar());
        std::string text;
        std::transform(m_buffer, end, std::back_inserter(text), [](TChar c) { return static_cast<char>(c); });
        return text;
    }

    // True when nothing from `size` on was written.
    bool Untouched(size_t size) const {
        return std::all_of(m_buffer + size, m_buffer + kCapacity, [](TChar c) { return c == TChar{'#'}; });
    }

    int Copy(size_t size, const char* src) { return CopyInto(m_buffer, size, src); }
    int CopyInto(TChar* dst, size_t size, const char* src) {
        const std::vector<TChar> units = Units(src != nullptr ? src : "");
        const TChar* const source = src != nullptr ? units.data() : nullptr;
        if constexpr (sizeof(TChar) == 1)
            return strcpy_s(dst, size, source);
        else
            return wcscpy_s(dst, size, source);
    }

    int CopyCount(size_t size, const char* src, size_t count) { return CopyCountInto(m_buffer, size, src, count); }
    int CopyCountInto(TChar* dst, size_t size, const char* src, size_t count) {
        const std::vector<TChar> units = Units(src != nullptr ? src : "");
        const TChar* const source = src != nullptr ? units.data() : nullptr;
        if constexpr (sizeof(TChar) == 1)
            return strncpy_s(dst, size, source, count);
        else
            return wcsncpy_s(dst, size, source, count);
    }

    TChar m_buffer[kCapacity];
};

using CElementTypes = testing::Types<char, unsigned short>;

struct SElementNames {
    template <typename TChar>
    static std::string GetName(int) {
        return sizeof(TChar) == 1 ? "Bytes" : "Units";
    }
};
TYPED_TEST_SUITE(BoundedText, CElementTypes, SElementNames);

class BoundedStrings : public BoundedText<char> {};

}  // namespace

TYPED_TEST(BoundedText, CopyTakesTheTerminatorAlong) {
    EXPECT_EQ(0, this->Copy(4, "abc"));
    EXPECT_EQ("abc", this->Text());
    EXPECT_TRUE(this->Untouched(4));
    EXPECT_EQ(0, this->Copy(4, ""));
    EXPECT_EQ("", this->Text());
    EXPECT_EQ(kUntouchedErrno, errno);
}

TYPED_TEST(BoundedText, CopyEmptiesADestinationThatIsTooSmall) {
    EXPECT_EQ(ERANGE, this->Copy(4, "abcd"));
    EXPECT_EQ("", this->Text());
    EXPECT_EQ(ERANGE, errno);
    EXPECT_TRUE(this->Untouched(4));
}

TYPED_TEST(BoundedText, CopyRefusesANullDestinationAndSizeZero) {
    EXPECT_EQ(EINVAL, this->CopyInto(nullptr, 4, "a"));
    EXPECT_EQ(EINVAL, errno);
    errno = 0;
    EXPECT_EQ(EINVAL, this->Copy(0, "a"));
    EXPECT_EQ(EINVAL, errno);
    EXPECT_TRUE(this->Untouched(0));
}

TYPED_TEST(BoundedText, CopyOfNullEmptiesTheDestination) {
    EXPECT_EQ(EINVAL, this->Copy(4, nullptr));
    EXPECT_EQ("", this->Text());
    EXPECT_EQ(EINVAL, errno);
    EXPECT_TRUE(this->Untouched(1));
}

TYPED_TEST(BoundedText, CountedCopyAcceptsNothingAtAll) {
    EXPECT_EQ(0, this->CopyCountInto(nullptr, 0, "a", 0));
    EXPECT_EQ(kUntouchedErrno, errno);
}

TYPED_TEST(BoundedText, CountedCopyRefusesANullDestinationAndSizeZero) {
    EXPECT_EQ(EINVAL, this->CopyCountInto(nullptr, 4, "a", 1));
    EXPECT_EQ(EINVAL, errno);
    errno = 0;
    EXPECT_EQ(EINVAL, this->CopyCountInto(nullptr, 4, "a", 0));
    EXPECT_EQ(EINVAL, errno);
    errno = 0;
    EXPECT_EQ(EINVAL, this->CopyCount(0, "a", 1));
    EXPECT_EQ(EINVAL, errno);
    EXPECT_TRUE(this->Untouched(0));
}

TYPED_TEST(BoundedText, CountedCopyOfNoElementsEmptiesTheDestination) {
    EXPECT_EQ(0, this->CopyCount(4, "abc", 0));
    EXPECT_EQ("", this->Text());
    this->Fill("old");
    EXPECT_EQ(0, this->CopyCount(4, nullptr, 0));
    EXPECT_EQ("", this->Text());
    EXPECT_EQ(kUntouchedErrno, errno);
}

TYPED_TEST(BoundedText, CountedCopyOfNullEmptiesTheDestination) {
    EXPECT_EQ(EINVAL, this->CopyCount(4, nullptr, 2));
    EXPECT_EQ("", this->Text());
    EXPECT_EQ(EINVAL, errno);
}

TYPED_TEST(BoundedText, CountedCopyStopsAtTheCountOrTheTerminator) {
    EXPECT_EQ(0, this->CopyCount(4, "abcdef", 3));
    EXPECT_EQ("abc", this->Text());
    EXPECT_TRUE(this->Untouched(4));
    EXPECT_EQ(0, this->CopyCount(4, "ab", 100));
    EXPECT_EQ("ab", this->Text());
    EXPECT_EQ(kUntouchedErrno, errno);
}

TYPED_TEST(BoundedText, CountedCopyEmptiesADestinationThatIsTooSmall) {
    EXPECT_EQ(ERANGE, this->CopyCount(4, "abcdef", 4));
    EXPECT_EQ("", this->Text());
    EXPECT_EQ(ERANGE, errno);
    EXPECT_TRUE(this->Untouched(4));
}

TYPED_TEST(BoundedText, TruncatingCopyKeepsWhatFits) {
    EXPECT_EQ(STRUNCATE, this->CopyCount(4, "abcdef", _TRUNCATE));
    EXPECT_EQ("abc", this->Text());
    EXPECT_TRUE(this->Untouched(4));
    EXPECT_EQ(kUntouchedErrno, errno);
}

TYPED_TEST(BoundedText, TruncatingCopyOfTextThatFitsIsNoCut) {
    EXPECT_EQ(0, this->CopyCount(4, "abc", _TRUNCATE));
    EXPECT_EQ("abc", this->Text());
}

TEST_F(BoundedStrings, ResultsHaveTheirFixedValues) {
    EXPECT_EQ(22, strcpy_s(nullptr, 4, "a"));
    EXPECT_EQ(34, strcpy_s(m_buffer, 4, "abcd"));
    EXPECT_EQ(80, strncpy_s(m_buffer, 4, "abcdef", static_cast<size_t>(-1)));
}

TEST_F(BoundedStrings, AppendsUpToTheLastByte) {
    Fill("ab");
    EXPECT_EQ(0, strcat_s(m_buffer, 5, "cd"));
    EXPECT_EQ("abcd", Text());
    EXPECT_TRUE(Untouched(5));
    EXPECT_EQ(0, strcat_s(m_buffer, 5, ""));
    EXPECT_EQ("abcd", Text());
}

TEST_F(BoundedStrings, FailedAppendEmptiesTheDestinationAndLeavesErrnoAlone) {
    EXPECT_EQ(EINVAL, strcat_s(nullptr, 4, "a"));
    EXPECT_EQ(EINVAL, strcat_s(m_buffer, 0, "a"));
    EXPECT_TRUE(Untouched(0));

    Fill("ab");
    EXPECT_EQ(EINVAL, strcat_s(m_buffer, 4, nullptr));
    EXPECT_EQ("", Text());

    Fill("abcd");
    EXPECT_EQ(EINVAL, strcat_s(m_buffer, 4, "e"));
    EXPECT_EQ("", Text());

    Fill("ab");
    EXPECT_EQ(ERANGE, strcat_s(m_buffer, 4, "cd"));
    EXPECT_EQ("", Text());
    EXPECT_TRUE(Untouched(4));
    EXPECT_EQ(kUntouchedErrno, errno);
}

TEST_F(BoundedStrings, CountedAppendStopsAtTheCountOrTheTerminator) {
    Fill("ab");
    EXPECT_EQ(0, strncat_s(m_buffer, 5, "cdef", 2));
    EXPECT_EQ("abcd", Text());
    EXPECT_TRUE(Untouched(5));
    Fill("ab");
    EXPECT_EQ(0, strncat_s(m_buffer, 5, "c", 100));
    EXPECT_EQ("abc", Text());
    EXPECT_EQ(kUntouchedErrno, errno);
}

TEST_F(BoundedStrings, CountedAppendOfNoCharactersKeepsTheText) {
    Fill("ab");
    EXPECT_EQ(0, strncat_s(m_buffer, 3, nullptr, 0));
    EXPECT_EQ("ab", Text());
    EXPECT_EQ(0, strncat_s(m_buffer, 3, "cd", 0));
    EXPECT_EQ("ab", Text());
}

TEST_F(BoundedStrings, CountedAppendAcceptsNothingAtAll) {
    EXPECT_EQ(0, strncat_s(nullptr, 0, "a", 0));
    EXPECT_EQ(kUntouchedErrno, errno);
}

TEST_F(BoundedStrings, CountedAppendRefusesANullDestinationAndSizeZero) {
    EXPECT_EQ(EINVAL, strncat_s(nullptr, 4, "a", 1));
    EXPECT_EQ(EINVAL, errno);
    errno = 0;
    EXPECT_EQ(EINVAL, strncat_s(m_buffer, 0, "a", 1));
    EXPECT_EQ(EINVAL, errno);
    EXPECT_TRUE(Untouched(0));
}

TEST_F(BoundedStrings, CountedAppendOfNullOrToUnterminatedTextEmptiesAndLeavesErrnoAlone) {
    Fill("ab");
    EXPECT_EQ(EINVAL, strncat_s(m_buffer, 4, nullptr, 1));
    EXPECT_EQ("", Text());
    for (const size_t count : {size_t{0}, size_t{1}, _TRUNCATE}) {
        Fill("abcd");
        EXPECT_EQ(EINVAL, strncat_s(m_buffer, 4, "e", count)) << count;
        EXPECT_EQ("", Text()) << count;
    }
    EXPECT_EQ(kUntouchedErrno, errno);
}

TEST_F(BoundedStrings, CountedAppendEmptiesADestinationThatIsTooSmall) {
    Fill("ab");
    EXPECT_EQ(ERANGE, strncat_s(m_buffer, 4, "cdef", 2));
    EXPECT_EQ("", Text());
    EXPECT_EQ(ERANGE, errno);
    EXPECT_TRUE(Untouched(4));
}

TEST_F(BoundedStrings, TruncatingAppendKeepsWhatFits) {
    Fill("ab");
    EXPECT_EQ(STRUNCATE, strncat_s(m_buffer, 4, "cdef", _TRUNCATE));
    EXPECT_EQ("abc", Text());
    EXPECT_TRUE(Untouched(4));
    Fill("ab");
    EXPECT_EQ(0, strncat_s(m_buffer, 4, "c", _TRUNCATE));
    EXPECT_EQ("abc", Text());
    EXPECT_EQ(kUntouchedErrno, errno);
}

TEST_F(BoundedStrings, MemoryIsCopiedByCount) {
    EXPECT_EQ(0, memcpy_s(m_buffer, 4, "a\0bcd", 4));
    EXPECT_EQ(0, memcmp(m_buffer, "a\0bc#", 5));
    EXPECT_EQ(kUntouchedErrno, errno);
}

TEST_F(BoundedStrings, MemoryCopyOfNothingTouchesNothing) {
    EXPECT_EQ(0, memcpy_s(nullptr, 0, nullptr, 0));
    EXPECT_EQ(0, memcpy_s(m_buffer, 4, nullptr, 0));
    EXPECT_TRUE(Untouched(0));
}

TEST_F(BoundedStrings, MemoryCopyRefusesNullWithoutErrno) {
    EXPECT_EQ(EINVAL, memcpy_s(nullptr, 4, "abcd", 4));
    EXPECT_EQ(EINVAL, memcpy_s(m_buffer, 4, nullptr, 2));
    EXPECT_EQ(0, memcmp(m_buffer, "\0\0\0\0#", 5));
    EXPECT_EQ(kUntouchedErrno, errno);
}

TEST_F(BoundedStrings, MemoryCopyZeroesADestinationThatIsTooSmall) {
    EXPECT_EQ(ERANGE, memcpy_s(m_buffer, 4, "abcdefgh", 8));
    EXPECT_EQ(0, memcmp(m_buffer, "\0\0\0\0#", 5));
    EXPECT_EQ(ERANGE, errno);
}

TEST(WideMemory, SizesAreInUnits) {
    const unsigned short source[] = {1, 2, 3, 4};
    unsigned short destination[] = {9, 9, 9, 9};
    EXPECT_EQ(0, wmemcpy_s(destination, 3, source, 3));
    EXPECT_EQ(3, destination[2]);
    EXPECT_EQ(9, destination[3]);
    errno = 0;
    EXPECT_EQ(ERANGE, wmemcpy_s(destination, 2, source, 3));
    EXPECT_EQ(ERANGE, errno);
    EXPECT_EQ(0, destination[0]);
    EXPECT_EQ(0, destination[1]);
    EXPECT_EQ(3, destination[2]);
    EXPECT_EQ(EINVAL, wmemcpy_s(nullptr, 2, source, 1));
    EXPECT_EQ(EINVAL, wmemcpy_s(destination, 3, nullptr, 1));
    EXPECT_EQ(0, destination[2]);
    EXPECT_EQ(0, wmemcpy_s(nullptr, 0, nullptr, 0));
}

TEST(Tokens, AreSplitAtEveryDelimiter) {
    char text[] = ",,a;bc, d,";
    char* context = nullptr;
    EXPECT_STREQ("a", strtok_s(text, ",; ", &context));
    EXPECT_EQ(text + 4, context);
    EXPECT_STREQ("bc", strtok_s(nullptr, ",; ", &context));
    EXPECT_STREQ("d", strtok_s(nullptr, ",; ", &context));
    EXPECT_EQ(text + 10, context);
    EXPECT_EQ(nullptr, strtok_s(nullptr, ",; ", &context));
    EXPECT_EQ(nullptr, strtok_s(nullptr, ",; ", &context));
}

TEST(Tokens, TheLastOneLeavesTheContextAtTheTerminator) {
    char text[] = "ab";
    char* context = nullptr;
    EXPECT_EQ(text, strtok_s(text, ",", &context));
    EXPECT_EQ(text + 2, context);
    EXPECT_EQ(nullptr, strtok_s(nullptr, ",", &context));
    EXPECT_EQ(text + 2, context);
}

TEST(Tokens, TextOfDelimitersAloneHasNone) {
    char text[] = ",;,";
    char* context = nullptr;
    EXPECT_EQ(nullptr, strtok_s(text, ",;", &context));
    EXPECT_EQ(text + 3, context);
    EXPECT_STREQ(",;,", text);
}

TEST(Tokens, DelimitersMayChangeBetweenCalls) {
    char text[] = "key=a,b";
    char* context = nullptr;
    EXPECT_STREQ("key", strtok_s(text, "=", &context));
    EXPECT_STREQ("a", strtok_s(nullptr, ",", &context));
    EXPECT_STREQ("b", strtok_s(nullptr, "", &context));
}

TEST(Tokens, BytesAboveSevenBitsArePartOfAToken) {
    char text[] = "\xC3\xA9,\xFF";
    char* context = nullptr;
    EXPECT_STREQ("\xC3\xA9", strtok_s(text, ",", &context));
    EXPECT_STREQ("\xFF", strtok_s(nullptr, ",", &context));
}

TEST(Tokens, NullArgumentsAreRefused) {
    char text[] = "a";
    char* context = nullptr;
    struct SCase {
        char* m_pText;
        const char* m_pDelim;
        char** m_pContext;
    };
    const SCase cases[] = {{text, nullptr, &context}, {text, ",", nullptr}, {nullptr, ",", &context}};
    for (const SCase& c : cases) {
        errno = 0;
        EXPECT_EQ(nullptr, strtok_s(c.m_pText, c.m_pDelim, c.m_pContext)) << &c - cases;
        EXPECT_EQ(EINVAL, errno) << &c - cases;
    }
    EXPECT_STREQ("a", text);
}

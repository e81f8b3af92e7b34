// The growable string.
#include <gtest/gtest.h>
#include <string.h>

#include <limits>
#include <new>
#include <string>
#include <type_traits>

#include "portable/BasicString.h"
#include "tests/portable/VirtualTable.h"

namespace {

using CString = CBasicString<char>;

static_assert(sizeof(CString) == 24, "table pointer, text, capacity, length");
static_assert(std::has_virtual_destructor<CString>::value, "destroyed through its table");

// Behind the table pointer.
constexpr size_t kTextOffset = 8;
constexpr size_t kCapacityOffset = 16;
constexpr size_t kLengthOffset = 20;

}  // namespace

TEST(BasicString, ADefaultStringIsAValidEmptyText) {
    const CString string;
    EXPECT_STREQ("", string.GetText());
    EXPECT_EQ('\0', string.GetText()[1]);
    EXPECT_EQ(6, string.GetCapacity());
    EXPECT_EQ(0, string.GetLength());
    EXPECT_TRUE(string.IsEmpty());
}

TEST(BasicString, ItsFieldsAreTextCapacityAndLength) {
    const CString string("hello", -1);
    EXPECT_EQ(string.GetText(), FieldAt<const char*>(&string, kTextOffset));
    EXPECT_EQ(12, FieldAt<int>(&string, kCapacityOffset));
    EXPECT_EQ(5, FieldAt<int>(&string, kLengthOffset));
}

TEST(BasicString, GrowsToTwiceTheLengthAndTwo) {
    struct SCase {
        const char* m_pText;
        int m_nCapacity;
    };
    const SCase cases[] = {{"", 6}, {"abcd", 6}, {"abcde", 12}, {"hello", 12}, {"hello, wide world", 36}};
    for (const SCase& c : cases) {
        const CString string(c.m_pText, -1);
        EXPECT_EQ(c.m_nCapacity, string.GetCapacity()) << c.m_pText;
        EXPECT_EQ(static_cast<int>(strlen(c.m_pText)), string.GetLength()) << c.m_pText;
        EXPECT_STREQ(c.m_pText, string.GetText());
    }
}

TEST(BasicString, FormattingAShorterTextKeepsTheCapacity) {
    CString string("hello", -1);
    EXPECT_EQ(1, string.Format("%d", 7));
    EXPECT_EQ(12, string.GetCapacity());
    EXPECT_EQ(1, string.GetLength());
    EXPECT_STREQ("7", string.GetText());
}

TEST(BasicString, FormattingALongerTextGrows) {
    CString string;
    EXPECT_EQ(10, string.Format("%s%s", "12345", "67890"));
    EXPECT_EQ(22, string.GetCapacity());
    EXPECT_STREQ("1234567890", string.GetText());
}

TEST(BasicString, FormattingKeepsTheFirst16383Characters) {
    std::string longText(20000, 'x');
    longText[16382] = 'y';
    CString string;
    EXPECT_EQ(16383, string.Format("%s", longText.c_str()));
    EXPECT_EQ(16383, string.GetLength());
    EXPECT_EQ(longText.substr(0, 16383), string.GetText());
}

TEST(BasicString, FormattingMayReadTheStringItself) {
    CString string("ab", -1);
    EXPECT_EQ(5, string.Format("%s-%s", string.GetText(), string.GetText()));
    EXPECT_STREQ("ab-ab", string.GetText());
}

TEST(BasicString, FormattingFailuresGiveTheEmptyText) {
    CString fromNull("old", -1);
    EXPECT_EQ(0, fromNull.Format(nullptr));
    EXPECT_STREQ("", fromNull.GetText());
    CString fromError("old", -1);
    EXPECT_EQ(0, fromError.Format("a%lc", 0x7FFFFFFFu));
    EXPECT_STREQ("", fromError.GetText());
}

TEST(BasicString, AFormatInWritableMemoryMayCountAndLeaveArgumentsOut) {
    char counting[] = "ab%n";
    char skipping[] = "%2$d";
    int count = 0;
    CString string;
    EXPECT_EQ(2, string.Format(counting, &count));
    EXPECT_EQ(2, count);
    EXPECT_EQ(1, string.Format(skipping, 1, 2));
    EXPECT_STREQ("2", string.GetText());
}

TEST(BasicString, AnExplicitLengthSpansAZeroByte) {
    const CString string("ab\0cd", 5);
    EXPECT_EQ(5, string.GetLength());
    EXPECT_EQ(12, string.GetCapacity());
    EXPECT_EQ(0, memcmp(string.GetText(), "ab\0cd\0\0\0\0\0\0", 12));
}

TEST(BasicString, AnExplicitLengthCutsTheText) {
    const CString string("abcdef", 3);
    EXPECT_STREQ("abc", string.GetText());
    EXPECT_EQ(6, string.GetCapacity());
    EXPECT_EQ(0, memcmp(string.GetText(), "abc\0\0", 6));
}

TEST(BasicString, ANullTextLeavesTheEmptyString) {
    const CString string(nullptr, -1);
    EXPECT_STREQ("", string.GetText());
    EXPECT_EQ(0, string.GetLength());
}

TEST(BasicString, AssignmentCopiesUpToTheTerminator) {
    CString string("hello", -1);
    string = "abc";
    EXPECT_STREQ("abc", string.GetText());
    EXPECT_EQ(3, string.GetLength());
    EXPECT_EQ(12, string.GetCapacity());
    string = "a longer text";
    EXPECT_STREQ("a longer text", string.GetText());
    EXPECT_EQ(13, string.GetLength());
    EXPECT_EQ(28, string.GetCapacity());
}

TEST(BasicString, AssignmentFromItsOwnTextKeepsTheRest) {
    CString string("hello", -1);
    string = string.GetText() + 2;
    EXPECT_STREQ("llo", string.GetText());
    EXPECT_EQ(3, string.GetLength());
}

TEST(BasicString, AssignmentOfNullChangesNothing) {
    CString string("hello", -1);
    string = static_cast<const char*>(nullptr);
    EXPECT_STREQ("hello", string.GetText());
}

TEST(BasicString, CopiesAreIndependent) {
    CString original("ab\0cd", 5);
    CString copy(original);
    CString assigned;
    assigned = original;
    original = "x";
    for (const CString* string : {&copy, &assigned}) {
        EXPECT_EQ(5, string->GetLength());
        EXPECT_EQ(0, memcmp(string->GetText(), "ab\0cd", 6));
    }
}

TEST(BasicString, AppendingGrowsAndTerminates) {
    CString string("ab", -1);
    string += "cdefgh";
    EXPECT_STREQ("abcdefgh", string.GetText());
    EXPECT_EQ(8, string.GetLength());
    EXPECT_EQ(18, string.GetCapacity());
    string += nullptr;
    EXPECT_STREQ("abcdefgh", string.GetText());
}

TEST(BasicString, ReserveKeepsTheTextAndNeverShrinks) {
    CString string("ab", -1);
    string.Reserve(20);
    EXPECT_EQ(42, string.GetCapacity());
    EXPECT_STREQ("ab", string.GetText());
    string.Reserve(1);
    EXPECT_EQ(42, string.GetCapacity());
}

TEST(BasicString, GrowthKeepsWhatWasWrittenBehindTheText) {
    CString string("hello", -1);
    strcpy(string.GetBuffer(), "12345678901");
    string.Reserve(20);
    string.UpdateLength();
    EXPECT_STREQ("12345678901", string.GetText());
    EXPECT_EQ(11, string.GetLength());
}

TEST(BasicString, UpdateLengthMeasuresAWrittenBuffer) {
    CString string;
    string.Reserve(10);
    strcpy(string.GetBuffer(), "written");
    string.UpdateLength();
    EXPECT_EQ(7, string.GetLength());
}

TEST(BasicString, ALengthWithoutACapacityIsALackOfMemory) {
    for (const int length : {std::numeric_limits<int>::max(), std::numeric_limits<int>::max() / 2}) {
        EXPECT_THROW(CString("hello", length), std::bad_alloc) << length;
    }
}

TEST(BasicString, ItsTableHoldsTheCompleteAndTheDeletingDestructor) {
    using CDestructor = void(CString*);
    alignas(CString) unsigned char storage[sizeof(CString)];
    auto* const placed = new (storage) CString("hello", -1);
    SlotOf<CDestructor>(placed, 0)(placed);
    EXPECT_EQ(nullptr, FieldAt<const char*>(storage, kTextOffset));

    // A leak checker sees whether the object itself is freed.
    auto* const allocated = new CString("hello", -1);
    SlotOf<CDestructor>(allocated, 1)(allocated);
}

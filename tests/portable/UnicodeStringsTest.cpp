// Measuring, copying, comparing and converting text of the three element types.
#include <gtest/gtest.h>
#include <locale.h>
#include <string.h>

#include <climits>
#include <memory>
#include <string>
#include <vector>

#include "portable/UnicodeStrings.h"
#include "tests/portable/IconvWatch.h"

namespace {

constexpr unsigned int kUtf8 = 65001;
using CUnits = std::vector<unsigned short>;

// The elements up to the terminator, as numbers.
template <typename T>
std::vector<unsigned long> Elements(const T* text) {
    std::vector<unsigned long> elements;
    for (; *text != T(); ++text) elements.push_back(static_cast<unsigned long>(*text));
    return elements;
}

using CElements = std::vector<unsigned long>;

class UnicodeStrings : public testing::Test {
protected:
    void SetUp() override { ASSERT_NE(nullptr, setlocale(LC_ALL, "C.UTF-8")); }
};

// What every pair of element types has in common.
template <typename TSrc, typename TDst>
void ExpectElementCopy() {
    const TSrc source[] = {'a', 'b', 'c', 0};
    struct SCase {
        int m_nMax;
        CElements m_expected;
    };
    const SCase cases[] = {{-1, {'a', 'b', 'c'}}, {4, {'a', 'b', 'c'}}, {3, {'a', 'b', 'c'}},
                           {2, {'a', 'b'}},       {1, {'a'}},           {0, {}}};
    for (const SCase& c : cases) {
        TDst destination[6];
        std::fill(std::begin(destination), std::end(destination), TDst{'#'});
        EXPECT_EQ(destination, (ConvertUnicodeGeneric<TSrc, TDst>(source, destination, c.m_nMax)));
        EXPECT_EQ(c.m_expected, Elements(destination)) << c.m_nMax;
        EXPECT_EQ(TDst{'#'}, destination[c.m_expected.size() + 1]) << c.m_nMax;
    }

    const std::unique_ptr<TDst[]> made(ConvertUnicodeGeneric<TSrc, TDst>(source, nullptr, 2));
    EXPECT_EQ((CElements{'a', 'b'}), Elements(made.get()));
    const std::unique_ptr<TDst[]> whole(ConvertUnicodeGeneric<TSrc, TDst>(source, nullptr, -1));
    EXPECT_EQ((CElements{'a', 'b', 'c'}), Elements(whole.get()));
    TDst untouched = TDst{'#'};
    EXPECT_EQ(nullptr, (ConvertUnicodeGeneric<TSrc, TDst>(nullptr, &untouched, -1)));
    EXPECT_EQ(TDst{'#'}, untouched);
}

}  // namespace

TEST_F(UnicodeStrings, LengthCountsElementsBeforeTheTerminator) {
    const unsigned short units[] = {0x20AC, 'b', 0, 'd'};
    EXPECT_EQ(2ul, UnicodeStringLen(units));
    EXPECT_EQ(3ul, UnicodeStringLen("\xE2\x82\xAC"));
    EXPECT_EQ(1ul, UnicodeStringLen(L"\u20AC"));
    EXPECT_EQ(0ul, UnicodeStringLen(""));
}

TEST_F(UnicodeStrings, LengthOfNullIsZero) {
    EXPECT_EQ(0ul, UnicodeStringLen<char>(nullptr));
    EXPECT_EQ(0ul, UnicodeStringLen<unsigned short>(nullptr));
    EXPECT_EQ(0ul, UnicodeStringLen<wchar_t>(nullptr));
}

TEST_F(UnicodeStrings, ElementCopyOfEveryPairKeepsItsLimit) {
    ExpectElementCopy<char, unsigned short>();
    ExpectElementCopy<unsigned short, unsigned short>();
    ExpectElementCopy<char, char>();
    ExpectElementCopy<unsigned short, char>();
    ExpectElementCopy<wchar_t, unsigned short>();
    ExpectElementCopy<unsigned short, wchar_t>();
}

TEST_F(UnicodeStrings, CharsAreWidenedByTheirSign) {
    unsigned short destination[2];
    ConvertUnicodeGeneric<char, unsigned short>("\xE9", destination, -1);
    EXPECT_EQ(0xFFE9, destination[0]);
    EXPECT_EQ(0, destination[1]);
}

TEST_F(UnicodeStrings, WiderElementsKeepTheirLowBits) {
    const unsigned short euro[] = {0x20AC, 0};
    char byte[2];
    ConvertUnicodeGeneric<unsigned short, char>(euro, byte, -1);
    EXPECT_STREQ("\xAC", byte);
    const wchar_t face[] = {0x1F600, 0};
    unsigned short unit[2];
    ConvertUnicodeGeneric<wchar_t, unsigned short>(face, unit, -1);
    EXPECT_EQ(0xF600, unit[0]);
}

TEST_F(UnicodeStrings, UnitsAreWidenedWithoutSign) {
    const unsigned short units[] = {0xFFE9, 0};
    wchar_t wide[2];
    ConvertUnicodeGeneric<unsigned short, wchar_t>(units, wide, -1);
    EXPECT_EQ(0xFFE9, wide[0]);
}

TEST_F(UnicodeStrings, SameKindPairsIgnoreTheCodePage) {
    for (const unsigned int codePage : {0u, 1u, 65000u, kUtf8}) {
        char bytes[3];
        EXPECT_EQ(bytes, (ConvertUnicodeWithCodePage<char, char>(codePage, "\xE9xyz", bytes, 2)));
        EXPECT_STREQ("\xE9x", bytes);
        unsigned short units[3];
        EXPECT_EQ(units, (ConvertUnicodeWithCodePage<wchar_t, unsigned short>(codePage, L"\u20ACyz", units, 2)));
        EXPECT_EQ((CElements{0x20AC, 'y'}), Elements(units));
        wchar_t wide[3];
        const unsigned short source[] = {0xD83D, 0xDE00, 'z', 0};
        EXPECT_EQ(wide, (ConvertUnicodeWithCodePage<unsigned short, wchar_t>(codePage, source, wide, 2)));
        EXPECT_EQ((CElements{0xD83D, 0xDE00}), Elements(wide));
    }
}

TEST_F(UnicodeStrings, UnitsToCharsGoThroughTheCodePageWithoutLimit) {
    const unsigned short source[] = {'a', 0x20AC, 'b', 0};
    char bytes[16];
    EXPECT_EQ(bytes, (ConvertUnicodeWithCodePage<unsigned short, char>(kUtf8, source, bytes, 1)));
    EXPECT_STREQ(
        "a\xE2\x82\xAC"
        "b",
        bytes);
    EXPECT_EQ(bytes, (ConvertUnicode<unsigned short, char>(source, bytes, 1)));
    EXPECT_STREQ(
        "a\xE2\x82\xAC"
        "b",
        bytes);
    const std::unique_ptr<char[]> made(ConvertUnicode<unsigned short, char>(source, nullptr, -1));
    EXPECT_STREQ(
        "a\xE2\x82\xAC"
        "b",
        made.get());
}

TEST_F(UnicodeStrings, UnitsThatNoCharsetTakesAreCopiedOneByOne) {
    const unsigned short source[] = {'a', 0xD83D, 'b', 0};
    char bytes[8];
    EXPECT_EQ(bytes, (ConvertUnicodeWithCodePage<unsigned short, char>(kUtf8, source, bytes, 2)));
    EXPECT_STREQ("a\x3D", bytes);
    EXPECT_EQ(bytes, (ConvertUnicode<unsigned short, char>(source, bytes, -1)));
    EXPECT_STREQ(
        "a\x3D"
        "b",
        bytes);
}

TEST_F(UnicodeStrings, ConversionOfNullIsNull) {
    char bytes[2];
    EXPECT_EQ(nullptr, (ConvertUnicode<char, char>(nullptr, bytes, -1)));
    EXPECT_EQ(nullptr, (ConvertUnicode<unsigned short, char>(nullptr, bytes, -1)));
    EXPECT_EQ(nullptr, (ConvertUnicode<wchar_t, unsigned short>(nullptr, nullptr, -1)));
    EXPECT_EQ(nullptr, (ConvertUnicode<unsigned short, wchar_t>(nullptr, nullptr, -1)));
    EXPECT_EQ(nullptr, ConvertUnicodeToMultiByte<char>(kUtf8, nullptr, bytes));
    EXPECT_EQ(nullptr, ConvertUnicodeToMultiByte<unsigned short>(kUtf8, nullptr, bytes));
    EXPECT_EQ(nullptr, ConvertUnicodeToMultiByte<wchar_t>(kUtf8, nullptr, bytes));
    EXPECT_EQ(nullptr, ConvertUnicodeFromMultiByte<unsigned short>(kUtf8, nullptr, nullptr, -1));
}

TEST_F(UnicodeStrings, ConvertUsesTheLocale) {
    char bytes[4];
    EXPECT_EQ(bytes, (ConvertUnicode<char, char>("abc", bytes, 2)));
    EXPECT_STREQ("ab", bytes);
    unsigned short units[4];
    EXPECT_EQ(units, (ConvertUnicode<wchar_t, unsigned short>(L"abc", units, 2)));
    EXPECT_EQ((CElements{'a', 'b'}), Elements(units));
    wchar_t wide[4];
    EXPECT_EQ(wide, (ConvertUnicode<unsigned short, wchar_t>(units, wide, -1)));
    EXPECT_EQ((CElements{'a', 'b'}), Elements(wide));
}

TEST_F(UnicodeStrings, ConvertAsksForTheLocaleFirstAndForNoCodePage) {
    const unsigned short source[] = {'a', 0};
    char bytes[2];
    IconvWatch() = {};
    EXPECT_EQ(bytes, (ConvertUnicode<unsigned short, char>(source, bytes, -1)));
    EXPECT_EQ((std::vector<std::string>{"<WCHAR_T", "<WCHAR_T"}), IconvWatch().m_opened) << "measured and written";
}

TEST_F(UnicodeStrings, ToMultiByteConvertsEveryElementType) {
    const unsigned short units[] = {'a', 0xE9, 0};
    char bytes[16];
    EXPECT_EQ(bytes, ConvertUnicodeToMultiByte<unsigned short>(kUtf8, units, bytes));
    EXPECT_STREQ("a\xC3\xA9", bytes);
    EXPECT_EQ(bytes, ConvertUnicodeToMultiByte<wchar_t>(kUtf8, L"a\u00E9", bytes));
    EXPECT_STREQ("a\xC3\xA9", bytes);
    // A char above 0x7F is a unit of 0xFF80 and more.
    EXPECT_EQ(bytes, ConvertUnicodeToMultiByte<char>(kUtf8, "a\xE9", bytes));
    EXPECT_STREQ("a\xEF\xBF\xA9", bytes);
    const std::unique_ptr<char[]> made(ConvertUnicodeToMultiByte<unsigned short>(kUtf8, units, nullptr));
    EXPECT_STREQ("a\xC3\xA9", made.get());
}

TEST_F(UnicodeStrings, ToMultiByteFailsWhereNoCharsetTakesTheText) {
    const unsigned short lone[] = {0xD83D, 0};
    char bytes[] = "#";
    EXPECT_EQ(nullptr, ConvertUnicodeToMultiByte<unsigned short>(kUtf8, lone, bytes));
    EXPECT_STREQ("#", bytes);
    EXPECT_EQ(nullptr, ConvertUnicodeToMultiByte<unsigned short>(1, lone, nullptr));
}

TEST_F(UnicodeStrings, FromMultiByteConvertsToEveryElementType) {
    const char text[] = "a\xE2\x82\xAC";
    unsigned short units[4];
    EXPECT_EQ(units, ConvertUnicodeFromMultiByte<unsigned short>(kUtf8, text, units, -1));
    EXPECT_EQ((CElements{'a', 0x20AC}), Elements(units));
    wchar_t wide[4];
    EXPECT_EQ(wide, ConvertUnicodeFromMultiByte<wchar_t>(kUtf8, text, wide, -1));
    EXPECT_EQ((CElements{'a', 0x20AC}), Elements(wide));
    char bytes[4];
    EXPECT_EQ(bytes, ConvertUnicodeFromMultiByte<char>(kUtf8, text, bytes, -1));
    EXPECT_STREQ("a\xAC", bytes);
    const std::unique_ptr<unsigned short[]> made(ConvertUnicodeFromMultiByte<unsigned short>(kUtf8, text, nullptr, -1));
    EXPECT_EQ((CElements{'a', 0x20AC}), Elements(made.get()));
}

TEST_F(UnicodeStrings, FromMultiByteFailsWhereNoCharsetTakesTheText) {
    char byte = '#';
    unsigned short unit = '#';
    wchar_t wide = '#';
    IconvWatch().m_onlyCharsets = {"<none>"};
    EXPECT_EQ(nullptr, ConvertUnicodeFromMultiByte<char>(kUtf8, "a", &byte, -1));
    EXPECT_EQ(nullptr, ConvertUnicodeFromMultiByte<unsigned short>(kUtf8, "a", &unit, -1));
    EXPECT_EQ(nullptr, ConvertUnicodeFromMultiByte<wchar_t>(kUtf8, "a", &wide, -1));
    EXPECT_EQ(nullptr, ConvertUnicodeFromMultiByte<char>(kUtf8, "a", nullptr, -1));
    IconvWatch().m_onlyCharsets.clear();
    EXPECT_EQ('#', byte);
    EXPECT_EQ('#', unit);
    EXPECT_EQ(L'#', wide);
}

TEST_F(UnicodeStrings, FromMultiByteLimitsBytesAndElementsAlike) {
    const char text[] =
        "\xC3\xA9\xC3\xA8"
        "bc";
    unsigned short units[8];
    EXPECT_EQ(units, ConvertUnicodeFromMultiByte<unsigned short>(kUtf8, text, units, 4));
    EXPECT_EQ((CElements{0xE9, 0xE8}), Elements(units));
    EXPECT_EQ(units, ConvertUnicodeFromMultiByte<unsigned short>(kUtf8, text, units, 0));
    EXPECT_EQ((CElements{}), Elements(units));
    EXPECT_EQ(units, ConvertUnicodeFromMultiByte<unsigned short>(kUtf8, text, units, 100));
    EXPECT_EQ((CElements{0xE9, 0xE8, 'b', 'c'}), Elements(units));
}

TEST_F(UnicodeStrings, CopyKeepsItsLimit) {
    char bytes[] = "#####";
    EXPECT_EQ(bytes, UnicodeStrCpy<char>(bytes, "abc", 2));
    EXPECT_STREQ("ab", bytes);
    EXPECT_EQ('#', bytes[3]);
    EXPECT_EQ(bytes, UnicodeStrCpy<char>(bytes, "abcd", -1));
    EXPECT_STREQ("abcd", bytes);
    EXPECT_EQ(nullptr, UnicodeStrCpy<char>(bytes, nullptr, -1));
    EXPECT_STREQ("abcd", bytes);
}

TEST_F(UnicodeStrings, AppendingReturnsWhereTheAppendedTextBegins) {
    char bytes[8] = "ab";
    EXPECT_EQ(bytes + 2, UnicodeStrCat<char>(bytes, "cd"));
    EXPECT_STREQ("abcd", bytes);
    EXPECT_EQ(bytes + 4, UnicodeStrCat<char>(bytes, ""));
    EXPECT_EQ(nullptr, UnicodeStrCat<char>(bytes, nullptr));
    EXPECT_STREQ("abcd", bytes);
}

TEST_F(UnicodeStrings, ComparesSignedElementsUpToTheLimit) {
    struct SCase {
        const char* m_pA;
        const char* m_pB;
        int m_nLimit;
        int m_nExpected;
    };
    const SCase cases[] = {
        {"a", "ab", -1, -1},   {"ab", "a", -1, 1},       {"ab", "ab", -1, 0},       {"ab", "ac", 1, 0},
        {"ab", "ac", 2, -1},   {"ac", "ab", 2, 1},       {"ab", "abc", 2, 0},       {"ab", "abc", 3, -1},
        {"a", "a", 100, 0},    {"x", "y", 0, 0},         {"x", "y", -2, 0},         {"x", "y", INT_MIN, 0},
        {"", "", -1, 0},       {"", "a", -1, -1},        {"a", "", -1, 1},          {"\xE9", "a", -1, -1},
        {"a", "\xE9", -1, 1},  {"\x80", "\xFF", -1, -1}, {"", "\xE9", -1, -1},      {"\xE9", "", -1, 1},
        {nullptr, "", -1, -1}, {"", nullptr, -1, 1},     {nullptr, nullptr, -1, 0}, {nullptr, "", 0, -1},
        {"", nullptr, 0, 1},
    };
    for (const SCase& c : cases) {
        EXPECT_EQ(c.m_nExpected, UnicodeStringCmp<char>(c.m_pA, c.m_pB, c.m_nLimit)) << "case " << &c - cases;
    }
}

// Conversion between multibyte and 16-bit wide text by code page.
#include <gtest/gtest.h>
#include <iconv.h>
#include <locale.h>
#include <string.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "portable/CodePage.h"
#include "tests/portable/IconvWatch.h"

namespace {

constexpr unsigned int kUtf7 = 65000;
constexpr unsigned int kUtf8 = 65001;
const unsigned int g_codePages[] = {0, 1, 932, 1252, kUtf7, kUtf8};

const std::vector<std::string> g_fallbackCharsets = {
    "UTF-8",      "EUC-JP",      "EUC-KR", "EUC-TW", "ISO-8859-1", "ISO-8859-15", "ISO-8859-2",
    "ISO-8859-8", "ISO-8859-13", "SJIS",   "KOI8-R", "KOI8-U",     "KOI8_T",      "TIS-620",
    "ISO-8859-9", "BIG-5",       "GBK",    "GB2312", "GB18038",    "ISO-8859-5",  "ISO-8859-6",
    "ISO-8859-7", "ISO-8895-14", "CP1251", "CP1255", "TCVN5712-1", "PT154"};

using CUnits = std::vector<unsigned short>;

// A destination whose end is watched.
constexpr unsigned short kUntouched = 0xABCD;

// What iconv itself makes of `source`; false when it stops half-way.
template <typename TResult>
bool ConvertWithIconv(const char* to, const char* from, const void* source, size_t bytes, TResult* result,
                      size_t room) {
    const iconv_t descriptor = iconv_open(to, from);
    if (descriptor == reinterpret_cast<iconv_t>(-1)) return false;
    char* in = static_cast<char*>(const_cast<void*>(source));
    char* out = reinterpret_cast<char*>(result);
    size_t outBytes = room * sizeof(TResult);
    const size_t converted = iconv(descriptor, &in, &bytes, &out, &outBytes);
    iconv_close(descriptor);
    return converted != static_cast<size_t>(-1);
}

// The units that the first charset of the list accepting all of `bytes` gives.
CUnits UnitsOfFirstAcceptingCharset(const std::string& bytes) {
    for (const std::string& charset : g_fallbackCharsets) {
        std::vector<wchar_t> wide(bytes.size() + 1);
        if (!ConvertWithIconv("WCHAR_T", charset.c_str(), bytes.data(), bytes.size(), wide.data(), bytes.size()))
            continue;
        CUnits units;
        for (size_t i = 0; wide[i] != 0; ++i) units.push_back(static_cast<unsigned short>(wide[i]));
        return units;
    }
    return {};
}

class CodePage : public testing::Test {
protected:
    void SetUp() override { ASSERT_NE(nullptr, setlocale(LC_ALL, "C")); }
    void TearDown() override { EXPECT_EQ(0, IconvWatch().m_nOpen); }

    // All units of the conversion, checking the promised size.
    static CUnits ToWide(unsigned int codePage, const std::string& bytes) {
        const int length = static_cast<int>(bytes.size());
        const int needed = MultiByteToWideChar(codePage, 0, bytes.data(), length, nullptr, 0);
        if (needed == 0) return {kUntouched};
        CUnits units(static_cast<size_t>(needed) + 1, kUntouched);
        EXPECT_EQ(needed, MultiByteToWideChar(codePage, 0, bytes.data(), length, units.data(), needed));
        EXPECT_EQ(0, units[static_cast<size_t>(needed) - 1]);
        units.resize(static_cast<size_t>(needed) - 1);
        return units;
    }

    // All bytes of the conversion, "<failed>" when there is none.
    static std::string ToBytes(unsigned int codePage, CUnits units) {
        units.push_back(0);
        const int needed = WideCharToMultiByte(codePage, 0, units.data(), -1, nullptr, 0, nullptr, nullptr);
        if (needed == 0) return "<failed>";
        std::string bytes(static_cast<size_t>(needed), '#');
        EXPECT_EQ(needed, WideCharToMultiByte(codePage, 0, units.data(), -1, bytes.data(), needed, nullptr, nullptr));
        EXPECT_EQ('\0', bytes.back());
        bytes.pop_back();
        return bytes;
    }

    // The charsets that `convert` tries, in order.
    template <typename TConvert>
    static std::vector<std::string> Attempts(const std::set<std::string>& onlyCharsets, TConvert convert) {
        IconvWatch() = {};
        IconvWatch().m_onlyCharsets = onlyCharsets;
        convert();
        std::vector<std::string> attempts = IconvWatch().m_opened;
        IconvWatch().m_onlyCharsets.clear();
        return attempts;
    }

    // Names of the form "to<from": `first`, the locale and the list from `fromIndex`.
    static std::vector<std::string> Names(bool toWide, std::vector<std::string> first, size_t fromIndex) {
        first.push_back("");
        first.insert(first.end(), g_fallbackCharsets.begin() + static_cast<long>(fromIndex), g_fallbackCharsets.end());
        for (std::string& name : first) name = toWide ? "WCHAR_T<" + name : name + "<WCHAR_T";
        return first;
    }
};

}  // namespace

TEST_F(CodePage, NoMultibyteCodePageIsActive) { EXPECT_EQ(0u, _getmbcp()); }

TEST_F(CodePage, MeasuresWithoutADestination) {
    EXPECT_EQ(4, MultiByteToWideChar(kUtf8, 0, "abc", -1, nullptr, 0));
    EXPECT_EQ(4, MultiByteToWideChar(kUtf8, 0, "abc", -1, nullptr, 10));
    EXPECT_EQ(1, MultiByteToWideChar(kUtf8, 0, "", -1, nullptr, 0));
    EXPECT_EQ(1, MultiByteToWideChar(kUtf8, 0, "abc", 0, nullptr, 0));
    unsigned short units[] = {kUntouched, kUntouched};
    EXPECT_EQ(4, MultiByteToWideChar(kUtf8, 0, "abc", -1, units, 0));
    EXPECT_EQ(4, MultiByteToWideChar(kUtf8, 0, "abc", -1, units, -1));
    EXPECT_EQ(kUntouched, units[0]);
}

TEST_F(CodePage, AByteCountEndsTheSource) {
    EXPECT_EQ((CUnits{'a', 'b', 'c'}), ToWide(kUtf8, "abc"));
    EXPECT_EQ(4, MultiByteToWideChar(kUtf8, 0, "abcdef", 3, nullptr, 0));
    EXPECT_EQ(4, MultiByteToWideChar(kUtf8, 0, "abc", 4, nullptr, 0));
}

TEST_F(CodePage, TheResultEndsAtItsFirstZero) {
    EXPECT_EQ(2, MultiByteToWideChar(kUtf8, 0, "a\0b", 3, nullptr, 0));
    EXPECT_EQ((CUnits{'a'}), ToWide(kUtf8, std::string("a\0b", 3)));
}

TEST_F(CodePage, AShortenedWideCopyStillReturnsTheNeededSize) {
    CUnits units(6, kUntouched);
    EXPECT_EQ(7, MultiByteToWideChar(kUtf8, 0, "abcdef", -1, units.data(), 3));
    EXPECT_EQ((CUnits{'a', 'b', 'c', 0, kUntouched, kUntouched}), units);
}

TEST_F(CodePage, EveryCodePageReadsUtf8InAnyLocale) {
    for (const char* const locale : {"C", "C.UTF-8"}) {
        ASSERT_NE(nullptr, setlocale(LC_ALL, locale));
        for (const unsigned int codePage : g_codePages) {
            EXPECT_EQ((CUnits{'a', 0xE9, 0x20AC}), ToWide(codePage, "a\xC3\xA9\xE2\x82\xAC")) << locale << codePage;
        }
    }
}

TEST_F(CodePage, CharactersAboveSixteenBitsAreCut) { EXPECT_EQ((CUnits{0xF600}), ToWide(kUtf8, "\xF0\x9F\x98\x80")); }

TEST_F(CodePage, OnlyItsOwnCodePageReadsUtf7) {
    EXPECT_EQ((CUnits{'a', 0xE9, 'b'}), ToWide(kUtf7, "a+AOk-b"));
    for (const unsigned int codePage : {0u, 1u, kUtf8}) {
        EXPECT_EQ((CUnits{'+', 'A', 'O', 'k', '-'}), ToWide(codePage, "+AOk-")) << codePage;
    }
}

TEST_F(CodePage, BytesInvalidInUtf8AreReadByTheFirstCharsetThatAcceptsThem) {
    EXPECT_EQ((CUnits{0x3042}), ToWide(0, "\xA4\xA2")) << "EUC-JP comes before ISO-8859-1";
    EXPECT_EQ((CUnits{'c', 0xE9}), ToWide(0, "c\xE9")) << "ISO-8859-1 takes what the EUC charsets refuse";
    for (const char* const locale : {"C", "C.UTF-8"}) {
        ASSERT_NE(nullptr, setlocale(LC_ALL, locale));
        for (int lead = 0x80; lead <= 0xFF; lead += 3) {
            for (int trail = 0x20; trail <= 0xFF; trail += 31) {
                const std::string bytes{'a', static_cast<char>(lead), static_cast<char>(trail)};
                ASSERT_EQ(UnitsOfFirstAcceptingCharset(bytes), ToWide(lead % 2 == 0 ? kUtf8 : 1, bytes)) << bytes;
            }
        }
    }
}

TEST_F(CodePage, WideAttemptsFollowTheirOrder) {
    struct SCase {
        unsigned int m_nCodePage;
        std::vector<std::string> m_first;
        size_t m_nFromIndex;
    };
    const SCase cases[] = {{0, {}, 0}, {1, {}, 0}, {1252, {}, 0}, {kUtf7, {"UTF-7"}, 0}, {kUtf8, {"UTF-8"}, 1}};
    for (const SCase& c : cases) {
        const auto convert = [&c] {
            unsigned short units[] = {kUntouched, kUntouched, kUntouched};
            EXPECT_EQ(0, MultiByteToWideChar(c.m_nCodePage, 0, "a", -1, units, 2));
            EXPECT_EQ(kUntouched, units[0]) << "a failure leaves the destination";
        };
        EXPECT_EQ(Names(true, c.m_first, c.m_nFromIndex), Attempts({"<none>"}, convert)) << c.m_nCodePage;
    }
}

TEST_F(CodePage, WideAttemptsEndWithTheFirstSuccess) {
    const auto attempts = [](unsigned int codePage, const char* text) {
        return Attempts({}, [=] { EXPECT_NE(0, MultiByteToWideChar(codePage, 0, text, -1, nullptr, 0)); });
    };
    using CNames = std::vector<std::string>;
    EXPECT_EQ((CNames{"WCHAR_T<UTF-8"}), attempts(kUtf8, "\xC3\xA9"));
    EXPECT_EQ((CNames{"WCHAR_T<UTF-7"}), attempts(kUtf7, "a"));
    EXPECT_EQ((CNames{"WCHAR_T<"}), attempts(0, "a"));
    EXPECT_EQ((CNames{"WCHAR_T<", "WCHAR_T<UTF-8"}), attempts(0, "\xC3\xA9"));
    EXPECT_EQ((CNames{"WCHAR_T<UTF-8", "WCHAR_T<", "WCHAR_T<EUC-JP"}), attempts(kUtf8, "\xA4\xA2"));
}

TEST_F(CodePage, AFailedAttemptLeavesNothingInALaterResult) {
    // EUC-JP reads six characters before it stops at the last one; EUC-TW reads all as four.
    const std::string bytes = "\x8E\xA2\xA1\xA1\x8E\xA2\xA1\xA1\x8E\xA2\xA1\xA1\xF5\xA1";
    EXPECT_EQ(4u, ToWide(0, bytes).size());
    EXPECT_EQ(UnitsOfFirstAcceptingCharset(bytes), ToWide(0, bytes));
}

TEST_F(CodePage, AnyCharsetOfTheListMayBeTheOneThatReads) {
    Attempts({"EUC-KR"}, [] { EXPECT_EQ((CUnits{0xAC00}), ToWide(0, "\xB0\xA1")); });
    Attempts({"PT154"}, [] { EXPECT_EQ((CUnits{0x0416}), ToWide(kUtf8, "\xC6")); });
}

TEST_F(CodePage, WritesUtf8InEveryCodePageAndLocale) {
    for (const char* const locale : {"C", "C.UTF-8"}) {
        ASSERT_NE(nullptr, setlocale(LC_ALL, locale));
        for (const unsigned int codePage : {0u, 1u, 1252u, kUtf8}) {
            EXPECT_EQ("a\xC3\xA9\xE2\x82\xAC", ToBytes(codePage, {'a', 0xE9, 0x20AC})) << locale << codePage;
        }
    }
}

TEST_F(CodePage, MeasuresBytesWithoutADestination) {
    const unsigned short text[] = {'a', 'b', 'c', 0};
    EXPECT_EQ(4, WideCharToMultiByte(kUtf8, 0, text, -1, nullptr, 0, nullptr, nullptr));
    EXPECT_EQ(4, WideCharToMultiByte(kUtf8, 0, text, -1, nullptr, 10, nullptr, nullptr));
    char bytes[] = "#";
    EXPECT_EQ(4, WideCharToMultiByte(kUtf8, 0, text, -1, bytes, 0, nullptr, nullptr));
    EXPECT_EQ(4, WideCharToMultiByte(kUtf8, 0, text, -1, bytes, -1, nullptr, nullptr));
    EXPECT_STREQ("#", bytes);
    EXPECT_EQ("", ToBytes(kUtf8, {}));
}

TEST_F(CodePage, AUnitCountEndsTheSource) {
    const unsigned short text[] = {'a', 'b', 'c', 0};
    char bytes[8];
    EXPECT_EQ(3, WideCharToMultiByte(kUtf8, 0, text, 2, bytes, sizeof bytes, nullptr, nullptr));
    EXPECT_STREQ("ab", bytes);
    EXPECT_EQ(1, WideCharToMultiByte(kUtf8, 0, text, 0, bytes, sizeof bytes, nullptr, nullptr));
    EXPECT_STREQ("", bytes);
}

TEST_F(CodePage, ATerminatorEndsTheSourceBeforeTheUnitCount) {
    const unsigned short text[] = {'a', 'b', 0, 'd', 'e', 'f'};
    char bytes[8];
    EXPECT_EQ(3, WideCharToMultiByte(kUtf8, 0, text, 6, bytes, sizeof bytes, nullptr, nullptr));
    EXPECT_STREQ("ab", bytes);
    EXPECT_EQ(3, WideCharToMultiByte(kUtf8, 0, text, 100, bytes, sizeof bytes, nullptr, nullptr));
    EXPECT_STREQ("ab", bytes);
}

TEST_F(CodePage, ACutByteCopyIsTerminatedAndReturnsTheNeededSize) {
    const unsigned short text[] = {'a', 'b', 'c', 'd', 'e', 0};
    struct SCase {
        int m_nRoom;
        const char* m_pExpected;
    };
    const SCase cases[] = {{1, ""}, {3, "ab"}, {5, "abcd"}, {6, "abcde"}, {9, "abcde"}};
    for (const SCase& c : cases) {
        std::string bytes(10, '#');
        EXPECT_EQ(6, WideCharToMultiByte(kUtf8, 0, text, -1, bytes.data(), c.m_nRoom, nullptr, nullptr));
        EXPECT_STREQ(c.m_pExpected, bytes.c_str()) << c.m_nRoom;
        EXPECT_EQ('\0', bytes[static_cast<size_t>(c.m_nRoom) - 1]);
        EXPECT_EQ('#', bytes[static_cast<size_t>(c.m_nRoom)]);
    }
}

TEST_F(CodePage, AByteCopyZeroesTheRestOfTheDestination) {
    const unsigned short text[] = {'a', 0};
    std::string bytes(6, '#');
    EXPECT_EQ(2, WideCharToMultiByte(kUtf8, 0, text, -1, bytes.data(), 5, nullptr, nullptr));
    EXPECT_EQ(std::string("a\0\0\0\0#", 6), bytes);
}

TEST_F(CodePage, ACutMayFallInsideACharacter) {
    const unsigned short text[] = {0x20AC, 0};
    char bytes[3];
    EXPECT_EQ(4, WideCharToMultiByte(kUtf8, 0, text, -1, bytes, 3, nullptr, nullptr));
    EXPECT_STREQ("\xE2\x82", bytes);
}

TEST_F(CodePage, SurrogatesAreNotCombinedAndNoCharsetTakesThem) {
    const unsigned short text[] = {'a', 0xD83D, 0xDE00, 0};
    for (const unsigned int codePage : g_codePages) {
        char bytes[] = "####";
        EXPECT_EQ(0, WideCharToMultiByte(codePage, 0, text, -1, bytes, 4, nullptr, nullptr)) << codePage;
        EXPECT_EQ(0, memcmp(bytes, "\0###", 5)) << "only the first byte is cleared before the attempts";
    }
}

TEST_F(CodePage, DefaultCharactersAndFlagsAreIgnored) {
    const unsigned short text[] = {'a', 0x20AC, 0};
    int used = 77;
    char bytes[8];
    EXPECT_EQ(5, WideCharToMultiByte(0, 0xFFFFFFFFu, text, -1, bytes, sizeof bytes, "?", &used));
    EXPECT_STREQ("a\xE2\x82\xAC", bytes);
    EXPECT_EQ(77, used);
    EXPECT_EQ(2, MultiByteToWideChar(0, 0xFFFFFFFFu, "a", -1, nullptr, 0));
}

TEST_F(CodePage, ByteAttemptsFollowTheirOrder) {
    struct SCase {
        unsigned int m_nCodePage;
        std::vector<std::string> m_first;
        size_t m_nFromIndex;
    };
    const SCase cases[] = {
        {0, {}, 0}, {1, {}, 0}, {1252, {}, 0}, {kUtf7, {"UTF-7", "UTF-8"}, 0}, {kUtf8, {"UTF-8"}, 1}};
    for (const SCase& c : cases) {
        const auto convert = [&c] {
            const unsigned short text[] = {'a', 0};
            EXPECT_EQ(0, WideCharToMultiByte(c.m_nCodePage, 0, text, -1, nullptr, 0, nullptr, nullptr));
        };
        EXPECT_EQ(Names(false, c.m_first, c.m_nFromIndex), Attempts({"<none>"}, convert)) << c.m_nCodePage;
    }
}

TEST_F(CodePage, ByteAttemptsUseTheListWhereTheLocaleFails) {
    for (const std::string charset : {"EUC-JP", "SJIS", "GBK"}) {
        const CUnits text{'a', 0x3042, 0};
        std::vector<wchar_t> wide(text.begin(), text.end());
        std::string expected(16, '\0');
        ASSERT_TRUE(ConvertWithIconv(charset.c_str(), "WCHAR_T", wide.data(), 8, expected.data(), 16));
        Attempts({charset}, [&] { EXPECT_EQ(expected.c_str(), ToBytes(0, {'a', 0x3042})); });
    }
}

TEST_F(CodePage, AFailedByteAttemptLeavesNothingInALaterResult) {
    // EUC-JP writes three bytes for each of the letters before it stops at the soft hyphen; ISO-8859-1 writes one.
    const auto convert = [] { EXPECT_EQ("\xE9\xE9\xE9\xAD", ToBytes(0, {0xE9, 0xE9, 0xE9, 0xAD})); };
    const std::vector<std::string> attempts = Attempts({"EUC-JP", "ISO-8859-1"}, convert);
    EXPECT_EQ("ISO-8859-1<WCHAR_T", attempts.back());
}

TEST_F(CodePage, Utf7CodePageTriesUtf7AndWritesUtf8) {
    const auto convert = [] { EXPECT_EQ("a", ToBytes(kUtf7, {'a'})); };
    EXPECT_EQ((std::vector<std::string>{"UTF-7<WCHAR_T", "UTF-8<WCHAR_T", "UTF-7<WCHAR_T", "UTF-8<WCHAR_T"}),
              Attempts({}, convert));
    EXPECT_EQ("plain text", ToBytes(kUtf7, {'p', 'l', 'a', 'i', 'n', ' ', 't', 'e', 'x', 't'}));
}

TEST_F(CodePage, Utf8IsWrittenOverTheUtf7TextInOneBuffer) {
    for (const CUnits& text : {CUnits{'a', '+', 'b'}, CUnits{0xE9}, CUnits{'x', 0x20AC, 'y', 0x3042}}) {
        const std::vector<wchar_t> wide(text.begin(), text.end());
        const size_t bytes = wide.size() * sizeof(wchar_t);
        std::string expected(bytes + 1, '\0');
        ConvertWithIconv("UTF-7", "WCHAR_T", wide.data(), bytes, expected.data(), bytes);
        ASSERT_TRUE(ConvertWithIconv("UTF-8", "WCHAR_T", wide.data(), bytes, expected.data(), bytes));
        EXPECT_EQ(expected.c_str(), ToBytes(kUtf7, text));
        EXPECT_EQ(0u, ToBytes(kUtf7, text).find(ToBytes(kUtf8, text)));
    }
}

TEST_F(CodePage, ANullSourceIsTheEmptyText) {
    unsigned short units[] = {kUntouched, kUntouched};
    EXPECT_EQ(1, MultiByteToWideChar(kUtf8, 0, nullptr, -1, units, 1));
    EXPECT_EQ(0, units[0]);
    EXPECT_EQ(1, MultiByteToWideChar(0, 0, nullptr, 5, nullptr, 0));
    char bytes[] = "##";
    EXPECT_EQ(1, WideCharToMultiByte(kUtf8, 0, nullptr, -1, bytes, 2, nullptr, nullptr));
    EXPECT_STREQ("", bytes);
    EXPECT_EQ(1, WideCharToMultiByte(0, 0, nullptr, 5, nullptr, 0, nullptr, nullptr));
}

TEST_F(CodePage, LongTextsKeepEveryCharacter) {
    const CUnits text(5000, 0x20AC);
    const std::string bytes = ToBytes(kUtf8, text);
    EXPECT_EQ(15000u, bytes.size());
    EXPECT_EQ(text, ToWide(kUtf8, bytes));
}

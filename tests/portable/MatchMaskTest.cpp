// Wildcard masks of directory searches.
#include <ctype.h>
#include <gtest/gtest.h>
#include <string.h>

#include <chrono>
#include <string>
#include <vector>

#include "portable/MatchMask.h"
#include "tests/portable/EightBitLocale.h"

namespace {

struct SMatchCase {
    const char* m_pMask;
    const char* m_pName;
    int m_nCaseSensitive;
    int m_nExpected;
};

void ExpectMatches(const std::vector<SMatchCase>& cases) {
    for (const SMatchCase& c : cases) {
        EXPECT_EQ(c.m_nExpected, MatchMask(c.m_pMask, c.m_pName, c.m_nCaseSensitive))
            << c.m_pMask << " against " << c.m_pName << (c.m_nCaseSensitive != 0 ? ", case-sensitive" : "");
    }
}

// The rules one by one, trying every length of every '*'.
bool PlainMatch(const char* mask, const char* name, bool caseSensitive) {
    if (strlen(mask) > strlen(name)) return false;
    if (*mask == '\0') return true;
    if (*mask == '*') {
        for (size_t skipped = 1; skipped <= strlen(name); ++skipped) {
            if (PlainMatch(mask + 1, name + skipped, caseSensitive)) return true;
        }
        return false;
    }
    const bool equal = caseSensitive ? *mask == *name : toupper(*mask) == toupper(*name);
    return (*mask == '?' || equal) && PlainMatch(mask + 1, name + 1, caseSensitive);
}

// Every text of up to `length` characters of `alphabet`.
std::vector<std::string> AllTexts(const std::string& alphabet, size_t length) {
    std::vector<std::string> texts{""};
    for (size_t i = 0; i < texts.size(); ++i) {
        if (texts[i].size() == length) continue;
        for (const char c : alphabet) texts.push_back(texts[i] + c);
    }
    return texts;
}

}  // namespace

TEST(MatchMask, StarStandsForAtLeastOneCharacter) {
    ExpectMatches({{"*.so", "x.so", 0, 1},
                   {"*.so", "libx.so", 0, 1},
                   {"*.so", ".so", 0, 0},
                   {"a*c", "abc", 1, 1},
                   {"a*c", "ac", 1, 0},
                   {"a*c", "acc", 1, 1},
                   {"**", "a", 1, 0},
                   {"**", "ab", 1, 1},
                   {"*", "", 1, 0}});
}

TEST(MatchMask, QuestionMarkStandsForOneCharacter) {
    ExpectMatches({{"A?C", "abcd", 0, 1}, {"a?c", "ac", 1, 0}, {"?", "", 1, 0}, {"??", "ab", 1, 1}});
}

TEST(MatchMask, CaseCountsOnlyWhenAsked) {
    ExpectMatches({{"A?C", "abc", 1, 0},
                   {"A?C", "abc", 0, 1},
                   {"a?c", "ABC", 0, 1},
                   {"A?C", "AbC", 1, 1},
                   {"abc", "ABC", 2, 0},
                   {"[", "{", 0, 0}});
}

TEST(MatchMask, MatchesAPrefixOfTheName) {
    ExpectMatches(
        {{"ab", "abc", 1, 1}, {"", "abc", 1, 1}, {"", "", 1, 1}, {"*.so", "x.so.1", 1, 1}, {"bc", "abc", 1, 0}});
}

TEST(MatchMask, AMaskLongerThanTheNameNeverMatches) {
    ExpectMatches({{"abc*", "abc", 1, 0}, {"abc*", "abcd", 1, 1}, {"abcd", "abc", 1, 0}});
}

TEST(MatchMask, BracketsAreLiteral) { ExpectMatches({{"[ab]", "[ab]", 1, 1}, {"[ab]", "aaaa", 1, 0}}); }

TEST(MatchMask, BytesAboveSevenBitsAreCompared) {
    ExpectMatches({{"\xC3\xA9*", "\xC3\xA9t\xC3\xA9", 0, 1}, {"\xC3\xA9", "\xC3\xA8", 0, 0}, {"\xFF", "\xFF", 0, 1}});
}

TEST(MatchMask, BytesOfTheLocaleMatchInEitherCase) {
    const CEightBitLocale locale;
    if (!locale.IsThere()) GTEST_SKIP() << "no sources of locales";
    // As a signed character 0xFF is no character, so its capital is not 0xBE.
    ExpectMatches({{"\xE9?\xC9", "\xC9t\xE9", 0, 1}, {"\xE9", "\xC9", 1, 0}, {"\xFF", "\xBE", 0, 0}});
}

TEST(MatchMask, NullMatchesNothing) {
    EXPECT_EQ(0, MatchMask(nullptr, "a", 0));
    EXPECT_EQ(0, MatchMask("a", nullptr, 0));
    EXPECT_EQ(0, MatchMask(nullptr, nullptr, 1));
}

TEST(MatchMask, AgreesWithThePlainRulesOnEverySmallMaskAndName) {
    const std::vector<std::string> masks = AllTexts("aB*?", 5);
    const std::vector<std::string> names = AllTexts("ab", 6);
    for (const std::string& mask : masks) {
        for (const std::string& name : names) {
            for (const bool caseSensitive : {false, true}) {
                ASSERT_EQ(PlainMatch(mask.c_str(), name.c_str(), caseSensitive) ? 1 : 0,
                          MatchMask(mask.c_str(), name.c_str(), caseSensitive ? 1 : 0))
                    << mask << " against " << name << ' ' << caseSensitive;
            }
        }
    }
}

TEST(MatchMask, ManyStarsAgainstALongNameAnswerAtOnce) {
    std::string mask;
    for (int i = 0; i < 30; ++i) mask += "*a";
    mask += "b";
    const std::string name(4000, 'a');
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(0, MatchMask(mask.c_str(), name.c_str(), 0));
    EXPECT_EQ(1, MatchMask(mask.c_str(), (name + "b").c_str(), 0));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(2));
}

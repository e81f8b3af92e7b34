// The identities in the header, in the table for readers and in the test of their numbers are the same ones.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <string>
#include <utility>
#include <vector>

#include "tests/build/RunCommand.h"

namespace {

using Identities = std::map<unsigned long, std::string>;

std::string ContentOf(const std::string& path) {
    std::ifstream file(std::string(KELO_SOURCE_DIRECTORY "/") + path);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::pair<std::string, std::string>> Matches(const std::string& text, const char* pattern) {
    const std::regex expression(pattern);
    std::vector<std::pair<std::string, std::string>> found;
    for (std::sregex_iterator match(text.begin(), text.end(), expression), end; match != end; ++match) {
        found.emplace_back((*match)[1], (*match)[2]);
    }
    return found;
}

Identities Declared() {
    Identities identities;
    for (const auto& [name, number] : Matches(ContentOf("com/InterfaceIds.h"), "IID_(\\w+) = (\\d+);")) {
        EXPECT_TRUE(identities.emplace(std::stoul(number), name).second) << number << " is given twice";
    }
    return identities;
}

TEST(Identities, AreThoseOfTheTableForReaders) {
    Identities listed;
    for (const auto& [number, name] : Matches(ContentOf("doc/binary-contract.md"), "\\| (\\d+) \\| `(\\w+)` \\|")) {
        EXPECT_TRUE(listed.emplace(std::stoul(number), name).second) << number << " stands in two lines";
    }
    EXPECT_THAT(listed, testing::SizeIs(testing::Ge(30U)));
    EXPECT_EQ(listed, Declared()) << "com/InterfaceIds.h and doc/binary-contract.md differ";
}

TEST(Identities, HaveTheirNumbersTested) {
    const std::string test = ContentOf("tests/com/InterfaceIdsTest.cpp");
    for (const auto& [number, name] : Declared()) {
        EXPECT_THAT(test, testing::HasSubstr("IID_" + name + ", " + std::to_string(number) + "}")) << name;
    }
}

TEST(Identities, AreDeclaredInOneHeader) {
    std::vector<std::string> headers = ListedIn(KELO_PUBLIC_HEADER_LIST);
    const std::vector<std::string> sdk = ListedIn(KELO_SDK_HEADER_LIST);
    headers.insert(headers.end(), sdk.begin(), sdk.end());
    for (const std::string& header : headers) {
        if (header == "com/InterfaceIds.h") continue;
        EXPECT_THAT(Matches(ContentOf(header), "(IID_\\w+) (=) "), testing::IsEmpty()) << header;
    }
}

TEST(Identities, TheNextOneIsFree) {
    const auto next = Matches(ContentOf("doc/binary-contract.md"), "and (\\d+) (is) the next");
    ASSERT_EQ(next.size(), 1U);
    EXPECT_EQ(std::stoul(next[0].first), Declared().rbegin()->first + 1);
}

}  // namespace

// The guides show the files that they name as they are.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <regex>
#include <string>
#include <vector>

namespace {

std::string ReadFile(const std::string& path) {
    std::ifstream file(std::string(KELO_SOURCE_DIRECTORY) + "/" + path);
    return {std::istreambuf_iterator<char>(file), {}};
}

struct SListing {
    std::string m_strFile;
    std::string m_strText;
};

// Blocks below a line that holds nothing but a file's name in backticks and a colon.
std::vector<SListing> ListingsOf(const std::string& guide) {
    std::vector<SListing> listings;
    for (std::size_t end = 0; (end = guide.find("`:\n\n```", end)) != std::string::npos; ++end) {
        const std::size_t name = guide.rfind('\n', end) + 2;
        const std::size_t text = guide.find('\n', end + 5) + 1;
        listings.push_back({guide.substr(name, end - name), guide.substr(text, guide.find("```\n", text) - text)});
    }
    return listings;
}

TEST(Guides, ListingsAreTheFilesThatTheyName) {
    const std::vector<SListing> listings = ListingsOf(ReadFile("doc/plugin-guide.md"));
    EXPECT_EQ(listings.size(), 2U);
    for (const SListing& listing : listings) EXPECT_EQ(listing.m_strText, ReadFile(listing.m_strFile));
}

TEST(Guides, NameOnlyFilesThatAreThere) {
    static const std::regex kPath("`((?:abi|cmake|com|doc|examples|fuzz|plugins|sdk|stream|tests)/[A-Za-z0-9_./-]*)`");
    static const std::regex kPage("`([a-z-]+\\.md)`");
    int names = 0;
    for (const char* const page :
         {"doc/plugin-guide.md", "doc/host-guide.md", "doc/debugging.md", "doc/binary-contract.md", "doc/validator.md",
          "doc/fuzzing.md", "doc/performance.md", "doc/resampling-quality.md", "doc/coverage.md", "SECURITY.md"}) {
        const std::string text = ReadFile(page);
        ASSERT_NE(text, "") << page;
        for (std::sregex_iterator found(text.begin(), text.end(), kPath), end; found != end; ++found, ++names) {
            EXPECT_TRUE(std::ifstream(std::string(KELO_SOURCE_DIRECTORY) + "/" + (*found)[1].str()).good())
                << page << ": " << (*found)[1];
        }
        for (std::sregex_iterator found(text.begin(), text.end(), kPage), end; found != end; ++found, ++names) {
            EXPECT_NE(ReadFile("doc/" + (*found)[1].str()), "") << page << ": " << (*found)[1];
        }
    }
    EXPECT_GT(names, 10);
}

}  // namespace

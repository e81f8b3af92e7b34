// The page about the validator.
#include <gtest/gtest.h>

#include "tests/host/validate/ValidateRun.h"

namespace {

// The rows "| `name` | sentence |" of the page.
std::vector<std::string> RowsOfPage() {
    std::vector<std::string> rows;
    std::istringstream page(ReadWholeFile(KELO_SOURCE_DIR "/doc/validator.md"));
    for (std::string line; std::getline(page, line);) {
        if (line.rfind("| `", 0) == 0 && line.find('/') != std::string::npos) rows.push_back(line);
    }
    return rows;
}

}  // namespace

TEST(ValidatorPage, ListsExactlyTheChecksInTheirOrder) {
    std::vector<std::string> expected;
    for (const SListedCheck& check : ListedChecks()) {
        expected.push_back("| `" + check.m_strName + "` | " + check.m_strSentence + " |");
    }
    EXPECT_EQ(RowsOfPage(), expected);
}

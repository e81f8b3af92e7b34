// The API reference leaves no operation without words.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <regex>
#include <string>
#include <vector>

#include "tests/build/RunCommand.h"
#include "tests/support/ScratchDirectory.h"

namespace {

std::string ReadFile(const std::filesystem::path& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

// What Doxygen complains of: operations without a comment, and comments that it cannot read. Constants and fields may
// speak for themselves.
std::vector<std::string> Complaints(const std::string& log) {
    static const std::regex kSpeaksForItself(
        R"( \((variable|enumeration|macro definition|typedef)\) of .* is not documented\.)");
    std::vector<std::string> complaints;
    std::istringstream lines(log);
    for (std::string line; std::getline(lines, line);) {
        if (!std::regex_search(line, kSpeaksForItself)) complaints.push_back(line);
    }
    return complaints;
}

// Runs Doxygen with the project's settings over other headers.
std::vector<std::string> ComplaintsAbout(const std::vector<std::string>& headers) {
    CScratchDirectory scratch;
    std::string settings = ReadFile(KELO_DOXYFILE);
    settings += "\nOUTPUT_DIRECTORY = " + scratch.Path().string();
    settings += "\nWARN_LOGFILE = " + (scratch / "log.txt");
    settings += "\nGENERATE_HTML = NO\nGENERATE_XML = YES\nINPUT =";
    for (const std::string& header : headers) settings += " \"" + header + "\"";
    const SCommandResult result =
        RunCommand(Quoted(KELO_DOXYGEN) + " " + Quoted(scratch.Write("Doxyfile", settings + "\n")) + " 2>&1");
    EXPECT_EQ(result.m_nStatus, 0) << result.m_strOutput;
    return Complaints(ReadFile(scratch / "log.txt"));
}

std::vector<std::string> Headers(const char* list) {
    std::vector<std::string> headers = ListedIn(list);
    for (std::string& header : headers) header = std::string(KELO_SOURCE_DIRECTORY) + "/" + header;
    return headers;
}

TEST(Reference, HasWordsForEveryPublicOperationOfTheLibraryAndOfTheSdk) {
    std::vector<std::string> headers = Headers(KELO_PUBLIC_HEADER_LIST);
    for (const std::string& header : Headers(KELO_SDK_HEADER_LIST)) headers.push_back(header);
    EXPECT_THAT(ComplaintsAbout(headers), testing::IsEmpty());
}

TEST(Reference, OperationWithoutWordsIsFound) {
    const CScratchDirectory scratch;
    const std::string header =
        scratch.Write("Bare.h",
                      "// A header.\n#pragma once\n\n// A class.\nclass CBare {\npublic:\n"
                      "    // Words.\n    int First();\n    int Second();\n\n    int Third();\n};\n");
    EXPECT_THAT(ComplaintsAbout({header}), testing::ElementsAre(testing::HasSubstr("Member Third()")));
}

}  // namespace

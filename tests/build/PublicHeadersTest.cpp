// Every public header compiles alone, without warnings, in the standards that hosts and plug-ins may use.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/build/RunCommand.h"
#include "tests/support/ScratchDirectory.h"

namespace {

std::string CompilerCommand(const std::string& standard, const std::string& root) {
    return Quoted(KELO_CXX_COMPILER) + " -x c++ -std=" + standard +
           " -fsyntax-only -Wall -Wextra -Wpedantic -Werror -I" + Quoted(root);
}

// One source per header, which includes it twice, and one run of the build's compiler over all of them.
SCommandResult CompileAlone(const std::string& standard, const std::string& root,
                            const std::vector<std::string>& headers) {
    CScratchDirectory directory;
    std::string command = CompilerCommand(standard, root);
    for (std::size_t i = 0; i < headers.size(); ++i) {
        const std::string include = "#include \"" + headers[i] + "\"\n";
        command += " " + Quoted(directory.Write(std::to_string(i) + ".cpp", include + include));
    }
    return RunCommand(command + " 2>&1");
}

// One source that includes all headers.
SCommandResult CompileTogether(const std::string& standard, const std::string& root,
                               const std::vector<std::string>& headers) {
    CScratchDirectory directory;
    std::string source;
    for (const std::string& header : headers) source += "#include \"" + header + "\"\n";
    return RunCommand(CompilerCommand(standard, root) + " " + Quoted(directory.Write("all.cpp", source)) + " 2>&1");
}

void ExpectSilentSuccess(const SCommandResult& result) {
    EXPECT_EQ(result.m_nStatus, 0);
    EXPECT_EQ(result.m_strOutput, "");
}

void ExpectPublicHeadersToCompile(const std::string& standard) {
    ExpectSilentSuccess(CompileAlone(standard, KELO_SOURCE_DIRECTORY, ListedIn(KELO_PUBLIC_HEADER_LIST)));
}

TEST(PublicHeaders, CompileAloneAsCpp14) { ExpectPublicHeadersToCompile("c++14"); }

TEST(PublicHeaders, CompileAloneAsCpp17) { ExpectPublicHeadersToCompile("c++17"); }

TEST(PublicHeaders, CompileAloneAsCpp20) { ExpectPublicHeadersToCompile("c++20"); }

TEST(SdkHeaders, CompileAloneAsCpp17) {
    ExpectSilentSuccess(CompileAlone("c++17", KELO_SOURCE_DIRECTORY, ListedIn(KELO_SDK_HEADER_LIST)));
}

TEST(SdkHeaders, CompileTogetherAsCpp20) {
    ExpectSilentSuccess(CompileTogether("c++20", KELO_SOURCE_DIRECTORY, ListedIn(KELO_SDK_HEADER_LIST)));
}

TEST(PublicHeaders, OneThatNeedsAnotherIncludeIsFound) {
    CScratchDirectory root;
    root.Write("Whole.h", "#pragma once\n#include <cstddef>\ninline std::size_t One() { return 1; }\n");
    root.Write("Needy.h", "#pragma once\ninline std::size_t Two() { return One(); }\n");
    EXPECT_EQ(CompileAlone("c++14", root.Path(), {"Whole.h"}).m_nStatus, 0);
    const SCommandResult result = CompileAlone("c++14", root.Path(), {"Whole.h", "Needy.h"});
    EXPECT_NE(result.m_nStatus, 0);
    EXPECT_THAT(result.m_strOutput, testing::HasSubstr("Needy.h"));
}

TEST(PublicHeaders, OneWithoutAGuardIsFound) {
    CScratchDirectory root;
    root.Write("Unguarded.h", "struct STwice {};\n");
    EXPECT_NE(CompileAlone("c++20", root.Path(), {"Unguarded.h"}).m_nStatus, 0);
}

TEST(PublicHeaders, OneOfALaterStandardIsFound) {
    CScratchDirectory root;
    root.Write("Later.h", "#pragma once\ninline int g_nLater = 0;\n");
    EXPECT_NE(CompileAlone("c++14", root.Path(), {"Later.h"}).m_nStatus, 0);
    EXPECT_EQ(CompileAlone("c++17", root.Path(), {"Later.h"}).m_nStatus, 0);
}

}  // namespace

// The shared object.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tests/build/RunCommand.h"

namespace {

TEST(CurlPlugin, LibcurlIsNotNeededToLoadIt) {
    const std::string dynamic = RunCommand(KELO_READELF " -d " + Quoted(KELO_CURL_PLUGIN)).m_strOutput;
    EXPECT_THAT(dynamic, testing::HasSubstr("[libKeloAudioPluginMgr.so.0]"));
    EXPECT_THAT(dynamic, testing::Not(testing::HasSubstr("libcurl")));
}

TEST(CurlPlugin, FileIsNamedAfterThePlugin) {
    EXPECT_EQ(std::filesystem::path(KELO_CURL_PLUGIN).filename(), "curl.so");
}

}  // namespace

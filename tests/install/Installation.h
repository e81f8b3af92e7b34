// An installation of this build in a scratch prefix.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tests/host/RunProgram.h"

class Installation : public testing::Test {
protected:
    void SetUp() override {
        const SRunResult installed = RunProgram({KELO_CMAKE, "--install", KELO_BUILD_DIRECTORY, "--prefix", Prefix()});
        ASSERT_EQ(installed.m_nExit, 0) << installed.m_strErr;
    }

    // Gives the whole prefix another name.
    void Move() {
        const std::string before = Prefix();
        m_strName = "moved";
        std::filesystem::rename(before, Prefix());
    }

    std::string Prefix() const { return m_scratch / m_strName; }
    std::string LibraryDirectory() const { return Prefix() + "/" KELO_LIBRARY_FOLDER; }
    std::string PluginDirectory() const { return LibraryDirectory() + "/keloaudiopluginmgr/plugins"; }

    SRunResult KeloAudio(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), Prefix() + "/bin/keloaudio");
        return RunProgram(arguments);
    }

    CScratchDirectory m_scratch;

private:
    std::string m_strName = "prefix";
};

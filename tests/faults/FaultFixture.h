// A scratch directory, and the descriptors that must not stay open.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "tests/faults/SystemCalls.h"
#include "tests/support/ScratchDirectory.h"

// A test fails that leaves another number of descriptors open than it found.
class CFaultTest : public testing::Test {
protected:
    ~CFaultTest() override { EXPECT_EQ(OpenDescriptors(), m_nDescriptors); }

    static std::string Content(const std::string& path) {
        std::string content(std::filesystem::file_size(path), '\0');
        std::ifstream(path, std::ios::binary).read(content.data(), static_cast<std::streamsize>(content.size()));
        return content;
    }

    CScratchDirectory m_scratch;

private:
    static long OpenDescriptors() {
        const std::filesystem::directory_iterator descriptors("/proc/self/fd");
        return std::distance(begin(descriptors), end(descriptors));
    }

    long m_nDescriptors = OpenDescriptors();
};

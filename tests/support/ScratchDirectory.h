// A directory of a test's own, removed with everything in it.
#pragma once

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>

class CScratchDirectory {
public:
    CScratchDirectory() {
        std::string name = (std::filesystem::canonical(std::filesystem::temp_directory_path()) / "kelo-test-XXXXXX");
        if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no scratch directory: " + name);
        m_path = name;
    }
    ~CScratchDirectory() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }

    CScratchDirectory(const CScratchDirectory&) = delete;
    CScratchDirectory& operator=(const CScratchDirectory&) = delete;

    // Absolute and free of symbolic links.
    const std::filesystem::path& Path() const { return m_path; }
    std::string operator/(std::string_view name) const { return (m_path / name).string(); }

    // Writes a file below the directory and returns its path.
    std::string Write(std::string_view name, std::string_view content) const {
        const std::string path = *this / name;
        std::ofstream(path, std::ios::binary) << content;
        return path;
    }

private:
    std::filesystem::path m_path;
};

// A private file for the time of some work. One thread.
#pragma once

#include <filesystem>
#include <string>

class CTemporaryFile {
public:
    // Makes an empty file that only its owner may open, hidden in `directory` under a name that begins with `name`.
    // Throws CFailure about `subject`.
    CTemporaryFile(const std::string& subject, const std::filesystem::path& directory, const std::string& name);

    // Removes the file unless it was moved.
    ~CTemporaryFile();

    CTemporaryFile(const CTemporaryFile&) = delete;
    CTemporaryFile& operator=(const CTemporaryFile&) = delete;

    const std::string& GetPath() const { return m_strPath; }

    // Gives the file another name in the same file system and leaves it there. False, with errno: it is not moved.
    bool MoveTo(const std::string& path);

private:
    std::string m_strPath;
};

// Parts of the process's state that a test changes and gives back.
#pragma once

#include <stdlib.h>
#include <time.h>
#include <unistd.h>

#include <filesystem>
#include <optional>
#include <string>

// Stands in another directory.
class CScopedCurrentDirectory {
public:
    explicit CScopedCurrentDirectory(const std::filesystem::path& directory)
        : m_previous(std::filesystem::current_path()) {
        std::filesystem::current_path(directory);
    }
    ~CScopedCurrentDirectory() {
        std::error_code ignored;
        std::filesystem::current_path(m_previous, ignored);
    }

    CScopedCurrentDirectory(const CScopedCurrentDirectory&) = delete;
    CScopedCurrentDirectory& operator=(const CScopedCurrentDirectory&) = delete;

private:
    std::filesystem::path m_previous;
};

// Sets an environment variable, or unsets it for a null value.
class CScopedVariable {
public:
    CScopedVariable(const char* name, const char* value) : m_name(name) {
        if (const char* previous = getenv(name)) m_previous = previous;
        Set(value);
    }
    ~CScopedVariable() { Set(m_previous ? m_previous->c_str() : nullptr); }

    CScopedVariable(const CScopedVariable&) = delete;
    CScopedVariable& operator=(const CScopedVariable&) = delete;

private:
    void Set(const char* value) const {
        if (value != nullptr) {
            setenv(m_name.c_str(), value, 1);
        } else {
            unsetenv(m_name.c_str());
        }
        tzset();
    }

    std::string m_name;
    std::optional<std::string> m_previous;
};

// Local time by a POSIX TZ rule.
class CScopedTimeZone {
public:
    explicit CScopedTimeZone(const char* rule) : m_variable("TZ", rule) {}

private:
    CScopedVariable m_variable;
};

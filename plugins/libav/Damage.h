// What the libraries report about a file.
#pragma once

#include <stdexcept>
#include <string>

// Thrown where a file can be read no further; what() is the libraries' own reason.
class CDamage final : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// The libraries' words for a negative result.
std::string LibavReason(int error);

// CDamage, or std::bad_alloc for a lack of memory.
[[noreturn]] void ThrowDamage(int error);

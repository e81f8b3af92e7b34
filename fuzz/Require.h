// What a fuzz target expects; a difference is told on standard error and ends the process, which is how a fuzzer learns
// of it. [any thread]
#pragma once

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <string>
#include <type_traits>

namespace fuzz {

// Quoted, with everything but printable ASCII as \xNN.
inline std::string Shown(const std::string& text) {
    std::string shown = "\"";
    for (const char character : text) {
        char escaped[8];
        const bool plain = character >= ' ' && character <= '~' && character != '\\';
        std::snprintf(escaped, sizeof escaped, plain ? "%c" : "\\x%02X", static_cast<unsigned char>(character));
        shown += escaped;
    }
    return shown + '"';
}

template <typename T>
std::string Shown(const std::basic_string<T>& text) {
    std::string shown;
    for (const T unit : text) shown += (shown.empty() ? "" : " ") + std::to_string(unit);
    return '[' + shown + ']';
}

template <typename T, typename = std::enable_if_t<std::is_arithmetic<T>::value>>
std::string Shown(T value) {
    return std::to_string(value);
}

[[noreturn]] inline void Fail(const std::string& message) {
    std::cerr << message << std::endl;
    std::abort();
}

inline void Require(bool condition, const char* what) {
    if (!condition) Fail(std::string("not so: ") + what);
}

template <typename T>
void RequireEqual(const char* what, const T& actual, const std::common_type_t<T>& expected) {
    if (!(actual == expected)) Fail(std::string(what) + " is " + Shown(actual) + " and not " + Shown(expected));
}

}  // namespace fuzz

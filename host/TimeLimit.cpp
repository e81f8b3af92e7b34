// How long plug-ins may take.
#include "host/TimeLimit.h"

#include <CLI/CLI.hpp>
#include <cmath>

namespace {

constexpr double kShortestLimit = 0.1;
constexpr double kLongestLimit = 3600;

// "nan" is a number to the range.
std::string RefuseWords(const std::string& text) {
    return text.find_first_not_of("0123456789.") == std::string::npos ? "" : "\"" + text + "\" is no number of seconds";
}

}  // namespace

std::chrono::milliseconds STimeLimit::Get() const { return std::chrono::milliseconds(std::lround(m_fSeconds * 1000)); }

void AddTimeLimit(CLI::App& app, STimeLimit& limit, const char* description) {
    app.add_option("--timeout", limit.m_fSeconds, description)
        ->type_name("SECONDS")
        ->check(RefuseWords)
        ->check(CLI::Range(kShortestLimit, kLongestLimit));
}

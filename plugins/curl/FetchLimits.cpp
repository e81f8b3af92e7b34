// What a fetch may take at most.
#include "plugins/curl/FetchLimits.h"

#include <charconv>
#include <cstdlib>
#include <limits>
#include <string>

#include "sdk/Guard.h"

namespace {

constexpr std::int64_t kMostSeconds = 86400;  // a day
constexpr std::int64_t kMostRedirects = 100;

struct SLimit {
    const char* m_szVariable;
    std::int64_t m_nDefault;
    std::int64_t m_nLeast;
    std::int64_t m_nMost;
};

constexpr SLimit kConnectSeconds = {"KELO_CURL_CONNECT_TIMEOUT", 10, 1, kMostSeconds};
constexpr SLimit kStallSeconds = {"KELO_CURL_STALL_TIMEOUT", 30, 1, kMostSeconds};
constexpr SLimit kBytes = {"KELO_CURL_SIZE_LIMIT", std::int64_t{1} << 32, 1, std::numeric_limits<std::int64_t>::max()};
constexpr SLimit kRedirects = {"KELO_CURL_REDIRECTS", 5, 0, kMostRedirects};

std::int64_t Read(const SLimit& limit) {
    const char* const text = std::getenv(limit.m_szVariable);
    if (text == nullptr) return limit.m_nDefault;
    const std::string value = text;
    const char* const end = value.data() + value.size();
    std::int64_t number = 0;
    const auto [stop, error] = std::from_chars(value.data(), end, number);
    if (error != std::errc() || stop != end || number < limit.m_nLeast || number > limit.m_nMost) {
        Refuse(limit.m_szVariable + (" is \"" + value) + "\" and not a whole number from " +
               std::to_string(limit.m_nLeast) + " to " + std::to_string(limit.m_nMost));
    }
    return number;
}

}  // namespace

SFetchLimits ReadFetchLimits() { return {Read(kConnectSeconds), Read(kStallSeconds), Read(kBytes), Read(kRedirects)}; }

// Wildcard masks against their rules: one byte whose lowest bit asks for case, the mask, the name.
#include <ctype.h>

#include <string>
#include <vector>

#include "fuzz/FuzzTarget.h"
#include "fuzz/FuzzedInput.h"
#include "fuzz/Require.h"
#include "portable/MatchMask.h"

namespace {

constexpr std::size_t kMostMask = 256;
constexpr std::size_t kMostName = 1024;

int Folded(char character, bool caseSensitive) {
    const auto value = static_cast<signed char>(character);
    return caseSensitive ? value : toupper(value);
}

// matches[m][n] tells whether the mask from m on matches a prefix of the name from n on.
bool ModelMatch(const std::string& mask, const std::string& name, bool caseSensitive) {
    if (mask.size() > name.size()) return false;
    std::vector<std::vector<bool>> matches(mask.size() + 1, std::vector<bool>(name.size() + 1));
    matches[mask.size()].assign(name.size() + 1, true);
    for (std::size_t m = mask.size(); m-- > 0;) {
        for (std::size_t n = name.size(); n-- > 0;) {
            const bool one = matches[m + 1][n + 1];
            if (mask[m] == '*') {
                matches[m][n] = one || matches[m][n + 1];
            } else {
                const bool equal = Folded(mask[m], caseSensitive) == Folded(name[n], caseSensitive);
                matches[m][n] = one && (mask[m] == '?' || equal);
            }
        }
    }
    return matches[0][0];
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    CFuzzedInput input(data, size);
    const bool caseSensitive = (input.Byte() & 1) != 0;
    const std::string mask = input.Text().substr(0, kMostMask);
    const std::string name = input.Text().substr(0, kMostName);
    const int answer = MatchMask(ExactCopy(mask).data(), ExactCopy(name).data(), caseSensitive ? 1 : 0);
    fuzz::RequireEqual("the match", answer, ModelMatch(mask, name, caseSensitive) ? 1 : 0);
    return 0;
}

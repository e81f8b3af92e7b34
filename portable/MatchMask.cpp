// Wildcard masks of directory searches: leftmost match with one point to go back to.
#include "portable/MatchMask.h"

#include <ctype.h>
#include <string.h>

namespace {

bool MatchesCharacter(char mask, char character, bool caseSensitive) {
    if (mask == '?' || mask == character) return true;
    return !caseSensitive && toupper(static_cast<signed char>(mask)) == toupper(static_cast<signed char>(character));
}

// Only the last '*' needs a second try: a piece of the mask that is found at its leftmost place leaves the most room
// for what follows. A mask that is used up matches, whatever is left of the name; callers rely on it.
bool MatchesPrefix(const char* mask, const char* name, bool caseSensitive) {
    const char* maskAfterStar = nullptr;
    const char* nameAfterStar = nullptr;
    while (*mask != '\0') {
        if (*name == '\0') return false;
        if (*mask == '*') {
            maskAfterStar = ++mask;
            nameAfterStar = ++name;
        } else if (MatchesCharacter(*mask, *name, caseSensitive)) {
            ++mask;
            ++name;
        } else if (maskAfterStar != nullptr) {
            mask = maskAfterStar;
            name = ++nameAfterStar;
        } else {
            return false;
        }
    }
    return true;
}

}  // namespace

int MatchMask(const char* mask, const char* name, int bCaseSensitive) {
    if (mask == nullptr || name == nullptr) return 0;
    // "abc*" does not match "abc": the length test is part of the contract.
    if (strlen(mask) > strlen(name)) return 0;
    return MatchesPrefix(mask, name, bCaseSensitive != 0) ? 1 : 0;
}

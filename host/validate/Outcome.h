// What a check comes out with.
#pragma once

#include <stdexcept>
#include <string>

enum class EVerdict : unsigned int {
    Passed,
    Failed,
    Skipped,
    Crashed,
    TimedOut,
};

struct SOutcome {
    EVerdict m_eVerdict = EVerdict::Passed;
    std::string m_strSeen;  // what was seen, or why the check was skipped; empty for one that passed
    double m_fMilliseconds = 0;
};

// Everything but passed and skipped.
inline bool IsFinding(EVerdict verdict) { return verdict != EVerdict::Passed && verdict != EVerdict::Skipped; }

// Ends a check that has seen what should not be.
class CFinding : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Ends a check that has nothing to look at.
class CSkipped : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Ends the check with `seen` unless `holds`.
inline void Expect(bool holds, const std::string& seen) {
    if (!holds) throw CFinding(seen);
}

// One check of the validator.
#pragma once

#include <vector>

class CTrial;

// Which plug-ins a check is about, by what they provide.
enum EConcern : unsigned int {
    CONCERN_ANY = 0,
    CONCERN_COLLECTION = 1,
    CONCERN_DECODER = 2,
    CONCERN_ENCODER = 4,
    CONCERN_CONVERTOR = 8,
    CONCERN_URL_HANDLER = 16,
};

struct SCheck {
    const char* m_szName;      // "group/what-holds"
    const char* m_szSentence;  // what holds for a plug-in that keeps the contract
    unsigned int m_nConcerns;  // EConcern bits; one of them is enough
    const char* m_szNeeds;     // the check without which this one has nothing to look at; empty for none

    // Runs in a process of its own. Returns when all is well, and throws CFinding or CSkipped.
    void (*m_pRun)(CTrial& trial);
};

using CCheckList = std::vector<SCheck>;

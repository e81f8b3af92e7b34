// What the process of a survey has noted so far.
#pragma once

#include <atomic>
#include <cstddef>
#include <string>
#include <vector>

#include "host/validate/SharedObject.h"

// Neither a full disk nor a crash loses a note. Made before the fork, written by the child, read when it has ended.
class CSurveyNotes {
public:
    // The child's part. A note that finds no room is left out.
    void Add(const std::string& note);

    // In their order.
    std::vector<std::string> GetAll() const;

private:
    struct SPages {
        std::atomic<std::size_t> m_nUsed{0};
        char m_szNotes[1 << 20];  // each with its null; of these pages only those in use take memory
    };

    CSharedObject<SPages> m_pages;
};

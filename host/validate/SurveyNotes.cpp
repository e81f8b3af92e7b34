// What the process of a survey has noted so far.
#include "host/validate/SurveyNotes.h"

#include <algorithm>
#include <cstring>

void CSurveyNotes::Add(const std::string& note) {
    const std::size_t used = m_pages->m_nUsed;
    const std::size_t size = std::strlen(note.c_str()) + 1;
    if (size > sizeof(m_pages->m_szNotes) - used) return;
    std::memcpy(m_pages->m_szNotes + used, note.c_str(), size);
    m_pages->m_nUsed = used + size;
}

std::vector<std::string> CSurveyNotes::GetAll() const {
    std::vector<std::string> notes;
    // A plug-in that writes anywhere may have written here.
    const std::size_t used = std::min(m_pages->m_nUsed.load(), sizeof(m_pages->m_szNotes));
    for (std::size_t read = 0; read < used; read += notes.back().size() + 1) {
        const char* const note = m_pages->m_szNotes + read;
        notes.emplace_back(note, strnlen(note, used - read));
    }
    return notes;
}

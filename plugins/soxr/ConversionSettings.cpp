// What a person chooses about conversions.
#include "plugins/soxr/ConversionSettings.h"

#include <utility>

#include "sdk/Guard.h"

CChoice::CChoice(const char* name, std::vector<const char*> words, int chosen)
    : m_pszName(name), m_vWords(std::move(words)), m_nChosen(chosen) {
    for (const char* const word : m_vWords) m_strValues += (m_strValues.empty() ? "" : "|") + std::string(word);
}

void CChoice::ChooseWord(const std::string& word) {
    for (std::size_t i = 0; i < m_vWords.size(); ++i) {
        if (word == m_vWords[i]) return Choose(static_cast<int>(i));
    }
    Refuse("no " + std::string(m_pszName) + " \"" + word + "\"; it takes " + m_strValues);
}

const CChoice* CConversionSettings::At(int n) const { return n >= 0 && n < kCount ? &m_choices[n] : nullptr; }

const CChoice* CConversionSettings::Find(const char* name) const {
    for (const CChoice& choice : m_choices) {
        if (name != nullptr && choice.Name() == std::string(name)) return &choice;
    }
    return nullptr;
}

void CConversionSettings::Set(const char* name, const char* value) {
    if (name == nullptr || value == nullptr) throw CBadArgument();
    for (CChoice& choice : m_choices) {
        if (choice.Name() == std::string(name)) return choice.ChooseWord(value);
    }
    Refuse("no setting \"" + std::string(name) + "\"; there is quality, dither");
}

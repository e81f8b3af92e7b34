// What a person chooses about conversions, for as long as the plug-in is loaded.
#pragma once

#include <atomic>
#include <string>
#include <vector>

enum class EResamplingQuality { Quick, High, VeryHigh };

// The noise that is added before samples are rounded to fewer bits.
enum class EDither { None, Rectangular, Triangular, Shaped };

// A setting whose value is one of a few words. [any thread]
class CChoice {
public:
    // `words` stand in the order of an enumeration whose values begin at 0; `chosen` is the one that holds at first.
    CChoice(const char* name, std::vector<const char*> words, int chosen);

    const char* Name() const { return m_pszName; }

    // The words with '|' between them.
    const char* Values() const { return m_strValues.c_str(); }

    const char* Word() const { return m_vWords[static_cast<std::size_t>(Index())]; }

    int Index() const { return m_nChosen; }
    void Choose(int index) { m_nChosen = index; }

    // Throws for a word that there is not.
    void ChooseWord(const std::string& word);

private:
    const char* m_pszName;
    std::vector<const char*> m_vWords;
    std::string m_strValues;
    std::atomic<int> m_nChosen;
};

// What conversions made from here on use. [any thread]
class CConversionSettings {
public:
    EResamplingQuality Quality() const { return static_cast<EResamplingQuality>(m_choices[0].Index()); }
    void SetQuality(EResamplingQuality quality) { m_choices[0].Choose(static_cast<int>(quality)); }

    EDither Dither() const { return static_cast<EDither>(m_choices[1].Index()); }

    static constexpr int kCount = 2;

    // Null when there is no choice `n`.
    const CChoice* At(int n) const;

    // Null for an unknown or null name.
    const CChoice* Find(const char* name) const;

    // Throws for a null argument and for an unknown name or value; nothing changes then.
    void Set(const char* name, const char* value);

private:
    CChoice m_choices[kCount] = {
        {"quality", {"quick", "high", "very-high"}, static_cast<int>(EResamplingQuality::High)},
        {"dither", {"none", "rectangular", "triangular", "shaped"}, static_cast<int>(EDither::Triangular)}};
};

// Named settings with their values.
#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "sdk/Guard.h"

// One setting and its value.
struct SSetting {
    std::string m_strName;
    std::string m_strValues;  // "quick|high|very-high", or words such as "32 to 320 kbit/s"
    std::string m_strValue;   // what holds
};

// One owner at a time; whoever shares it between threads locks it.
class CSettings {
public:
    CSettings() = default;

    // The settings with their defaults, in the order of listing.
    explicit CSettings(std::vector<SSetting> settings) : m_vSettings(std::move(settings)) {}

    // Settings that At knows.
    int Count() const { return static_cast<int>(m_vSettings.size()); }

    // Null when there is no setting `n`.
    const SSetting* At(int n) const {
        return n >= 0 && n < Count() ? &m_vSettings[static_cast<std::size_t>(n)] : nullptr;
    }

    // Null for an unknown or null name.
    const SSetting* Find(const char* name) const {
        for (const SSetting& setting : m_vSettings) {
            if (name != nullptr && setting.m_strName == name) return &setting;
        }
        return nullptr;
    }

    // The value of a setting that the list has.
    const std::string& operator[](const char* name) const { return Require(name).m_strValue; }

    // Throws for an unknown name, and for a value that a list of values such as "quick|high" does not hold.
    void Set(const char* name, const std::string& value) {
        const SSetting& setting = Require(name);
        if (!Takes(setting, value)) {
            Refuse("no " + setting.m_strName + " \"" + value + "\"; it takes " + setting.m_strValues);
        }
        m_vSettings[static_cast<std::size_t>(&setting - m_vSettings.data())].m_strValue = value;
    }

private:
    static bool Takes(const SSetting& setting, const std::string& value) {
        const bool isList = setting.m_strValues.find('|') != std::string::npos;
        return !isList || (value.find('|') == std::string::npos &&
                           ("|" + setting.m_strValues + "|").find("|" + value + "|") != std::string::npos);
    }

    const SSetting& Require(const char* name) const {
        if (name == nullptr) throw CBadArgument();
        if (const SSetting* const found = Find(name)) return *found;
        std::string names;
        for (const SSetting& setting : m_vSettings) names += (names.empty() ? "" : ", ") + setting.m_strName;
        Refuse("no setting \"" + std::string(name) + "\"; " + (names.empty() ? "there are none" : "there is " + names));
    }

    std::vector<SSetting> m_vSettings;
};

// What a component is and can do.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "host/PluginSession.h"

struct SSettingReport {
    std::string m_strName;
    std::string m_strValues;  // what it takes; empty when it does not tell
    std::string m_strValue;   // what holds; likewise
};

// One file format of an encoder.
struct STargetReport {
    std::string m_strExtension;
    std::vector<SSettingReport> m_settings;
    std::vector<std::string> m_tags;
};

struct SComponentReport {
    std::string m_strType;
    std::string m_strName;
    std::string m_strVendor;  // empty when it does not tell
    std::string m_strFile;    // of the plug-in, without its directory; empty when it is unknown
    int m_nIndex = 0;         // in the plug-in
    std::vector<std::string> m_extensions;
    std::vector<std::string> m_capabilities;  // words such as "configurable"
    std::vector<std::string> m_protocols;     // of a URL handler
    std::vector<SSettingReport> m_settings;   // of the component itself
    std::vector<STargetReport> m_targets;     // of an encoder, by extension
};

// Asks the component. Nothing is written. Throws CFailure for one that counts what cannot be. [host set-up]
SComponentReport ReportOn(const CPluginSession& session, IAudioComponent& component);

// The plug-in file and index of a component.
struct SComponentPlace {
    std::string m_strFile;
    int m_nIndex = 0;
};
SComponentPlace PlaceOf(const CPluginSession& session, IAudioComponent& component);

nlohmann::ordered_json ToJson(const SComponentReport& report);

// Of what ToJson made.
SComponentReport ComponentReportFromJson(const nlohmann::ordered_json& json);

// What a component is and can do.
#include "host/ComponentReport.h"

#include <nlohmann/json.hpp>
#include <utility>

#include "com/ComponentInfo.h"
#include "com/Configurable.h"
#include "com/FeatureSupport.h"
#include "com/InterfaceIds.h"
#include "com/NamedSettings.h"
#include "host/Failure.h"
#include "host/Tags.h"
#include "stream/AudioTargetOpener.h"
#include "stream/Convertor.h"
#include "stream/FileOpener.h"
#include "stream/URLSourceHandler.h"

namespace {

// A target is opened to be asked; nothing is written before an encoder starts.
constexpr const char* kUnwrittenPath = "/nonexistent/keloaudio.";

// As programs compare it.
std::string TypeKey(EAudioComponentType type) {
    switch (type) {
        case ACT_COLLECTION:
            return "collection";
        case ACT_DECODER:
            return "decoder";
        case ACT_ENCODER:
            return "encoder";
        case ACT_CONVERTOR:
            return "convertor";
        case ACT_URL_HANDLER:
            return "url-handler";
    }
    return "type " + std::to_string(static_cast<unsigned int>(type));
}

std::string TextOrEmpty(const char* text) { return text != nullptr ? text : ""; }

std::vector<SSettingReport> SettingsOf(const std::string& owner, IUnknown* object) {
    std::vector<SSettingReport> reports;
    const auto settings = CComPtr<INamedSettings>::Query(object, IID_INamedSettings);
    const int count = settings ? settings->GetSettingCount() : 0;
    RequireCount(owner, count, "settings");
    for (int i = 0; i < count; ++i) {
        const std::string name = TextOrEmpty(settings->GetSettingName(i));
        const std::string values = TextOrEmpty(settings->GetSettingValues(i));
        if (!name.empty()) reports.push_back({name, values, TextOrEmpty(settings->GetSetting(name.c_str()))});
    }
    return reports;
}

std::vector<std::string> TagsOf(IAudioTarget* target) {
    std::vector<std::string> names;
    const auto tags = CComPtr<ITargetTags>::Query(target, IID_ITargetTags);
    for (std::size_t i = 0; tags && i < kTagNames.size(); ++i) {
        if (tags->HasTag(static_cast<ETag>(i))) names.emplace_back(kTagNames[i]);
    }
    return names;
}

std::vector<STargetReport> TargetsOf(IAudioComponent& component, const std::vector<std::string>& extensions) {
    std::vector<STargetReport> reports;
    const auto opener = CComPtr<IAudioTargetOpener>::Query(&component, IID_IAudioTargetOpener);
    if (!opener) return reports;
    for (const std::string& extension : extensions) {
        CComPtr<IAudioTarget> target;
        const std::string path = kUnwrittenPath + extension;
        if (!opener->OpenTarget(path.c_str(), extension.c_str(), target.Out(), nullptr) || !target) continue;
        reports.push_back({extension, SettingsOf(NameOf(component), target.Get()), TagsOf(target.Get())});
    }
    return reports;
}

template <typename TFace>
CComPtr<TFace> Face(IAudioComponent& component, unsigned long identity) {
    return CComPtr<TFace>::Query(&component, identity);
}

std::vector<std::string> CapabilitiesOf(IAudioComponent& component) {
    std::vector<std::string> words;
    const auto opener = Face<IAudioFileOpener>(component, IID_IAudioFileOpener);
    if (opener && (opener->GetOpenerState() & kOpenerEnabled) == 0) words.emplace_back("disabled");
    if (opener && (opener->GetAuxFlags() & AUX_CONVERT) != 0) words.emplace_back("converting-source");
    if (Face<IAudioTargetOpener>(component, IID_IAudioTargetOpener)) words.emplace_back("target");
    if (Face<IConvertorFactory>(component, IID_IConvertorFactory)) words.emplace_back("convertor-factory");
    const auto features = Face<IFeatureSupport>(component, IID_IFeatureSupport);
    if (features && features->IsSupported(AF_ADVANCED_FORMATS)) words.emplace_back("advanced-formats");
    if (Face<IConfigurable>(component, IID_IConfigurable)) words.emplace_back("configurable");
    if (Face<IComponentAbout>(component, IID_IComponentAbout)) words.emplace_back("about");
    return words;
}

std::vector<std::string> ProtocolsOf(IAudioComponent& component) {
    std::vector<std::string> protocols;
    const auto handler = Face<IURLSourceHandler>(component, IID_IURLSourceHandler);
    if (handler && (handler->GetProtocols() & URL_HTTP) != 0) protocols.emplace_back("http");
    if (handler && (handler->GetProtocols() & URL_FTP) != 0) protocols.emplace_back("ftp");
    return protocols;
}

std::string VendorOf(IAudioComponent& component) {
    const auto about = Face<IComponentAbout>(component, IID_IComponentAbout);
    return about ? TextOrEmpty(about->GetVendor()) : "";
}

nlohmann::ordered_json SettingsJson(const std::vector<SSettingReport>& settings) {
    nlohmann::ordered_json json = nlohmann::ordered_json::array();
    for (const SSettingReport& setting : settings) {
        json.push_back({{"name", setting.m_strName}, {"takes", setting.m_strValues}, {"value", setting.m_strValue}});
    }
    return json;
}

std::vector<SSettingReport> SettingsFromJson(const nlohmann::ordered_json& json) {
    std::vector<SSettingReport> settings;
    for (const nlohmann::ordered_json& setting : json) {
        settings.push_back({setting.at("name"), setting.at("takes"), setting.at("value")});
    }
    return settings;
}

}  // namespace

SComponentPlace PlaceOf(const CPluginSession& session, IAudioComponent& component) {
    const auto places = CComPtr<IAudioPluginMgrInternal>::Query(&session.GetManager(), IID_IAudioPluginMgrInternal);
    COMPONENT_INFO info;
    if (!places || !places->GetComponentInfo(&component, &info)) return {};
    return {info.m_strLibraryFileName.GetText(), info.m_nIndex};
}

SComponentReport ReportOn(const CPluginSession& session, IAudioComponent& component) {
    SComponentReport report;
    report.m_strType = TypeKey(component.GetType());
    report.m_strName = NameOf(component);
    report.m_strVendor = VendorOf(component);
    SComponentPlace place = PlaceOf(session, component);
    report.m_strFile = std::move(place.m_strFile);
    report.m_nIndex = place.m_nIndex;
    report.m_extensions = ExtensionsOf(component);
    report.m_capabilities = CapabilitiesOf(component);
    report.m_protocols = ProtocolsOf(component);
    report.m_settings = SettingsOf(report.m_strName, &component);
    report.m_targets = TargetsOf(component, report.m_extensions);
    return report;
}

nlohmann::ordered_json ToJson(const SComponentReport& report) {
    nlohmann::ordered_json targets = nlohmann::ordered_json::array();
    for (const STargetReport& target : report.m_targets) {
        targets.push_back({{"extension", target.m_strExtension},
                           {"settings", SettingsJson(target.m_settings)},
                           {"tags", target.m_tags}});
    }
    return {{"type", report.m_strType},
            {"name", report.m_strName},
            {"vendor", report.m_strVendor},
            {"file", report.m_strFile},
            {"index", report.m_nIndex},
            {"extensions", report.m_extensions},
            {"capabilities", report.m_capabilities},
            {"protocols", report.m_protocols},
            {"settings", SettingsJson(report.m_settings)},
            {"targets", std::move(targets)}};
}

SComponentReport ComponentReportFromJson(const nlohmann::ordered_json& json) {
    SComponentReport report;
    report.m_strType = json.at("type");
    report.m_strName = json.at("name");
    report.m_strVendor = json.at("vendor");
    report.m_strFile = json.at("file");
    report.m_nIndex = json.at("index");
    report.m_extensions = json.at("extensions").get<std::vector<std::string>>();
    report.m_capabilities = json.at("capabilities").get<std::vector<std::string>>();
    report.m_protocols = json.at("protocols").get<std::vector<std::string>>();
    report.m_settings = SettingsFromJson(json.at("settings"));
    for (const nlohmann::ordered_json& target : json.at("targets")) {
        report.m_targets.push_back({target.at("extension"), SettingsFromJson(target.at("settings")),
                                    target.at("tags").get<std::vector<std::string>>()});
    }
    return report;
}

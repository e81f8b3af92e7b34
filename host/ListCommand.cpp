// keloaudio list.
#include "host/ListCommand.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>
#include <utility>
#include <vector>

#include "host/Failure.h"
#include "host/FailureText.h"
#include "host/Json.h"
#include "host/PluginListing.h"
#include "host/Printable.h"
#include "host/StandardOutput.h"
#include "host/TimeLimit.h"

namespace {

constexpr std::size_t kLineWidth = 100;
constexpr const char* kIndent = "    ";
constexpr std::size_t kLabelWidth = 14;

struct SListOptions {
    SPluginOptions m_plugins;
    bool m_bJson = false;
    STimeLimit m_limit;
};

std::string Padded(const std::string& text, std::size_t width) {
    return text + std::string(width - std::min(width, text.size()), ' ');
}

// The texts are the plug-ins' own.
void PrintLine(const std::string& line) { std::puts(Printable(line).c_str()); }

// The label, and the words behind it in as many lines as they need.
void PrintWords(const std::string& label, const std::vector<std::string>& words) {
    if (words.empty()) return;
    std::string line = kIndent + Padded(label, kLabelWidth);
    const std::size_t begin = line.size();
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string word = words[i] + (i + 1 < words.size() ? ", " : "");
        if (line.size() > begin && line.size() + words[i].size() + 1 > kLineWidth) {
            PrintLine(line.substr(0, line.size() - 1));
            line.assign(begin, ' ');
        }
        line += word;
    }
    PrintLine(line);
}

std::vector<std::string> SettingTexts(const std::vector<SSettingReport>& settings) {
    std::vector<std::string> texts;
    for (const SSettingReport& setting : settings) {
        texts.push_back(setting.m_strName + (setting.m_strValue.empty() ? "" : " = " + setting.m_strValue) +
                        (setting.m_strValues.empty() ? "" : " (" + setting.m_strValues + ")"));
    }
    return texts;
}

// Extensions for which the words are the same share their lines.
template <typename TWords>
void PrintByExtension(const std::string& label, const std::vector<STargetReport>& targets, const TWords& wordsOf) {
    std::vector<std::pair<std::vector<std::string>, std::vector<std::string>>> groups;
    for (const STargetReport& target : targets) {
        const std::vector<std::string> words = wordsOf(target);
        if (words.empty()) continue;
        const auto known =
            std::find_if(groups.begin(), groups.end(), [&](const auto& group) { return group.first == words; });
        auto& group = known != groups.end() ? *known : groups.emplace_back(words, std::vector<std::string>{});
        group.second.push_back(target.m_strExtension);
    }
    for (auto& [words, extensions] : groups) {
        words.front() = "of " + JoinNames(extensions) + ": " + words.front();
        PrintWords(label, words);
    }
}

void PrintTargets(const std::vector<STargetReport>& targets) {
    PrintByExtension("settings", targets, [](const STargetReport& target) { return SettingTexts(target.m_settings); });
    PrintByExtension("tags", targets, [](const STargetReport& target) { return target.m_tags; });
}

std::string PlaceText(const SComponentReport& report) {
    return report.m_strFile.empty() ? "unknown" : report.m_strFile + " " + std::to_string(report.m_nIndex);
}

void PrintReports(const std::vector<SComponentReport>& reports) {
    std::array<std::size_t, 3> widths{};
    const auto columns = [](const SComponentReport& report) {
        return std::array<std::string, 3>{report.m_strType, report.m_strName, PlaceText(report)};
    };
    for (const SComponentReport& report : reports) {
        for (std::size_t i = 0; i < widths.size(); ++i) widths[i] = std::max(widths[i], columns(report)[i].size());
    }
    for (const SComponentReport& report : reports) {
        std::string line;
        for (std::size_t i = 0; i < widths.size(); ++i) line += Padded(columns(report)[i], widths[i] + 2);
        PrintLine(line + (report.m_strVendor.empty() ? "-" : report.m_strVendor));
        PrintWords("extensions", report.m_extensions);
        PrintWords("protocols", report.m_protocols);
        PrintWords("can", report.m_capabilities);
        PrintWords("settings", SettingTexts(report.m_settings));
        PrintTargets(report.m_targets);
    }
}

void PrintListingJson(const SPluginListing& listing) {
    nlohmann::ordered_json components = nlohmann::ordered_json::array();
    for (const SComponentReport& report : listing.m_components) components.push_back(ToJson(report));
    nlohmann::ordered_json failures = nlohmann::ordered_json::array();
    for (const SPluginFailure& failure : listing.m_failures) {
        failures.push_back({{"file", failure.m_strFile}, {"reason", failure.m_strReason}});
    }
    PrintJson({{"directory", listing.m_strDirectory},
               {"components", std::move(components)},
               {"failures", std::move(failures)}});
}

void ReportFailures(const SPluginListing& listing) {
    for (const SPluginFailure& failure : listing.m_failures) {
        const std::string file = failure.m_strFile.empty() ? "" : "/" + failure.m_strFile;
        ReportFailure((listing.m_strDirectory + file).c_str(), failure.m_strReason.c_str());
    }
}

int RunList(const SListOptions& options) {
    const SPluginListing listing = ListPlugins(options.m_plugins, options.m_limit.Get());
    if (options.m_bJson) {
        PrintListingJson(listing);
    } else {
        PrintReports(listing.m_components);
    }
    FlushStandardOutput();
    ReportFailures(listing);
    return listing.m_failures.empty() ? 0 : kExitFailed;
}

std::function<int()> DefineList(CLI::App& app) {
    const auto options = std::make_shared<SListOptions>();
    AddPluginOptions(app, options->m_plugins);
    app.add_flag("--json", options->m_bJson, "Print JSON");
    AddTimeLimit(app, options->m_limit, "Seconds that the plug-ins may take; 10 if left out");
    return [options] { return RunList(*options); };
}

}  // namespace

const SCommand kListCommand = {"list", "List the components of the plug-ins",
                               "Examples:\n"
                               "  keloaudio list\n"
                               "  keloaudio list --json | jq '.components[] | select(.type == \"decoder\").extensions'",
                               DefineList};

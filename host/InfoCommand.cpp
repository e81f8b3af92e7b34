// keloaudio info.
#include "host/InfoCommand.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>
#include <vector>

#include "host/ComponentReport.h"
#include "host/CrashNote.h"
#include "host/Encoders.h"
#include "host/FailureText.h"
#include "host/FormatText.h"
#include "host/Json.h"
#include "host/PluginCall.h"
#include "host/Printable.h"
#include "host/SourceStream.h"
#include "host/StopSignal.h"

namespace {

struct SInfoOptions {
    SPluginOptions m_plugins;
    std::vector<std::string> m_vInputs;
    bool m_bJson = false;
};

struct SSourceReport {
    std::string m_strInput;
    std::string m_strDecoder;  // its component's name; empty when it cannot be told
    std::string m_strPluginFile;
    SWavFormat m_format{};
    SHeldWavFormat m_realFormat{};
    std::uint64_t m_nFrames = 0;
    CTagTexts m_tags;
    std::vector<std::uint64_t> m_vIndexPoints;
};

// The decoder of the plug-in that lists the extension, else the plug-in's first.
std::string DecoderName(const CPluginSession& session, const std::string& pluginFile, const std::string& extension) {
    std::string first;
    std::vector<std::string> ignored;
    for (const CComPtr<IAudioComponent>& component : session.GetComponents()) {
        if (component->GetType() != ACT_DECODER || PlaceOf(session, *component).m_strFile != pluginFile) continue;
        if (HasExtension(ExtensionsOf(*component, ignored), extension)) return NameOf(*component);
        if (first.empty()) first = NameOf(*component);
    }
    return first;
}

SSourceReport Examine(const CPluginSession& session, const CSourceName& name) {
    const CSourceStream source(session, name);
    SSourceReport report;
    report.m_strInput = name.GetGiven();
    report.m_strPluginFile = source.GetPluginFile();
    report.m_strDecoder = DecoderName(session, report.m_strPluginFile, ExtensionOf(source.GetLocalPath()));
    report.m_format = source.GetPlainFormat();
    report.m_realFormat = source.GetRealFormat();
    report.m_nFrames = source.GetAnnouncedFrames();
    report.m_tags = source.GetTags();
    report.m_vIndexPoints = source.GetIndexPoints();
    return report;
}

void PrintField(const std::string& label, const std::string& text) {
    if (!text.empty()) std::puts(("    " + label + std::string(10 - label.size(), ' ') + Printable(text)).c_str());
}

std::string IndexText(const SSourceReport& report) {
    std::vector<std::string> points;
    for (const std::uint64_t point : report.m_vIndexPoints) {
        points.push_back(SecondsText(point, report.m_format.nSampleRate) + " s");
    }
    return points.empty() ? "" : JoinNames(points);
}

void Print(const SSourceReport& report) {
    std::puts(Printable(report.m_strInput).c_str());
    PrintField("format", FormatText(report.m_realFormat));
    PrintField("length", report.m_nFrames == 0 ? "unknown" : LengthText(report.m_nFrames, report.m_format.nSampleRate));
    for (std::size_t i = 0; i < kTagNames.size(); ++i) PrintField(kTagNames[i], report.m_tags[i]);
    PrintField("index", IndexText(report));
    PrintField("decoder", report.m_strDecoder + " (" + report.m_strPluginFile + ")");
}

nlohmann::ordered_json ToJson(const SSourceReport& report) {
    nlohmann::ordered_json json = {{"input", report.m_strInput},
                                   {"format", FormatJson({report.m_format, kIntegerSamples})},
                                   {"realFormat", FormatJson(report.m_realFormat)}};
    json["frames"] = report.m_nFrames;
    json["seconds"] = SecondsOf(report.m_nFrames, report.m_format.nSampleRate);
    json["tags"] = nlohmann::ordered_json::object();
    for (std::size_t i = 0; i < kTagNames.size(); ++i) {
        if (!report.m_tags[i].empty()) json["tags"][kTagNames[i]] = report.m_tags[i];
    }
    json["indexPoints"] = report.m_vIndexPoints;
    json["decoder"] = report.m_strDecoder;
    json["plugin"] = report.m_strPluginFile;
    return json;
}

int RunInfo(const SInfoOptions& options) {
    NoteCrashes(ChosenPluginDirectory(options.m_plugins));
    const CPluginSession session(options.m_plugins);
    nlohmann::ordered_json sources = nlohmann::ordered_json::array();
    int exitStatus = 0;
    for (const std::string& input : options.m_vInputs) {
        if (GetStopSignal() != 0) break;
        try {
            const CSourceName name(input);
            const SSourceReport report = CallPlugins(input, [&] { return Examine(session, name); });
            if (options.m_bJson) {
                sources.push_back(ToJson(report));
            } else {
                Print(report);
            }
        } catch (const CFailure& failure) {
            ReportFailure(nullptr, failure.what());
            if (options.m_bJson) sources.push_back({{"input", input}, {"failure", failure.what()}});
            exitStatus = kExitFailed;
        }
    }
    if (options.m_bJson) PrintJson({{"sources", std::move(sources)}});
    return exitStatus;
}

std::function<int()> DefineInfo(CLI::App& app) {
    const auto options = std::make_shared<SInfoOptions>();
    app.add_option("INPUT", options->m_vInputs, "Files, or http:// or ftp:// addresses")
        ->required()
        ->check(RefuseEmpty);
    AddPluginOptions(app, options->m_plugins);
    app.add_flag("--json", options->m_bJson, "Print JSON");
    return [options] { return RunInfo(*options); };
}

}  // namespace

const SCommand kInfoCommand = {"info", "Tell what sources hold",
                               "Examples:\n"
                               "  keloaudio info song.opus\n"
                               "  keloaudio info *.flac --json | jq '.sources[].tags.title'",
                               DefineInfo};

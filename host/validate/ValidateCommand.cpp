// keloaudio validate.
#include "host/validate/ValidateCommand.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <thread>

#include "host/Failure.h"
#include "host/Json.h"
#include "host/PluginOptions.h"
#include "host/PluginTrust.h"
#include "host/StandardOutput.h"
#include "host/TimeLimit.h"
#include "host/validate/Catalogue.h"
#include "host/validate/PluginRun.h"
#include "host/validate/Report.h"

namespace {

namespace fs = std::filesystem;

constexpr const char* kValidateExamples =
    "Examples:\n"
    "  keloaudio validate ./mydecoder.so --sample song.xyz\n"
    "  keloaudio validate --only source,seek --verbose ./mydecoder.so\n"
    "  keloaudio validate --list-checks";

constexpr unsigned int kMostJobs = 256;

struct SValidateOptions {
    std::vector<std::string> m_vPlugins;
    std::vector<std::string> m_vSamples;
    CPatterns m_only;
    CPatterns m_skip;
    std::string m_strURL;
    STimeLimit m_limit;
    unsigned int m_nJobs = std::max(1U, std::thread::hardware_concurrency());
    bool m_bListChecks = false;
    bool m_bJson = false;
    bool m_bVerbose = false;
};

void RequireFile(const std::string& path) {
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (error) throw CWrongUsage(path, error.message());
    if (fs::is_directory(status)) throw CWrongUsage(path, "a directory; validate takes the plug-ins themselves");
}

int ListChecks(const SValidateOptions& options, const CCheckList& checks) {
    if (options.m_bJson) {
        PrintJson(ToJson(checks));
    } else {
        std::fputs(CatalogueText(checks).c_str(), stdout);
    }
    return 0;
}

// The plug-ins installed or built with the program; none where others could replace them.
std::string OtherPlugins() {
    const std::string directory = DefaultPluginDirectory();
    try {
        RequireTrustedPlugins(directory, true);
    } catch (const CFailure&) {
        return {};
    }
    return directory;
}

SRunOptions RunOptionsOf(const SValidateOptions& options) {
    SRunOptions run;
    run.m_checks = ChosenChecks(options.m_only, options.m_skip);
    for (const std::string& sample : options.m_vSamples) run.m_vSamples.push_back(fs::absolute(sample).string());
    run.m_strURL = options.m_strURL;
    run.m_strOtherPlugins = OtherPlugins();
    run.m_limit = options.m_limit.Get();
    run.m_nJobs = options.m_nJobs;
    run.m_bShowsErrors = options.m_bVerbose;
    return run;
}

int ValidateAll(const SValidateOptions& options) {
    const SRunOptions run = RunOptionsOf(options);
    nlohmann::ordered_json plugins = nlohmann::ordered_json::array();
    int findings = 0;
    for (const std::string& plugin : options.m_vPlugins) {
        const SPluginReport report = CPluginRun(run, plugin).Run();
        findings += report.Findings();
        if (options.m_bJson) {
            plugins.push_back(ToJson(report));
        } else {
            std::fputs(ReportText(report, options.m_bVerbose).c_str(), stdout);
            FlushStandardOutput();
        }
    }
    if (options.m_bJson) PrintJson({{"plugins", plugins}});
    return findings == 0 ? 0 : kExitFailed;
}

int RunValidate(const SValidateOptions& options) {
    RequireKnown(options.m_only);
    RequireKnown(options.m_skip);
    if (options.m_bListChecks) return ListChecks(options, ChosenChecks(options.m_only, options.m_skip));
    if (options.m_vPlugins.empty()) throw CWrongUsage("validate", "no plug-in is named");
    for (const std::string& plugin : options.m_vPlugins) RequireFile(plugin);
    for (const std::string& sample : options.m_vSamples) RequireFile(sample);
    return ValidateAll(options);
}

// Names separated by commas; what follows them on the command line is none of them.
void AddPatterns(CLI::App& app, const char* option, CPatterns& patterns, const char* description) {
    app.add_option(option, patterns, description)->type_name("CHECK,...")->delimiter(',')->allow_extra_args(false);
}

void AddChoices(CLI::App& app, SValidateOptions& options) {
    AddPatterns(app, "--only", options.m_only, "Run these checks alone: names, groups or wildcards");
    AddPatterns(app, "--skip", options.m_skip, "Leave these checks out");
    AddTimeLimit(app, options.m_limit, "Seconds that a check may take; 10 if left out");
    app.add_option("--jobs", options.m_nJobs, "Checks beside each other; as many as processors if left out")
        ->type_name("N")
        ->check(CLI::Range(1U, kMostJobs));
}

std::function<int()> DefineValidate(CLI::App& app) {
    const auto options = std::make_shared<SValidateOptions>();
    app.add_option("PLUGIN", options->m_vPlugins, "The plug-ins to check")->check(RefuseEmpty);
    AddChoices(app, *options);
    app.add_option("--sample", options->m_vSamples, "A sound file for the decoders, instead of the validator's own")
        ->type_name("FILE")
        ->check(RefuseEmpty)
        ->allow_extra_args(false);
    app.add_option("--url", options->m_strURL, "A resource for URL handlers, instead of the validator's own")
        ->type_name("URL")
        ->check(RefuseEmpty);
    app.add_flag("--json", options->m_bJson, "Report as JSON");
    app.add_flag("--verbose", options->m_bVerbose,
                 "Report every check, and show what the plug-ins write to standard error");
    app.add_flag("--list-checks", options->m_bListChecks, "List the checks and what each is about");
    return [options] { return RunValidate(*options); };
}

}  // namespace

const SCommand kValidateCommand = {"validate", "Check plug-ins against what hosts rely on", kValidateExamples,
                                   DefineValidate};

// The options of keloaudio convert.
#include "host/convert/ConvertOptions.h"

#include <sched.h>

#include <CLI/CLI.hpp>
#include <algorithm>

#include "host/Failure.h"

namespace {

constexpr int kMinSampleRate = 1000;
constexpr int kMaxSampleRate = 768000;
constexpr int kMaxChannels = 64;
constexpr int kMaxJobs = 1024;
constexpr unsigned kMaxShards = 1000000;

constexpr const char* kDefaultStandardOutputExtension = "wav";

// The cores that this process may use, which batch systems restrict.
int UsableCores() {
    cpu_set_t cores;
    return sched_getaffinity(0, sizeof(cores), &cores) == 0 ? std::max(1, CPU_COUNT(&cores)) : 1;
}

void AddTimeOption(CLI::App& app, const std::string& name, const char* what, std::optional<STimePoint>& point) {
    app.add_option_function<std::string>(
           name,
           [name, &point](const std::string& text) {
               point = ParseTimePoint(text);
               if (!point) throw CLI::ValidationError(name, "\"" + text + "\" is no time such as 90, 1:30.5 or 4800f");
           },
           what)
        ->type_name("TIME");
}

void AddSettingOption(CLI::App& app, CTargetSettings& settings) {
    app.add_option_function<std::vector<std::string>>(
           "--set",
           [&settings](const std::vector<std::string>& texts) {
               for (const std::string& text : texts) {
                   const std::size_t equals = text.find('=');
                   if (equals == 0 || equals == std::string::npos) {
                       throw CLI::ValidationError("--set", "\"" + text + "\" is not NAME=VALUE");
                   }
                   settings.emplace_back(text.substr(0, equals), text.substr(equals + 1));
               }
           },
           "Setting of the encoder, may be repeated; list names them")
        ->type_name("NAME=VALUE")
        ->allow_extra_args(false);
}

SShard ParseShard(const std::string& text) {
    const std::size_t slash = text.find('/');
    unsigned index = 0;
    unsigned count = 0;
    if (slash == std::string::npos || !CLI::detail::lexical_cast(text.substr(0, slash), index) ||
        !CLI::detail::lexical_cast(text.substr(slash + 1), count) || count > kMaxShards || index >= count) {
        throw CLI::ValidationError("--shard", "\"" + text + "\" is not I/N with I from 0 to N-1");
    }
    return {index, count};
}

void AddFormatOptions(CLI::App& app, SConvertOptions& options) {
    app.add_option("--rate", options.m_format.m_nSampleRate, "Sample frames per second")
        ->type_name("HZ")
        ->check(CLI::Range(kMinSampleRate, kMaxSampleRate));
    app.add_option("--bits", options.m_format.m_nBitsPerSample,
                   "Bits per sample; if left out, the source's, 16 for lossy ones")
        ->type_name("N")
        ->check(CLI::IsMember({8, 16, 24, 32}));
    app.add_option("--channels", options.m_format.m_nChannels, "Number of channels")
        ->type_name("N")
        ->check(CLI::Range(1, kMaxChannels));
    app.add_option("--quality", options.m_strQuality, "Of the sample rate conversion")
        ->type_name("NAME")
        ->check(CLI::IsMember({"quick", "high", "very-high"}));
    app.add_option("--dither", options.m_strDither, "Of samples that become narrower; list names the kinds")
        ->type_name("NAME")
        ->check(RefuseEmpty);
    AddTimeOption(app, "--start", "Begin at 90, 1:30.5 or, in sample frames, 4800f", options.m_excerpt.m_start);
    AddTimeOption(app, "--end", "End there, likewise", options.m_excerpt.m_end);
    AddSettingOption(app, options.m_settings);
}

// A dot alone would be an empty extension, and that the form with two names, whose second one is overwritten.
std::string RefuseNoExtension(const std::string& text) {
    return text == "." ? "a dot is no extension" : RefuseEmpty(text);
}

void AddOutputOptions(CLI::App& app, SConvertOptions& options) {
    app.add_option("--to", options.m_strExtension, "Extension of the outputs, which chooses the encoder")
        ->type_name("EXTENSION")
        ->check(RefuseNoExtension);
    app.add_option("--out-dir", options.m_strOutputDirectory,
                   "Directory of the outputs; if left out, beside the inputs")
        ->type_name("DIR")
        ->check(RefuseEmpty);
    app.add_flag("--stdout", options.m_bStandardOutput, "Write the one output to standard output, as WAV without --to");
    app.add_flag("--skip-existing", options.m_bSkipExisting, "Leave out inputs whose output is there");
    app.add_flag("--dry-run", options.m_bDryRun, "Only say what would be converted into what");
}

void RequireNoOption(bool given, const char* option, const char* reason) {
    if (given) throw CWrongUsage(option, reason);
}

void CompleteTwoNames(SConvertOptions& options) {
    constexpr const char* kNeedsTo = "goes with --to EXTENSION";
    RequireNoOption(!options.m_strOutputDirectory.empty(), "--out-dir", kNeedsTo);
    RequireNoOption(options.m_bRecursive, "--recursive", kNeedsTo);
    RequireNoOption(options.m_shard.m_nCount != 1, "--shard", kNeedsTo);
    if (options.m_vInputs.size() < 2) throw CWrongUsage("OUTPUT", "is required, or --to EXTENSION");
    if (options.m_vInputs.size() > 2) throw CWrongUsage("--to EXTENSION", "is required for more than one input");
    options.m_strOutput = options.m_vInputs.back();
    options.m_vInputs.pop_back();
    if (options.m_strOutput.empty()) throw CWrongUsage("OUTPUT", "an empty name");
}

void CompleteStandardOutput(SConvertOptions& options) {
    constexpr const char* kOneOutput = "does not go with --stdout";
    if (options.m_vInputs.size() != 1) throw CWrongUsage("--stdout", "takes exactly one input");
    RequireNoOption(!options.m_strOutputDirectory.empty(), "--out-dir", kOneOutput);
    RequireNoOption(options.m_bSkipExisting, "--skip-existing", kOneOutput);
    RequireNoOption(options.m_bRecursive, "--recursive", kOneOutput);
    RequireNoOption(options.m_bJson, "--json", kOneOutput);
    RequireNoOption(options.m_bDryRun, "--dry-run", kOneOutput);
    RequireNoOption(options.m_shard.m_nCount != 1, "--shard", kOneOutput);
    if (options.m_strExtension.empty()) options.m_strExtension = kDefaultStandardOutputExtension;
}

}  // namespace

void AddConvertOptions(CLI::App& app, SConvertOptions& options) {
    app.add_option("INPUT", options.m_vInputs,
                   "Files or addresses; without --to two names, the second of them the output")
        ->required();
    AddOutputOptions(app, options);
    app.add_flag("--recursive,-r", options.m_bRecursive, "Convert what directories hold and a decoder lists");
    options.m_nJobs = UsableCores();
    app.add_option("--jobs,-j", options.m_nJobs, "Files at a time; if left out, one for each core")
        ->type_name("N")
        ->check(CLI::Range(1, kMaxJobs));
    app.add_option_function<std::string>(
           "--shard", [&options](const std::string& text) { options.m_shard = ParseShard(text); },
           "Convert only every N-th file, beginning with file I, from 0")
        ->type_name("I/N");
    AddFormatOptions(app, options);
    AddPluginOptions(app, options.m_plugins);
    app.add_flag("--quiet,-q", options.m_bQuiet, "Say nothing but what fails or gets lost");
    app.add_flag("--json", options.m_bJson, "Say it as JSON");
}

void CompleteConvertOptions(SConvertOptions& options) {
    if (!options.m_strExtension.empty() && options.m_strExtension.front() == '.') options.m_strExtension.erase(0, 1);
    if (options.m_bStandardOutput) {
        CompleteStandardOutput(options);
    } else if (options.m_strExtension.empty()) {
        CompleteTwoNames(options);
    }
    for (const std::string& input : options.m_vInputs) {
        if (input.empty()) throw CWrongUsage("INPUT", "an empty name");
    }
    const auto& [start, end] = options.m_excerpt;
    if (start && end && start->m_bFrames == end->m_bFrames &&
        std::pair(end->m_nWhole, end->m_nBillionths) <= std::pair(start->m_nWhole, start->m_nBillionths)) {
        throw CWrongUsage("--end", "is not after --start");
    }
}

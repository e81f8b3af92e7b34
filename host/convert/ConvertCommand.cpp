// keloaudio convert.
#include "host/convert/ConvertCommand.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <nlohmann/json.hpp>

#include "host/CrashNote.h"
#include "host/Encoders.h"
#include "host/Json.h"
#include "host/PluginCall.h"
#include "host/StandardOutput.h"
#include "host/convert/Batch.h"

namespace {

constexpr const char* kConvertExamples =
    "Examples:\n"
    "  keloaudio convert in.oga out.flac --rate 48000 --bits 24\n"
    "  keloaudio convert --to flac --out-dir flac --recursive music --skip-existing\n"
    "  keloaudio convert talk.mp3 cut.wav --start 1:30 --end 2:00\n"
    "  keloaudio convert song.flac --stdout | aplay";

// An encoder that is not there and values that it does not take fail every file: they are told once, before the first.
void CheckEncoder(const CPluginSession& session, const SConvertOptions& options) {
    const std::string extension = options.HasOneOutput() ? ExtensionOf(options.m_strOutput) : options.m_strExtension;
    const std::string output = options.HasOneOutput() ? options.m_strOutput : "." + extension;
    CallPlugins(output, [&] {
        STargetRequest request;
        request.m_pEncoder = FindEncoder(session, output, extension);
        request.m_strOutput = output;
        request.m_strPath = "/" + output;
        request.m_strExtension = extension;
        request.m_settings = options.m_settings;
        OpenTarget(request);
    });
}

void Prepare(const CPluginSession& session, const SConvertOptions& options) {
    if (!options.m_strQuality.empty()) session.SetConvertorSetting("quality", options.m_strQuality);
    if (!options.m_strDither.empty()) session.SetConvertorSetting("dither", options.m_strDither);
    CheckEncoder(session, options);
}

// Says what became of the one file, to whom it concerns.
void ReportOne(const SConversionResult& result, const SConvertOptions& options, CConsole& console) {
    if (options.m_bJson) {
        PrintJson(ToJson(result));
        FlushStandardOutput();
    } else {
        console.PrintLine(result.m_eOutcome == EOutcome::Converted ? ReportText(result) : LineText(result));
    }
}

int ConvertOne(const CPluginSession& session, const SConvertOptions& options) {
    const SPlannedFile file{CSourceName(options.m_vInputs.front()), options.m_strOutput};
    SConversionResult result = ExpectedResult(options, file);
    CConsole console(!options.m_bQuiet && !options.m_bJson, WorkloadOf({file}, {result}));
    bool reported = false;
    const auto report = [&](const SConversionResult& complete) {
        ReportOne(complete, options, console);
        reported = true;
    };
    if (!options.m_bDryRun && result.m_eOutcome == EOutcome::Planned) {
        // A report that nobody gets is a failure, and a failure leaves no output.
        result = ConvertFile({session, options, console}, file, report);
    } else if (result.m_strFailure.empty()) {
        report(result);
    }
    ReportLosses({session, options, console}, result.m_strInput, result.m_report);
    if (result.m_strFailure.empty()) return 0;
    if (options.m_bJson && !reported) PrintJson(ToJson(result));
    console.ReportFailure(result.m_strFailure);
    return kExitFailed;
}

int RunConvert(SConvertOptions& options) {
    CompleteConvertOptions(options);
    NoteCrashes(ChosenPluginDirectory(options.m_plugins));
    const CPluginSession session(options.m_plugins);
    Prepare(session, options);
    if (options.HasOneOutput()) return ConvertOne(session, options);
    if (options.m_bStandardOutput) {
        CConsole console(!options.m_bQuiet,
                         WorkloadOf({SPlannedFile{CSourceName(options.m_vInputs.front()), ""}}, {SConversionResult{}}));
        ConvertToStandardOutput({session, options, console});
        return 0;
    }
    const SConversionPlan plan =
        CallPlugins(session.GetDirectory(), [&] { return MakeConversionPlan(options, session); });
    return CBatch(session, options, plan).Run();
}

std::function<int()> DefineConvert(CLI::App& app) {
    const auto options = std::make_shared<SConvertOptions>();
    AddConvertOptions(app, *options);
    return [options] { return RunConvert(*options); };
}

}  // namespace

const SCommand kConvertCommand = {"convert", "Convert audio files", kConvertExamples, DefineConvert};

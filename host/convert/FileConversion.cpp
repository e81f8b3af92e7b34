// One planned file, from the question whether it is there to its place under its own name.
#include "host/convert/FileConversion.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <system_error>
#include <utility>

#include "host/Encoders.h"
#include "host/FailureText.h"
#include "host/PluginCall.h"
#include "host/StandardOutput.h"
#include "host/StopSignal.h"
#include "host/TargetFile.h"

namespace {

namespace fs = std::filesystem;

// What an input counts in the progress: its bytes, and what it costs to begin a file at all.
constexpr std::uint64_t kWeightOfAFile = 4096;

std::uint64_t WeightOf(const CSourceName& name) {
    std::error_code error;
    const std::uintmax_t bytes = name.IsRemote() ? 0 : fs::file_size(name.GetURL(), error);
    return kWeightOfAFile + (error ? 0 : bytes);
}

// Tells the console what each call adds to the one before.
CProgressListener ListenerFor(const CSourceName& name, CConsole& console) {
    const auto weight = static_cast<double>(WeightOf(name));
    return [&console, weight, counted = std::uint64_t{0}, heard = 0.0](double part, double seconds) mutable {
        const auto reached = static_cast<std::uint64_t>(part * weight);
        console.Advance(reached - counted, seconds - heard);
        counted = reached;
        heard = seconds;
    };
}

void MakeDirectoryOf(const std::string& output) {
    const fs::path directory = fs::path(output).parent_path();
    std::error_code error;
    if (!directory.empty()) fs::create_directories(directory, error);
    if (error) throw CFailure(directory.string(), "no such directory can be made: " + error.message());
}

void Convert(const SConversionSetting& setting, const SPlannedFile& file, SConversionResult& result,
             const CCommitHook& hook) {
    CConversion conversion(setting.m_session, setting.m_options, file.m_name, file.m_strOutput,
                           ExtensionOf(file.m_strOutput));
    if (!setting.m_options.HasOneOutput()) MakeDirectoryOf(file.m_strOutput);
    CTargetFile target(file.m_strOutput, file.m_name.GetURL());
    result.m_report = conversion.Run(target.GetTemporaryPath(), ListenerFor(file.m_name, setting.m_console));
    result.m_eOutcome = EOutcome::Converted;
    hook(result);
    target.Commit();
}

void CopyToStandardOutput(const std::string& path) {
    constexpr std::size_t kBlock = 65536;
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"), std::fclose);
    if (!file) throw CFailure(path, SystemErrorText(errno));
    std::vector<char> block(kBlock);
    for (std::size_t read = 0; (read = std::fread(block.data(), 1, block.size(), file.get())) > 0;) {
        if (std::fwrite(block.data(), 1, read, stdout) != read)
            throw CFailure("standard output", SystemErrorText(errno));
    }
    if (std::ferror(file.get()) != 0) throw CFailure(path, "reading it back failed");
    FlushStandardOutput();
}

}  // namespace

SConversionResult ExpectedResult(const SConvertOptions& options, const SPlannedFile& file) {
    SConversionResult result;
    result.m_strInput = file.m_name.GetGiven();
    result.m_strOutput = file.m_strOutput;
    std::error_code error;
    if (options.m_bSkipExisting && fs::is_regular_file(file.m_strOutput, error)) result.m_eOutcome = EOutcome::Skipped;
    return result;
}

SConversionResult ConvertFile(const SConversionSetting& setting, const SPlannedFile& file, const CCommitHook& hook) {
    SConversionResult result = ExpectedResult(setting.m_options, file);
    if (result.m_eOutcome == EOutcome::Skipped) return result;
    try {
        CallPlugins(result.m_strInput, [&] { Convert(setting, file, result, hook); });
    } catch (const CFailure& failure) {
        // A wait that the signal ended is no failure of the file.
        result.m_eOutcome = GetStopSignal() != 0 ? EOutcome::Interrupted : EOutcome::Failed;
        result.m_strFailure = failure.what();
        result.m_strReason = failure.GetReason();
    }
    return result;
}

SWorkload WorkloadOf(const std::vector<SPlannedFile>& files) {
    SWorkload workload{0, files.size()};
    for (const SPlannedFile& file : files) workload.m_nWeight += WeightOf(file.m_name);
    return workload;
}

void ConvertToStandardOutput(const SConversionSetting& setting) {
    const CSourceName name(setting.m_options.m_vInputs.front());
    CallPlugins(name.GetGiven(), [&] {
        CConversion conversion(setting.m_session, setting.m_options, name, "standard output",
                               setting.m_options.m_strExtension);
        // Encoders need a file that they can go back in.
        const std::string place = fs::temp_directory_path() / ("keloaudio." + setting.m_options.m_strExtension);
        const CTargetFile file(place, name.GetURL());
        const SConversionReport report = conversion.Run(file.GetTemporaryPath(), ListenerFor(name, setting.m_console));
        if (!report.m_strWarning.empty()) {
            setting.m_console.ReportFailure(name.GetGiven() + ": " + report.m_strWarning);
        }
        CopyToStandardOutput(file.GetTemporaryPath());
    });
}

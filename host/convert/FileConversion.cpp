// One planned file, from the question whether it is there to its place under its own name.
#include "host/convert/FileConversion.h"

#include <unistd.h>

#include <algorithm>
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
#include "host/StartDirectory.h"
#include "host/StopSignal.h"
#include "host/TargetFile.h"
#include "host/TemporaryDirectory.h"
#include "host/TemporaryFile.h"

namespace {

namespace fs = std::filesystem;

// What an input counts in the progress: its bytes, and what it costs to begin a file at all.
constexpr std::uint64_t kWeightOfAFile = 4096;

std::uint64_t WeightOf(const CSourceName& name) {
    std::error_code error;
    const std::uintmax_t bytes = name.IsRemote() ? 0 : fs::file_size(name.GetURL(), error);
    return kWeightOfAFile + (error ? 0 : bytes);
}

// What one input adds to the progress: all of its weight when it is over, whatever has become of it.
class CFileProgress {
public:
    CFileProgress(const CSourceName& name, CConsole& console) : m_console(console), m_nWeight(WeightOf(name)) {}
    ~CFileProgress() { m_console.Advance(m_nWeight - m_nCounted, 0); }

    CFileProgress(const CFileProgress&) = delete;
    CFileProgress& operator=(const CFileProgress&) = delete;

    void Reach(double part, double seconds) {
        const auto reached = std::max(m_nCounted, static_cast<std::uint64_t>(part * static_cast<double>(m_nWeight)));
        m_console.Advance(reached - m_nCounted, seconds - m_fHeard);
        m_nCounted = reached;
        m_fHeard = seconds;
    }

    CProgressListener Listener() {
        return [this](double part, double seconds) { Reach(part, seconds); };
    }

private:
    CConsole& m_console;
    std::uint64_t m_nWeight;
    std::uint64_t m_nCounted = 0;
    double m_fHeard = 0;
};

// Whether a later run may take the output's being there for its being complete.
bool IsTrustedLater(const SConvertOptions& options) { return options.m_bSkipExisting || options.m_shard.m_nCount > 1; }

void MakeDirectoryOf(const std::string& output) {
    const fs::path directory = fs::path(output).parent_path();
    std::error_code error;
    if (!directory.empty()) fs::create_directories(FromStart(directory), error);
    if (error) throw CFailure(directory.string(), "no such directory can be made: " + error.message());
}

void Convert(const SConversionSetting& setting, const SPlannedFile& file, const CProgressListener& listener,
             SConversionResult& result, const CCommitHook& hook) {
    CConversion conversion(setting.m_session, setting.m_options, file.m_name, file.m_strOutput,
                           ExtensionOf(file.m_strOutput));
    if (!setting.m_options.HasOneOutput()) MakeDirectoryOf(file.m_strOutput);
    CTargetFile target(file.m_strOutput, file.m_name.GetURL());
    result.m_report = conversion.Run(target.GetTemporaryPath(), listener);
    if (IsTrustedLater(setting.m_options)) target.Sync();
    result.m_eOutcome = EOutcome::Converted;
    hook(result);
    target.Commit();
}

void CopyToStandardOutput(const std::string& path) {
    constexpr std::size_t kBlock = 65536;
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"), std::fclose);
    if (!file) throw CFailure(path, SystemErrorText(errno));
    std::vector<char> block(kBlock);
    FlushStandardOutput();
    for (std::size_t read = 0; (read = std::fread(block.data(), 1, block.size(), file.get())) > 0;) {
        WriteToStandardOutput(block.data(), read);
    }
    if (std::ferror(file.get()) != 0) throw CFailure(path, "reading it back failed");
}

}  // namespace

SConversionResult ExpectedResult(const SConvertOptions& options, const SPlannedFile& file) {
    SConversionResult result;
    result.m_strInput = file.m_name.GetGiven();
    result.m_strOutput = file.m_strOutput;
    std::error_code error;
    if (options.m_bSkipExisting && fs::is_regular_file(FromStart(file.m_strOutput), error)) {
        result.m_eOutcome = EOutcome::Skipped;
    } else if (options.m_bDryRun && !file.m_name.IsRemote() && access(file.m_name.GetURL(), R_OK) != 0) {
        SetFailure(result, CFailure(file.m_name.GetGiven(), file.m_name.FailureTextOf(errno)));
    }
    return result;
}

SConversionResult ConvertFile(const SConversionSetting& setting, const SPlannedFile& file, const CCommitHook& hook) {
    CFileProgress progress(file.m_name, setting.m_console);
    SConversionResult result = ExpectedResult(setting.m_options, file);
    if (result.m_eOutcome == EOutcome::Skipped) return result;
    try {
        CallPlugins(result.m_strInput, [&] { Convert(setting, file, progress.Listener(), result, hook); });
    } catch (const CFailure& failure) {
        SetFailure(result, failure);
        // A wait that the signal ended is no failure of the file.
        if (GetStopSignal() != 0) result.m_eOutcome = EOutcome::Interrupted;
    }
    return result;
}

void ReportLosses(const SConversionSetting& setting, const std::string& input, const SConversionReport& report) {
    const std::string losses = LossText(report, setting.m_options);
    if (!losses.empty()) setting.m_console.ReportFailure(input + ": " + losses);
}

SWorkload WorkloadOf(const std::vector<SPlannedFile>& files, const std::vector<SConversionResult>& expected) {
    SWorkload workload{0, 0};
    for (std::size_t i = 0; i < files.size(); ++i) {
        if (expected[i].m_eOutcome != EOutcome::Planned) continue;
        workload.m_nWeight += WeightOf(files[i].m_name);
        ++workload.m_nFiles;
    }
    return workload;
}

void ConvertToStandardOutput(const SConversionSetting& setting) {
    const CSourceName name(setting.m_options.m_vInputs.front());
    CallPlugins(name.GetGiven(), [&] {
        CConversion conversion(setting.m_session, setting.m_options, name, "standard output",
                               setting.m_options.m_strExtension);
        // Encoders need a file that they can go back in.
        const CTemporaryFile file("standard output", FromStart(TemporaryDirectory()), "keloaudio");
        CFileProgress progress(name, setting.m_console);
        const SConversionReport report = conversion.Run(file.GetPath(), progress.Listener());
        ReportLosses(setting, name.GetGiven(), report);
        CopyToStandardOutput(file.GetPath());
    });
}

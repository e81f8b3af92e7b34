// keloaudio: the command-line host of the plug-in manager.
#include <CLI/CLI.hpp>
#include <exception>
#include <new>
#include <utility>
#include <vector>

#include "host/Failure.h"
#include "host/FailureText.h"
#include "host/InfoCommand.h"
#include "host/ListCommand.h"
#include "host/SettingsCommand.h"
#include "host/StandardOutput.h"
#include "host/StopSignal.h"
#include "host/convert/ConvertCommand.h"
#include "host/validate/ValidateCommand.h"

namespace {

constexpr const SCommand* kCommands[] = {
    &kListCommand, &kInfoCommand, &kConvertCommand, &kSettingsCommand, &kValidateCommand,
};

// The shell's number for a program that a signal ended.
constexpr int kExitSignalBase = 128;

// The first line alone; the rest repeats where help is.
int ReportWrongUsage(const std::string& text) {
    const std::string reason = text.substr(0, text.find('\n')) + " (see keloaudio --help)";
    ReportFailure(nullptr, reason.c_str());
    return kExitWrongUsage;
}

// The exit status.
int RunCommandLine(int argc, char** argv) {
    CLI::App app("Converts audio files through the plug-in manager, lists its plug-ins and shows their settings.",
                 "keloaudio");
    app.set_version_flag("--version", "keloaudio " KELO_VERSION);
    app.require_subcommand(1);
    std::vector<std::pair<const CLI::App*, std::function<int()>>> commands;
    for (const SCommand* const command : kCommands) {
        CLI::App* const defined = app.add_subcommand(command->m_szName, command->m_szDescription);
        defined->footer(command->m_szExamples);
        commands.emplace_back(defined, command->m_pDefine(*defined));
    }
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return error.get_exit_code() == 0 ? app.exit(error) : ReportWrongUsage(error.what());
    }
    int exitStatus = 0;
    for (const auto& [defined, run] : commands) {
        if (defined->parsed()) exitStatus = run();
    }
    if (exitStatus == 0) FlushStandardOutput();
    return GetStopSignal() != 0 ? kExitSignalBase + GetStopSignal() : exitStatus;
}

// Whatever ends a command ends here, as one line.
int RunReported(int argc, char** argv) noexcept {
    try {
        return RunCommandLine(argc, argv);
    } catch (const CWrongUsage& failure) {
        return ReportWrongUsage(failure.what());
    } catch (const CFailure& failure) {
        ReportFailure(nullptr, failure.what());
    } catch (const std::bad_alloc&) {
        ReportFailure(nullptr, "not enough memory");
    } catch (const std::exception& error) {
        ReportFailure(nullptr, error.what());
    } catch (...) {
        ReportFailure(nullptr, "a plug-in ended with an exception");
    }
    return GetStopSignal() != 0 ? kExitSignalBase + GetStopSignal() : kExitFailed;
}

}  // namespace

int main(int argc, char** argv) {
    WatchStopSignals();
    return RunReported(argc, argv);
}

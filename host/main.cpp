// keloaudio: the command-line host of the plug-in manager.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <exception>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "host/Failure.h"
#include "host/FailureText.h"
#include "host/InfoCommand.h"
#include "host/ListCommand.h"
#include "host/SettingsCommand.h"
#include "host/StandardOutput.h"
#include "host/StandardStreams.h"
#include "host/StopSignal.h"
#include "host/convert/ConvertCommand.h"
#include "host/validate/ValidateCommand.h"

namespace {

constexpr const SCommand* kCommands[] = {
    &kListCommand, &kInfoCommand, &kConvertCommand, &kSettingsCommand, &kValidateCommand,
};

// The shell's number for a program that a signal ended.
constexpr int kExitSignalBase = 128;

using CCommands = std::vector<std::pair<const CLI::App*, std::function<int()>>>;

// The first line alone; the rest repeats where help is.
int ReportWrongUsage(const std::string& text, const CCommands& commands) {
    std::string program = "keloaudio";
    for (const auto& [defined, run] : commands) {
        if (defined->parsed()) program += " " + defined->get_name();
    }
    const std::string reason = text.substr(0, text.find('\n')) + " (see " + program + " --help)";
    ReportFailure(nullptr, reason.c_str());
    return kExitWrongUsage;
}

// Whether a command has this option, and with a value.
bool TakesValue(const CCommands& commands, const std::string& option) {
    return std::any_of(commands.begin(), commands.end(), [&option](const auto& command) {
        const CLI::Option* const defined = command.first->get_option_no_throw(option);
        return defined != nullptr && defined->get_items_expected_max() > 0;
    });
}

// "--out-dir=", as a script writes it whose variable is empty.
bool IsOptionWithEmptyValue(const CCommands& commands, const std::string& argument) {
    return argument.size() > 3 && argument.compare(0, 2, "--") == 0 && argument.find('=') == argument.size() - 1 &&
           TakesValue(commands, argument.substr(0, argument.size() - 1));
}

// In CLI11's order, the last one first. CLI11 takes a name in square brackets for a list, which "./" before it
// prevents, and gives an option with an empty value the next argument as its value, unless the empty one is that.
std::vector<std::string> ArgumentsOf(const CCommands& commands, int argc, char** argv) {
    std::vector<std::string> arguments;
    bool namesOnly = false;
    for (int i = 1; i < argc; ++i) {
        std::string argument = argv[i];
        namesOnly = namesOnly || argument == "--";
        if (!argument.empty() && argument.front() == '[' && argument.back() == ']') argument.insert(0, "./");
        const bool emptyValue = !namesOnly && IsOptionWithEmptyValue(commands, argument);
        if (emptyValue) argument.pop_back();
        arguments.push_back(std::move(argument));
        if (emptyValue) arguments.emplace_back();
    }
    std::reverse(arguments.begin(), arguments.end());
    return arguments;
}

// Runs the command that was named. The exit status.
int RunCommand(const CCommands& commands) {
    int exitStatus = 0;
    try {
        for (const auto& [defined, run] : commands) {
            if (defined->parsed()) exitStatus = run();
        }
    } catch (const CWrongUsage& failure) {
        return ReportWrongUsage(failure.what(), commands);
    }
    FlushStandardOutput();
    return GetStopSignal() != 0 ? kExitSignalBase + GetStopSignal() : exitStatus;
}

// The exit status.
int RunCommandLine(int argc, char** argv) {
    CLI::App app("Converts audio files through the plug-in manager, lists its plug-ins and shows their settings.",
                 "keloaudio");
    app.set_version_flag("--version", "keloaudio " KELO_VERSION);
    app.require_subcommand(1);
    app.footer(
        "Examples:\n"
        "  keloaudio convert in.oga out.flac --rate 48000\n"
        "  keloaudio convert --help");
    CCommands commands;
    for (const SCommand* const command : kCommands) {
        CLI::App* const defined = app.add_subcommand(command->m_szName, command->m_szDescription);
        defined->footer(command->m_szExamples);
        commands.emplace_back(defined, command->m_pDefine(*defined));
    }
    try {
        app.parse(ArgumentsOf(commands, argc, argv));
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() != 0) return ReportWrongUsage(error.what(), commands);
        app.exit(error);
        FlushStandardOutput();
        return 0;
    }
    return RunCommand(commands);
}

// Whatever ends a command ends here, as one line.
int RunReported(int argc, char** argv) noexcept {
    try {
        return RunCommandLine(argc, argv);
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
    if (!OccupyStandardStreams()) {
        ReportFailure("/dev/null", SystemErrorText(errno).c_str());
        return kExitFailed;
    }
    WatchStopSignals();
    return RunReported(argc, argv);
}

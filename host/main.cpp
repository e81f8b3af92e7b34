// keloaudio: the command-line host of the plug-in manager.
#include <exception>
#include <new>

#include "host/ConvertCommand.h"
#include "host/Failure.h"
#include "host/FailureText.h"
#include "host/ListCommand.h"
#include "host/Options.h"
#include "host/SettingsCommand.h"
#include "host/StandardOutput.h"
#include "host/StopSignal.h"

namespace {

// The shell's number for a program that a signal ended.
constexpr int kExitSignalBase = 128;

// The exit status.
int RunCommand(const SOptions& options) {
    int exitStatus = 0;
    switch (options.m_eCommand) {
        case SOptions::ECommand::List:
            RunList(options.m_strPluginDirectory);
            break;
        case SOptions::ECommand::Convert:
            RunConvert(options.m_convert, options.m_strPluginDirectory);
            break;
        case SOptions::ECommand::Settings:
            exitStatus = RunSettings(options.m_strPluginDirectory, options.m_strImagesDirectory) ? 0 : kExitFailed;
            break;
    }
    FlushStandardOutput();
    return exitStatus;
}

// Whatever ends a command ends here, as one line.
int RunReported(const char* subject, int (*run)(const SOptions&), const SOptions& options) noexcept {
    try {
        return run(options);
    } catch (const CFailure& failure) {
        ReportFailure(nullptr, failure.what());
    } catch (const std::bad_alloc&) {
        ReportFailure(subject, "not enough memory");
    } catch (const std::exception& error) {
        ReportFailure(subject, error.what());
    } catch (...) {
        ReportFailure(subject, "a plug-in ended with an exception");
    }
    return GetStopSignal() != 0 ? kExitSignalBase + GetStopSignal() : kExitFailed;
}

}  // namespace

int main(int argc, char** argv) {
    WatchStopSignals();
    SOptions options;
    int exitStatus = 0;
    try {
        if (!ParseOptions(argc, argv, options, exitStatus)) return exitStatus;
    } catch (const std::exception& error) {
        ReportFailure(nullptr, error.what());
        return kExitFailed;
    }
    return RunReported(options.GetSubject().c_str(), RunCommand, options);
}

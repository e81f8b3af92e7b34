// What a plug-in leaves behind in the process.
#include <chrono>
#include <thread>

#include "host/validate/Checks.h"
#include "host/validate/Exercise.h"
#include "host/validate/Outcome.h"
#include "host/validate/ProcessState.h"
#include "host/validate/Trial.h"

namespace {

// The manager comes first: the library itself sets the locale.
void LeavesAsItWas(CTrial& trial, CStateLines (*read)()) {
    trial.Manager();
    const CStateLines before = read();
    Exercise(trial);
    trial.Plugin().Terminate();
    trial.Plugin().Release();
    const std::string change = ChangeText(before, read());
    Expect(change.empty(), change);
}

void LeavesNoThreads(CTrial& trial) {
    trial.Manager();
    const CStateLines before = Threads();
    Exercise(trial);
    trial.Plugin().Terminate();
    trial.Plugin().Release();
    trial.Plugin().GetFile().Close();
    // A thread that was joined is listed for a moment longer.
    std::string change = ChangeText(before, Threads());
    for (int patience = 0; patience < 50 && !change.empty(); ++patience) {
        std::this_thread::sleep_for(std::chrono::milliseconds(4));
        change = ChangeText(before, Threads());
    }
    Expect(change.empty(), change);
}

void LeavesDescriptors(CTrial& trial) { LeavesAsItWas(trial, OpenDescriptors); }
void LeavesDirectory(CTrial& trial) { LeavesAsItWas(trial, CurrentDirectory); }
void LeavesLocale(CTrial& trial) { LeavesAsItWas(trial, Locale); }
void LeavesSignalActions(CTrial& trial) { LeavesAsItWas(trial, SignalActions); }
void LeavesSignalMask(CTrial& trial) { LeavesAsItWas(trial, BlockedSignals); }
void LeavesCreationMask(CTrial& trial) { LeavesAsItWas(trial, FileCreationMask); }
void LeavesEnvironment(CTrial& trial) { LeavesAsItWas(trial, Environment); }
void LeavesFloatingPoint(CTrial& trial) { LeavesAsItWas(trial, FloatingPointMode); }

}  // namespace

CCheckList ProcessChecks() {
    return {
        {"process/threads", "After unloading no thread of the plug-in runs.", CONCERN_ANY, "unload/closes",
         LeavesNoThreads},
        {"process/descriptors", "After the last Release every file is closed.", CONCERN_ANY, "component/initialize",
         LeavesDescriptors},
        {"process/directory", "The current directory stays.", CONCERN_ANY, "component/initialize", LeavesDirectory},
        {"process/locale", "The locale stays.", CONCERN_ANY, "component/initialize", LeavesLocale},
        {"process/signal-actions", "What signals do stays.", CONCERN_ANY, "component/initialize", LeavesSignalActions},
        {"process/signal-mask", "No signal is blocked.", CONCERN_ANY, "component/initialize", LeavesSignalMask},
        {"process/umask", "The file creation mask stays.", CONCERN_ANY, "component/initialize", LeavesCreationMask},
        {"process/environment", "The environment stays.", CONCERN_ANY, "component/initialize", LeavesEnvironment},
        {"process/floating-point", "The rounding and the treatment of denormal numbers stay.", CONCERN_ANY,
         "component/initialize", LeavesFloatingPoint},
    };
}

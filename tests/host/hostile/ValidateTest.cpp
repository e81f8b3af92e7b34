// keloaudio validate on plug-ins that do the worst before any check can look at them.
#include <signal.h>

#include <chrono>

#include "tests/host/hostile/HostileFixture.h"

namespace {

class ValidateHostile : public CBesideHostile {
protected:
    std::string Hostile(const std::string& name) const {
        UseHostile(name);
        return PluginDirectory() + "/" + name + ".so";
    }
};

}  // namespace

TEST_F(ValidateHostile, SignalEndsTheRunWhileTheSurveyHangs) {
    CRunningProgram program({KELOAUDIO, "validate", "--timeout", "600", Hostile("LingersInLoading")}, WorkDirectory());
    while (!std::filesystem::exists(InWork("lingers")) && !program.WaitFor(std::chrono::milliseconds(10))) {
    }
    program.Signal(SIGTERM);
    ExpectFailure(program.Wait(), {"LingersInLoading.so: stopped by a signal"}, 128 + SIGTERM);
}

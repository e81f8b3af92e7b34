// One place where everything that a check throws ends.
#include "host/validate/GuardedRun.h"

#include <chrono>

#include "host/Failure.h"
#include "host/PluginCall.h"

namespace {

std::string CrossingText(const std::string& words) {
    const std::string text = CurrentExceptionType() + " came across the border";
    return words.empty() ? text : text + ": " + words;
}

SOutcome Judge(const std::function<void()>& run) {
    try {
        run();
        return {};
    } catch (const CFinding& finding) {
        return {EVerdict::Failed, finding.what()};
    } catch (const CSkipped& reason) {
        return {EVerdict::Skipped, reason.what()};
    } catch (const CFailure& failure) {
        return {EVerdict::Failed, failure.what()};
    } catch (const std::exception& error) {
        return {EVerdict::Failed, CrossingText(error.what() != nullptr ? error.what() : "")};
    } catch (...) {
        return {EVerdict::Failed, CrossingText("")};
    }
}

}  // namespace

SOutcome RunGuarded(const std::function<void()>& run) {
    const auto begin = std::chrono::steady_clock::now();
    SOutcome outcome = Judge(run);
    const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - begin;
    outcome.m_fMilliseconds = time.count();
    return outcome;
}

// One place where everything that a check throws ends.
#include "host/validate/GuardedRun.h"

#include <cxxabi.h>
#include <stdlib.h>

#include <chrono>
#include <memory>
#include <typeinfo>

namespace {

std::string CurrentExceptionType() {
    const std::type_info* const type = abi::__cxa_current_exception_type();
    if (type == nullptr) return "of a foreign language";
    int status = 0;
    const std::unique_ptr<char, void (*)(void*)> name(abi::__cxa_demangle(type->name(), nullptr, nullptr, &status),
                                                      free);
    return std::string("of type ") + (name ? name.get() : type->name());
}

std::string CrossingText(const std::string& words) {
    const std::string text = "an exception " + CurrentExceptionType() + " came across the border";
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

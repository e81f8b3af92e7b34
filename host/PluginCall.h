// Calls that run plug-in code.
#pragma once

#include <functional>
#include <string>

#include "host/Failure.h"

// Both tell of the exception that is being handled. Only inside a handler, while the plug-in that threw is loaded.
// "an exception of type int".
std::string CurrentExceptionType();

// In its own words where it has any.
std::string CurrentExceptionText();

// Runs `call` and passes its result on. An exception of any type comes out as a CFailure about `subject` whose reason
// ends with `addition`, which is asked only then; a CFailure passes as it is. A plug-in's exception may be an object of
// the plug-in's own type, so it ends here, while the plug-in is loaded. [any thread]
template <typename TCall>
auto CallPlugins(const std::string& subject, const TCall& call, const std::function<std::string()>& addition = {}) {
    try {
        return call();
    } catch (const CFailure&) {
        throw;
    } catch (...) {
        const std::string text = CurrentExceptionText();
        throw CFailure(subject, addition ? text + addition() : text);
    }
}

// Calls that run plug-in code.
#include "host/PluginCall.h"

#include <cxxabi.h>
#include <stdlib.h>

#include <exception>
#include <memory>
#include <new>
#include <typeinfo>

std::string CurrentExceptionType() {
    const std::type_info* const type = abi::__cxa_current_exception_type();
    if (type == nullptr) return "an unknown exception";
    int status = 0;
    const std::unique_ptr<char, void (*)(void*)> name(abi::__cxa_demangle(type->name(), nullptr, nullptr, &status),
                                                      free);
    return "an exception of type " + std::string(name ? name.get() : type->name());
}

std::string CurrentExceptionText() {
    try {
        throw;
    } catch (const std::bad_alloc&) {
        return "not enough memory";
    } catch (const std::exception& error) {
        const char* const text = error.what();
        return text != nullptr && *text != '\0' ? text : CurrentExceptionType();
    } catch (...) {
        return CurrentExceptionType();
    }
}

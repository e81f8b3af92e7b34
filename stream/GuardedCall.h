// The one place where exceptions of plug-ins end.
#pragma once

#include <utility>

// Calls into a plug-in; whatever it throws counts as a false result. [any thread]
template <typename TCall>
bool CallGuarded(TCall&& call) noexcept {
    try {
        return std::forward<TCall>(call)();
    } catch (...) {
        return false;
    }
}

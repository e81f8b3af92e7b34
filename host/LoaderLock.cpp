// Asking the dynamic loader from another thread.
#include "host/LoaderLock.h"

#include <dlfcn.h>

#include <chrono>
#include <future>
#include <memory>
#include <system_error>
#include <thread>

namespace {

// Far more than the loader takes, little to someone who waits for a conversion.
constexpr std::chrono::seconds kPatience{2};

}  // namespace

bool OtherThreadsCanLoad() {
    const auto answer = std::make_shared<std::promise<void>>();
    std::future<void> answered = answer->get_future();
    try {
        // Left to itself: without an answer it waits to the end of the process.
        std::thread([answer] {
            dlsym(RTLD_DEFAULT, "main");
            answer->set_value();
        }).detach();
    } catch (const std::system_error&) {
        return true;
    }
    return answered.wait_for(kPatience) == std::future_status::ready;
}

// Waiting threads and measured waits for the tests of the locking objects.
#pragma once

#include <chrono>
#include <future>
#include <utility>

// Generous: long enough that only a hang reaches it on a busy machine.
constexpr unsigned int kPatientMs = 20000;

// Runs `call` on a thread of its own and waits for its result.
template <typename TCall>
auto OnAnotherThread(TCall call) {
    return std::async(std::launch::async, std::move(call)).get();
}

// True while `result` is still awaited after a while.
template <typename T>
bool StillWaiting(const std::future<T>& result) {
    return result.wait_for(std::chrono::milliseconds(60)) == std::future_status::timeout;
}

// The result of `call` and how many milliseconds it took.
template <typename TCall>
std::pair<int, long> Measured(TCall call) {
    const auto begin = std::chrono::steady_clock::now();
    const int result = call();
    const auto elapsed = std::chrono::steady_clock::now() - begin;
    return {result, static_cast<long>(std::chrono::duration_cast<std::chrono::milliseconds>(elapsed).count())};
}

// Independent jobs side by side on threads.
#pragma once

#include <cstddef>
#include <functional>

// Calls `job` once with each number below `count`, in this order, on at most `threads` threads at a time, fewer where
// the system gives fewer; on the caller's own when one is enough or plug-ins could not load anything on others. Hands
// out no further number once `isOver` says so or a signal asks to stop, and returns when the last one has come back.
// `job` does not throw; `isOver` is asked on every thread.
void RunJobs(std::size_t count, int threads, const std::function<void(std::size_t)>& job,
             const std::function<bool()>& isOver);

// A process of its own for code that may crash or hang.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <functional>

// Forked from this process, which has loaded no plug-in and has one thread: the copy is as good as a fresh program and
// knows all that was found before. The destructor ends a process that still runs. One thread.
class CChildProcess {
public:
    // `run` is called in the process and throws nothing; no destructor of what it leaves behind runs. What the process
    // prints is dropped, but for its standard error where that is wanted. Throws CFailure when there is no process.
    CChildProcess(const std::function<void()>& run, std::chrono::milliseconds limit, bool showsErrors);
    ~CChildProcess();

    CChildProcess(const CChildProcess&) = delete;
    CChildProcess& operator=(const CChildProcess&) = delete;

    // Becomes readable when the process ends; for poll.
    int GetDescriptor() const { return m_nDescriptor; }

    std::chrono::steady_clock::time_point GetDeadline() const { return m_deadline; }

    // Returns when the process has ended, its time is over or a signal asks this program to stop.
    void Wait() const;

    // Once that is so: whether the process has ended by itself. One that has not is ended here.
    bool Finish();

    // Of a process that has ended, in the form that waitpid gives.
    int GetStatus() const { return m_nStatus; }

private:
    bool Reap(int options);

    std::chrono::steady_clock::time_point m_deadline;
    pid_t m_id;
    int m_nDescriptor = -1;
    bool m_bEnded = false;
    int m_nStatus = 0;
};

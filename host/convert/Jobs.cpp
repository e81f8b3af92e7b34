// Independent jobs side by side on threads.
#include "host/convert/Jobs.h"

#include <signal.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

#include "host/LoaderLock.h"
#include "host/SignalStack.h"
#include "host/StopSignal.h"

namespace {

constexpr std::chrono::milliseconds kSignalInterval{50};

class CWorkers {
public:
    CWorkers(std::size_t count, const std::function<void(std::size_t)>& job, const std::function<bool()>& isOver)
        : m_nCount(count), m_job(job), m_isOver(isOver) {}

    void RunHere() {
        for (std::size_t n = 0; GetStopSignal() == 0 && !m_isOver() && (n = m_nNext++) < m_nCount;) m_job(n);
    }

    void RunOn(int threads) {
        try {
            m_vThreads.reserve(static_cast<std::size_t>(threads));
            for (int i = 0; i < threads; ++i) StartWorker();
        } catch (const std::exception&) {
            // The system gives no more threads or memory; fewer do the same work.
        }
        if (m_vThreads.empty()) RunHere();
        WaitForEnd();
        for (std::thread& thread : m_vThreads) thread.join();
    }

private:
    void StartWorker() {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_vThreads.emplace_back([this] { RunAsWorker(); });
        ++m_nRunning;
    }

    void RunAsWorker() {
        UseSignalStack();
        RunHere();
        const std::lock_guard<std::mutex> lock(m_mutex);
        --m_nRunning;
        m_ended.notify_one();
    }

    // A signal that asks to stop reaches one thread; those that wait for a pipe or a slow file need it as well.
    void WaitForEnd() {
        std::unique_lock<std::mutex> lock(m_mutex);
        while (!m_ended.wait_for(lock, kSignalInterval, [this] { return m_nRunning == 0; })) {
            if (GetStopSignal() == 0) continue;
            for (std::thread& thread : m_vThreads) pthread_kill(thread.native_handle(), GetStopSignal());
        }
    }

    std::size_t m_nCount;
    const std::function<void(std::size_t)>& m_job;
    const std::function<bool()>& m_isOver;
    std::atomic<std::size_t> m_nNext{0};
    std::vector<std::thread> m_vThreads;
    std::mutex m_mutex;
    std::condition_variable m_ended;
    int m_nRunning = 0;
};

}  // namespace

void RunJobs(std::size_t count, int threads, const std::function<void(std::size_t)>& job,
             const std::function<bool()>& isOver) {
    CWorkers workers(count, job, isOver);
    const auto useful = static_cast<int>(std::min<std::size_t>(count, static_cast<std::size_t>(threads)));
    if (useful <= 1 || !OtherThreadsCanLoad()) {
        workers.RunHere();
    } else {
        workers.RunOn(useful);
    }
}

// The reference count of an interface object.
#pragma once

#include <errno.h>
#include <semaphore.h>

#include <mutex>

// A POSIX unnamed semaphore (sem_init(3), not process-shared). [any thread]
// Both operations return the count read after the change; another thread may have changed it since.
class CReferenceCount {
public:
    // The count to begin with.
    explicit CReferenceCount(unsigned int initial) { sem_init(&m_semaphore, 0, initial); }
    ~CReferenceCount() { sem_destroy(&m_semaphore); }

    CReferenceCount(const CReferenceCount&) = delete;
    CReferenceCount& operator=(const CReferenceCount&) = delete;

    // One more.
    unsigned int Increment() {
        sem_post(&m_semaphore);
        return Value();
    }

    // Blocks while the count is 0. Of several threads that give back the last references only one is told 0, and no
    // other looks at the object any more, which may end at once.
    unsigned int Decrement() {
        {
            const std::lock_guard<std::mutex> lock(DecrementMutex());
            if (sem_trywait(&m_semaphore) == 0) return Value();
        }
        while (sem_wait(&m_semaphore) != 0 && errno == EINTR) {
        }
        return Value();
    }

    // The count at this moment.
    unsigned int Value() {
        int value = 0;
        sem_getvalue(&m_semaphore, &value);
        return static_cast<unsigned int>(value);
    }

private:
    // Makes one step of the decrement and the look at what is left. One for all counts, since it outlives each.
    static std::mutex& DecrementMutex() {
        static std::mutex mutex;
        return mutex;
    }

    sem_t m_semaphore;
};

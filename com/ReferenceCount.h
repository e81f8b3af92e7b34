// The reference count of an interface object.
#pragma once

#include <errno.h>
#include <semaphore.h>

#if defined(__SANITIZE_THREAD__)
#define KELO_THREAD_SANITIZER 1
#elif defined(__has_feature)
#define KELO_THREAD_SANITIZER __has_feature(thread_sanitizer)
#else
#define KELO_THREAD_SANITIZER 0
#endif
#if KELO_THREAD_SANITIZER
#include <sanitizer/tsan_interface.h>
#endif

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

    // Blocks while the count is 0.
    unsigned int Decrement() {
#if KELO_THREAD_SANITIZER
        // sem_wait synchronises memory both ways (POSIX.1-2017, 4.12), so that what this thread did with the object
        // comes before what the last one does; the sanitizer takes it for an acquisition alone.
        __tsan_release(&m_semaphore);
#endif
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
    sem_t m_semaphore;
};

#undef KELO_THREAD_SANITIZER

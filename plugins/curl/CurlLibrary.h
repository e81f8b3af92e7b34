// libcurl, loaded and initialised at its first use.
#pragma once

#include <mutex>
#include <string>

// libcurl counts how often it is initialised, so that a host which uses it too is not disturbed. The library itself
// stays in the process.
class CCurlLibrary {
public:
    // Throws the reason why libcurl cannot be had. [any thread]
    void Use();

    // Its name and version, or the reason why it cannot be had. [any thread]
    std::string Name();

    // Takes back what Use did, while no transfer runs.
    void Finish() noexcept;

private:
    std::mutex m_mutex;
    bool m_bInitialised = false;
};

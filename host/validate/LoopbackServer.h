// A web server of the validator's own, for URL handlers.
#pragma once

#include <map>
#include <memory>
#include <string>

#include "host/ChildProcess.h"
#include "host/validate/SampleSound.h"

// Serves its files at 127.0.0.1 over HTTP/1.1 from a process of its own, which ends with this object. Everything else
// is "404 Not Found".
class CLoopbackServer {
public:
    // Names begin with a slash. Throws CFailure when there is no port or process.
    explicit CLoopbackServer(const std::map<std::string, CBytes>& files);

    // "http://127.0.0.1:PORT".
    const std::string& GetURL() const { return m_strURL; }

private:
    std::string m_strURL;
    std::unique_ptr<CChildProcess> m_pProcess;
};

// An address at which nobody listens.
std::string DeadURL();

// What fetches take from the environment, apart from whoever runs the tests. Each test case runs in a process of its
// own, whose environment is changed for good.
#pragma once

#include <stdlib.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

namespace support {

// Neither proxies nor limits of the curl plug-in.
inline void ClearFetchVariables() {
    std::vector<std::string> unwanted;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string name = std::string(*entry).substr(0, std::string(*entry).find('='));
        const std::string ending = name.size() < 6 ? "" : name.substr(name.size() - 6);
        if (ending == "_proxy" || ending == "_PROXY" || name.rfind("KELO_CURL_", 0) == 0) unwanted.push_back(name);
    }
    for (const std::string& name : unwanted) unsetenv(name.c_str());
}

// And temporary files go into `temporary`, which is made.
inline void PrepareToFetch(const std::filesystem::path& temporary) {
    ClearFetchVariables();
    std::filesystem::create_directory(temporary);
    setenv("TMPDIR", temporary.c_str(), 1);
}

}  // namespace support

// How long plug-ins may take.
#pragma once

#include <chrono>

namespace CLI {
class App;
}

struct STimeLimit {
    double m_fSeconds = 10;

    std::chrono::milliseconds Get() const;
};

// The option --timeout. `limit` lives until the command has run.
void AddTimeLimit(CLI::App& app, STimeLimit& limit, const char* description);

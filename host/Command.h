// What a command of keloaudio is.
#pragma once

#include <functional>

namespace CLI {
class App;
}

// One command, such as "list". Each is defined beside what it does, owns its options, and main lists it. [host set-up]
struct SCommand {
    const char* m_szName;
    const char* m_szDescription;  // one line
    const char* m_szExamples;     // lines that end the help text

    // Adds the options to `app` and returns what is run when the command was chosen and its options are parsed: that
    // prints what it has to say, returns the exit status and throws CFailure. Called once for a command line.
    std::function<int()> (*m_pDefine)(CLI::App& app);
};

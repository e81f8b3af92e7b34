// What a batch says while it runs: lines, and a progress bar below them.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <string>

// How much there is to do; weights are of any unit.
struct SWorkload {
    std::uint64_t m_nWeight;
    std::size_t m_nFiles;
};

// Lines go to standard output, failures and the bar to standard error. Every line comes out whole. [any thread]
class CConsole {
public:
    // `lines` is false for a console that only tells failures. The bar is there only where standard error is a
    // terminal.
    CConsole(bool lines, const SWorkload& workload);

    // Takes the bar away.
    ~CConsole();

    CConsole(const CConsole&) = delete;
    CConsole& operator=(const CConsole&) = delete;

    // Throws CFailure when the line cannot be written.
    void PrintLine(const std::string& line);
    void ReportFailure(const std::string& text);

    // Work done since the last call: weight, and seconds of sound. Draws the bar now and then.
    void Advance(std::uint64_t weight, double seconds);
    void CountFile();

    double GetElapsedSeconds() const;
    double GetSoundSeconds() const;

private:
    using CClock = std::chrono::steady_clock;

    void EraseBar();
    void DrawBar();
    std::string BarText(std::size_t width) const;

    const bool m_bLines;
    const bool m_bBar;
    const SWorkload m_workload;
    const CClock::time_point m_start;
    mutable std::mutex m_mutex;
    CClock::time_point m_nextDrawing;
    bool m_bBarDrawn = false;
    std::uint64_t m_nWeightDone = 0;
    std::size_t m_nFilesDone = 0;
    double m_fSoundSeconds = 0;
};

// "312x real time"; one decimal below ten.
std::string SpeedText(double soundSeconds, double elapsedSeconds);

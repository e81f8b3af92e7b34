// What a batch says while it runs: lines, and a progress bar below them.
#include "host/convert/Console.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "host/FailureText.h"
#include "host/FormatText.h"
#include "host/StandardOutput.h"

namespace {

constexpr std::chrono::milliseconds kDrawingInterval{100};

// What is done sooner needs no bar.
constexpr std::chrono::milliseconds kFirstDrawing{300};

constexpr std::size_t kBarWidth = 24;
constexpr std::size_t kUsualColumns = 80;

// Back to the first column, then ECMA-48 EL: erase to the end of the line.
constexpr const char* kEraseLine = "\r\033[K";

std::size_t TerminalColumns() {
    winsize size = {};
    return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : kUsualColumns;
}

}  // namespace

CConsole::CConsole(bool lines, const SWorkload& workload)
    : m_bLines(lines),
      m_bBar(lines && isatty(STDERR_FILENO) != 0),
      m_workload(workload),
      m_start(CClock::now()),
      m_nextDrawing(m_start + kFirstDrawing) {}

CConsole::~CConsole() { EraseBar(); }

void CConsole::PrintLine(const std::string& line) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_bLines) return;
    EraseBar();
    std::puts(line.c_str());
    FlushStandardOutput();
}

void CConsole::ReportFailure(const std::string& text) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    EraseBar();
    ::ReportFailure(nullptr, text.c_str());
}

void CConsole::Advance(std::uint64_t weight, double seconds) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_nWeightDone += weight;
    m_fSoundSeconds += seconds;
    if (!m_bBar || CClock::now() < m_nextDrawing) return;
    m_nextDrawing = CClock::now() + kDrawingInterval;
    DrawBar();
}

void CConsole::CountFile() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    ++m_nFilesDone;
}

double CConsole::GetElapsedSeconds() const { return std::chrono::duration<double>(CClock::now() - m_start).count(); }

double CConsole::GetSoundSeconds() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_fSoundSeconds;
}

void CConsole::EraseBar() {
    if (m_bBarDrawn) std::fputs(kEraseLine, stderr);
    m_bBarDrawn = false;
}

void CConsole::DrawBar() {
    const std::string text = kEraseLine + BarText(TerminalColumns() - 1);
    std::fputs(text.c_str(), stderr);
    m_bBarDrawn = true;
}

std::string CConsole::BarText(std::size_t width) const {
    const double part = std::min(1.0, static_cast<double>(m_nWeightDone) /
                                          static_cast<double>(std::max<std::uint64_t>(1, m_workload.m_nWeight)));
    const double elapsed = GetElapsedSeconds();
    const auto filled = static_cast<std::size_t>(part * kBarWidth);
    std::string text = std::to_string(static_cast<int>(part * 100)) + "%";
    if (m_workload.m_nFiles > 1) {
        text += "  " + std::to_string(m_nFilesDone) + " of " + std::to_string(m_workload.m_nFiles) + " files";
    }
    text += "  " + SpeedText(m_fSoundSeconds, elapsed);
    if (part > 0) text += "  " + ClockText(elapsed * (1 - part) / part) + " left";
    const std::string bar = "[" + std::string(filled, '#') + std::string(kBarWidth - filled, '-') + "]  ";
    return (bar.size() + text.size() <= width ? bar + text : text).substr(0, width);
}

std::string SpeedText(double soundSeconds, double elapsedSeconds) {
    const double speed = elapsedSeconds > 0 ? soundSeconds / elapsedSeconds : 0;
    const auto tenths = static_cast<long long>(std::floor(speed * 10));
    const std::string number = std::to_string(tenths / 10) + (speed < 10 ? "." + std::to_string(tenths % 10) : "");
    return number + "x real time";
}

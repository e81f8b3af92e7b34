// One look at a directory of plug-ins, in a process of its own.
#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "host/ChildProcess.h"
#include "host/ComponentReport.h"

struct SProbeReport {
    std::vector<SComponentReport> m_components;
    std::string m_strFailure;  // how it ended where it did not end well; empty for a probe that did
};

// A file that both processes have open and that has no name.
class CReportFile {
public:
    // Throws CFailure when there is no room for it.
    CReportFile();
    ~CReportFile();

    CReportFile(const CReportFile&) = delete;
    CReportFile& operator=(const CReportFile&) = delete;

    // The child's part: what was found, and that it has come to the end.
    void Tell(const SProbeReport& report) const;
    void TellEnd() const;

    SProbeReport GetReport() const;
    bool HasEnd() const;

private:
    int m_nDescriptor;
};

// One thread.
class CPluginProbe {
public:
    // Loads every plug-in of the directory, asks the components and unloads. What the plug-ins write to standard error
    // is shown.
    CPluginProbe(const std::string& directory, std::chrono::milliseconds limit);

    // The same in silence for a directory with nothing but a link to `plugin`, whose own place is where the loader
    // looks for what it needs.
    CPluginProbe(const std::string& directory, const std::string& plugin, std::chrono::milliseconds limit);

    // Waits for it.
    SProbeReport Finish();

private:
    std::string EndingText(bool inTime) const;

    CReportFile m_file;
    std::chrono::milliseconds m_limit;
    CChildProcess m_process;
};

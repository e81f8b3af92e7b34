// One look at a directory of plug-ins, in a process of its own.
#include "host/PluginProbe.h"

#include <signal.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <utility>

#include "host/Failure.h"
#include "host/FailureText.h"
#include "host/PluginCall.h"
#include "host/PluginDirectory.h"
#include "host/PluginSession.h"
#include "portable/DynamicLibrary.h"

namespace {

// The first byte of the file tells whether the end was reached; the report follows.
constexpr off_t kReportBegin = 1;

using CReportBytes = std::vector<std::uint8_t>;

void WriteAt(int descriptor, const CReportBytes& bytes, off_t place) {
    for (std::size_t done = 0; done < bytes.size();) {
        const ssize_t count =
            pwrite(descriptor, bytes.data() + done, bytes.size() - done, place + static_cast<off_t>(done));
        if (count <= 0) throw CFailure("a report on plug-ins", SystemErrorText(errno));
        done += static_cast<std::size_t>(count);
    }
}

CReportBytes ReadFrom(int descriptor, off_t place) {
    CReportBytes bytes;
    std::uint8_t block[65536];
    for (ssize_t count = 0; (count = pread(descriptor, block, sizeof(block), place)) > 0; place += count) {
        bytes.insert(bytes.end(), block, block + count);
    }
    return bytes;
}

std::string ThrewText(const std::string& words) { return "threw: " + words; }

// Exceptions of plug-ins end here, while the plug-ins are loaded.
SProbeReport Examine(const CPluginSession& session) {
    SProbeReport report;
    try {
        for (const CComPtr<IAudioComponent>& component : session.GetComponents()) {
            report.m_components.push_back(ReportOn(session, *component));
        }
    } catch (const CFailure& failure) {
        report.m_strFailure = failure.what();
    } catch (...) {
        report.m_strFailure = ThrewText(CurrentExceptionText());
    }
    return report;
}

// An already loaded plug-in is the same one under whatever link the manager finds it.
class CHeldPlugin {
public:
    // Holds nothing for an empty path.
    explicit CHeldPlugin(const std::string& path) : m_pModule(path.empty() ? nullptr : LoadLibrary(path.c_str())) {}
    ~CHeldPlugin() { LetGo(); }

    CHeldPlugin(const CHeldPlugin&) = delete;
    CHeldPlugin& operator=(const CHeldPlugin&) = delete;

    void LetGo() {
        if (void* const module = std::exchange(m_pModule, nullptr)) FreeLibrary(module);
    }

private:
    void* m_pModule;
};

// The end is told once nothing of the plug-ins is loaded: unloading may crash too.
void LoadAndTell(const std::string& directory, const CReportFile& file, const std::string& plugin = "") {
    try {
        CHeldPlugin held(plugin);
        const CPluginSession session({directory, true});
        held.LetGo();
        file.Tell(Examine(session));
    } catch (const CNoUsablePlugin&) {
        file.Tell({});
    } catch (const CFailure& failure) {
        file.Tell({{}, ThrewText(failure.GetReason())});
    } catch (...) {
        file.Tell({{}, ThrewText(CurrentExceptionText())});
    }
    file.TellEnd();
}

}  // namespace

CReportFile::CReportFile() : m_nDescriptor(memfd_create("report", MFD_CLOEXEC)) {
    if (m_nDescriptor == -1) throw CFailure("a report on plug-ins", SystemErrorText(errno));
}

CReportFile::~CReportFile() { close(m_nDescriptor); }

void CReportFile::Tell(const SProbeReport& report) const {
    nlohmann::ordered_json components = nlohmann::ordered_json::array();
    for (const SComponentReport& component : report.m_components) components.push_back(ToJson(component));
    // As CBOR texts keep bytes that are not UTF-8.
    const nlohmann::ordered_json told = {{"components", components}, {"failure", report.m_strFailure}};
    WriteAt(m_nDescriptor, nlohmann::ordered_json::to_cbor(told), kReportBegin);
}

void CReportFile::TellEnd() const { WriteAt(m_nDescriptor, {1}, 0); }

SProbeReport CReportFile::GetReport() const {
    const auto told = nlohmann::ordered_json::from_cbor(ReadFrom(m_nDescriptor, kReportBegin), true, false);
    if (told.is_discarded()) return {};
    SProbeReport report;
    for (const nlohmann::ordered_json& component : told.at("components")) {
        report.m_components.push_back(ComponentReportFromJson(component));
    }
    report.m_strFailure = told.at("failure");
    return report;
}

bool CReportFile::HasEnd() const {
    char end = 0;
    return pread(m_nDescriptor, &end, 1, 0) == 1 && end != 0;
}

CPluginProbe::CPluginProbe(const std::string& directory, std::chrono::milliseconds limit)
    : m_limit(limit), m_process([&] { LoadAndTell(directory, m_file); }, limit, true) {}

CPluginProbe::CPluginProbe(const std::string& directory, const std::string& plugin, std::chrono::milliseconds limit)
    : m_limit(limit), m_process([&] { LoadAndTell(directory, m_file, plugin); }, limit, false) {}

SProbeReport CPluginProbe::Finish() {
    m_process.Wait();
    const bool inTime = m_process.Finish();
    SProbeReport report = m_file.GetReport();
    if (!m_file.HasEnd() && report.m_strFailure.empty()) report.m_strFailure = EndingText(inTime);
    return report;
}

std::string CPluginProbe::EndingText(bool inTime) const {
    char text[64];
    const int status = m_process.GetStatus();
    if (!inTime) {
        const double seconds = std::chrono::duration<double>(m_limit).count();
        std::snprintf(text, sizeof(text), "did not answer within %g s", seconds);
    } else if (WIFSIGNALED(status)) {
        const int signal = WTERMSIG(status);
        std::snprintf(text, sizeof(text), "%s (signal %d)", signal == SIGABRT ? "aborted" : "crashed", signal);
    } else {
        std::snprintf(text, sizeof(text), "ended the process with status %d", WEXITSTATUS(status));
    }
    return text;
}

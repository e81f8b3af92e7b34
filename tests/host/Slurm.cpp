// A Slurm cluster of one node, on loopback, of a test's own.
#include "tests/host/Slurm.h"

#include <arpa/inet.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <stdexcept>
#include <thread>

namespace {

constexpr std::chrono::milliseconds kPollInterval{200};
constexpr std::chrono::seconds kPatience{180};
constexpr std::chrono::seconds kTimeToEnd{10};
constexpr std::size_t kKeyBytes = 1024;

// A port of loopback that nobody uses at this moment.
int FreePort() {
    const int socketNumber = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof(address);
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    const bool found = bind(socketNumber, generic, length) == 0 && getsockname(socketNumber, generic, &length) == 0;
    close(socketNumber);
    if (!found) throw std::runtime_error("no free port");
    return ntohs(address.sin_port);
}

// Whether `holds` came true in time.
template <typename TCondition>
bool WaitUntil(const TCondition& holds) {
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (!holds()) {
        if (std::chrono::steady_clock::now() >= end) return false;
        std::this_thread::sleep_for(kPollInterval);
    }
    return true;
}

void End(std::unique_ptr<CRunningProgram>& daemon) {
    if (daemon == nullptr) return;
    daemon->Signal(SIGTERM);
    daemon->WaitFor(kTimeToEnd);
    daemon.reset();
}

}  // namespace

CSlurm::CSlurm() {
    for (const char* const name : {"munge", "state", "spool", "log"}) {
        std::filesystem::create_directory(m_scratch.Path() / name);
        chmod((m_scratch / name).c_str(), 0755);
    }
    chmod(m_scratch.Path().c_str(), 0755);
    WriteKey();
    WriteConfiguration();
    setenv("SLURM_CONF", (m_scratch / "slurm.conf").c_str(), 1);
    StartDaemons();
    WaitForNode();
}

CSlurm::~CSlurm() {
    End(m_node);
    End(m_controller);
    End(m_munged);
    unsetenv("SLURM_CONF");
}

void CSlurm::WriteKey() const {
    const std::string key = m_scratch.Write("munge/key", std::string(kKeyBytes, 'k'));
    chmod(key.c_str(), 0400);
}

void CSlurm::WriteConfiguration() const {
    const std::string place = m_scratch.Path().string();
    m_scratch.Write("slurm.conf",
                    "ClusterName=kelo\n"
                    "SlurmctldHost=localhost(127.0.0.1)\n"
                    "SlurmUser=root\n"
                    "AuthInfo=socket=" +
                        place +
                        "/munge/socket\n"
                        "SlurmctldPort=" +
                        std::to_string(FreePort()) +
                        "\n"
                        "SlurmdPort=" +
                        std::to_string(FreePort()) +
                        "\n"
                        "StateSaveLocation=" +
                        place +
                        "/state\n"
                        "SlurmdSpoolDir=" +
                        place +
                        "/spool\n"
                        "SlurmctldPidFile=" +
                        place +
                        "/slurmctld.pid\n"
                        "SlurmdPidFile=" +
                        place +
                        "/slurmd.pid\n"
                        "SlurmctldLogFile=" +
                        place +
                        "/log/slurmctld\n"
                        "SlurmdLogFile=" +
                        place +
                        "/log/slurmd\n"
                        "ProctrackType=proctrack/linuxproc\n"
                        "TaskPlugin=task/none\n"
                        "JobAcctGatherType=jobacct_gather/none\n"
                        "SelectType=select/cons_tres\n"
                        "SelectTypeParameters=CR_Core\n"
                        "SchedulerParameters=batch_sched_delay=0,sched_interval=1\n"
                        "MinJobAge=2\n"
                        "KillWait=10\n"
                        "ReturnToService=2\n"
                        "MailProg=/bin/true\n"
                        "NodeName=node NodeAddr=127.0.0.1 NodeHostname=localhost CPUs=2\n"
                        "PartitionName=all Nodes=ALL Default=YES MaxTime=INFINITE State=UP\n");
}

void CSlurm::StartDaemons() {
    const std::string munge = m_scratch / "munge/";
    m_munged = std::make_unique<CRunningProgram>(std::vector<std::string>{
        "munged", "--foreground", "--force", "--socket=" + munge + "socket", "--key-file=" + munge + "key",
        "--pid-file=" + munge + "pid", "--log-file=" + munge + "log", "--seed-file=" + munge + "seed"});
    if (!WaitUntil([&] { return std::filesystem::is_socket(munge + "socket"); })) {
        throw std::runtime_error("munged does not come up");
    }
    m_controller = std::make_unique<CRunningProgram>(std::vector<std::string>{"slurmctld", "-D", "-i"});
    m_node = std::make_unique<CRunningProgram>(std::vector<std::string>{"slurmd", "-D", "-N", "node"});
}

void CSlurm::WaitForNode() const {
    const auto isIdle = [] {
        const SRunResult result = RunProgram({"sinfo", "--noheader", "--format=%T"});
        return result.m_nExit == 0 && result.m_strOut.rfind("idle", 0) == 0;
    };
    if (WaitUntil(isIdle)) return;
    throw std::runtime_error("no node comes up: " + ReadWholeFile(m_scratch / "log/slurmctld") +
                             ReadWholeFile(m_scratch / "log/slurmd"));
}

std::string CSlurm::Ask(const std::vector<std::string>& command, const std::string& directory) const {
    const SRunResult result = RunProgram(command, directory);
    if (result.m_nExit != 0) throw std::runtime_error(command.front() + ": " + result.m_strErr);
    return result.m_strOut;
}

int CSlurm::CountJobs() const {
    const std::string jobs = Ask({"squeue", "--noheader", "--array", "--states=all", "--format=%T"});
    int left = 0;
    for (const std::string state : {"PENDING", "RUNNING", "COMPLETING", "CONFIGURING"}) {
        for (std::size_t at = 0; (at = jobs.find(state, at)) != std::string::npos; at += state.size()) ++left;
    }
    return left;
}

void CSlurm::WaitForJobs() const {
    if (!WaitUntil([this] { return CountJobs() == 0; })) throw std::runtime_error("jobs do not end");
}

// A Slurm cluster of one node, on loopback, of a test's own.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tests/host/RunProgram.h"

// munged, slurmctld and slurmd with their keys, state and ports below a scratch directory; they end with the object.
// Needs root.
class CSlurm {
public:
    // Throws when the node does not come up.
    CSlurm();
    ~CSlurm();

    CSlurm(const CSlurm&) = delete;
    CSlurm& operator=(const CSlurm&) = delete;

    // Runs one of Slurm's programs in `directory`; throws when it fails. Its standard output.
    std::string Ask(const std::vector<std::string>& command, const std::string& directory = "") const;

    // How many tasks wait or run.
    int CountJobs() const;

    // Waits until none is left; throws when that takes more than three minutes.
    void WaitForJobs() const;

private:
    void WriteKey() const;
    void WriteConfiguration() const;
    void StartDaemons();
    void WaitForNode() const;

    CScratchDirectory m_scratch;
    std::unique_ptr<CRunningProgram> m_munged;
    std::unique_ptr<CRunningProgram> m_controller;
    std::unique_ptr<CRunningProgram> m_node;
};

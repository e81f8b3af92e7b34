// What the plug-ins of a directory have, found out where they can do no harm.
#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "host/ComponentReport.h"
#include "host/PluginOptions.h"

struct SPluginFailure {
    std::string m_strFile;    // without its directory; empty when the plug-ins fail together and none of them alone
    std::string m_strReason;  // "aborted (signal 6)", "did not answer within 10 s", "threw: ..." and the like
};

struct SPluginListing {
    std::string m_strDirectory;  // absolute
    std::vector<SComponentReport> m_components;
    std::vector<SPluginFailure> m_failures;
};

// This process loads no plug-in: one child process loads them all, and only when that does not come to its end each
// plug-in gets a process of its own, which tells whether it is the one. `limit` is for each process. Throws CFailure as
// RequirePluginDirectory does, for a directory where no plug-in is usable and when a signal asks to stop.
SPluginListing ListPlugins(const SPluginOptions& options, std::chrono::milliseconds limit);

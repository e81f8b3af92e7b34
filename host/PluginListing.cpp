// What the plug-ins of a directory have, found out where they can do no harm.
#include "host/PluginListing.h"

#include <algorithm>
#include <filesystem>
#include <memory>

#include "host/Failure.h"
#include "host/PluginDirectory.h"
#include "host/PluginProbe.h"
#include "host/ScratchPlace.h"
#include "host/StopSignal.h"

namespace {

// Probes beside each other, so that several that hang take the time of one.
constexpr std::size_t kProbesAtOnce = 8;

void AddTo(SPluginListing& listing, const std::string& file, SProbeReport report) {
    std::move(report.m_components.begin(), report.m_components.end(), std::back_inserter(listing.m_components));
    if (!report.m_strFailure.empty()) listing.m_failures.push_back({file, report.m_strFailure});
}

SProbeReport FinishProbe(CPluginProbe& probe, const std::string& directory) {
    SProbeReport report = probe.Finish();
    if (GetStopSignal() != 0) throw CFailure(directory, "stopped by a signal");
    return report;
}

// A directory for each plug-in alone, whose name in it is its own.
class CSingles {
public:
    CSingles(const std::string& directory, std::chrono::milliseconds limit)
        : m_strDirectory(directory), m_limit(limit), m_vNames(PluginFileNames(directory)) {}

    void AddTo(SPluginListing& listing) const {
        for (std::size_t first = 0; first < m_vNames.size(); first += kProbesAtOnce) {
            const std::size_t end = std::min(first + kProbesAtOnce, m_vNames.size());
            std::vector<std::unique_ptr<CPluginProbe>> probes;
            for (std::size_t i = first; i < end; ++i) probes.push_back(Start(m_vNames[i]));
            for (std::size_t i = first; i < end; ++i) {
                ::AddTo(listing, m_vNames[i], FinishProbe(*probes[i - first], m_strDirectory));
            }
        }
    }

private:
    std::unique_ptr<CPluginProbe> Start(const std::string& name) const {
        const std::string path = m_strDirectory + "/" + name;
        const std::string alone = m_scratch.MakeDirectory(name);
        std::filesystem::create_symlink(path, alone + "/" + name);
        return std::make_unique<CPluginProbe>(alone, path, m_limit);
    }

    const std::string& m_strDirectory;
    std::chrono::milliseconds m_limit;
    std::vector<std::string> m_vNames;
    CScratchPlace m_scratch;
};

}  // namespace

SPluginListing ListPlugins(const SPluginOptions& options, std::chrono::milliseconds limit) {
    SPluginListing listing;
    listing.m_strDirectory = RequirePluginDirectory(options);
    CPluginProbe everything(listing.m_strDirectory, limit);
    SProbeReport together = FinishProbe(everything, listing.m_strDirectory);
    if (together.m_strFailure.empty()) {
        if (together.m_components.empty()) throw CNoUsablePlugin(listing.m_strDirectory);
        AddTo(listing, "", std::move(together));
        return listing;
    }
    CSingles(listing.m_strDirectory, limit).AddTo(listing);
    if (listing.m_failures.empty()) {
        listing.m_failures.push_back(
            {"", together.m_strFailure + " with all plug-ins loaded, but with none of them alone"});
    }
    return listing;
}

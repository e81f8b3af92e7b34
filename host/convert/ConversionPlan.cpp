// What is converted into what.
#include "host/convert/ConversionPlan.h"

#include <strings.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <set>
#include <system_error>
#include <utility>

#include "host/Encoders.h"
#include "host/StartDirectory.h"
#include "host/TargetFile.h"
#include "host/convert/InputFiles.h"

namespace {

namespace fs = std::filesystem;

using CFileIdentity = std::pair<dev_t, ino_t>;

// The last component of an address without what follows a "?" or "#".
std::string FileNameOfAddress(const std::string& address) {
    const std::string path = address.substr(0, address.find_first_of("?#"));
    const std::size_t host = path.find("://") + 3;
    const std::size_t slash = path.rfind('/');
    if (slash < host || slash + 1 == path.size()) {
        throw CFailure(address, "no file name in it for the output", " (give the output's name instead of --to)");
    }
    return path.substr(slash + 1);
}

std::string OutputOf(const SInputFile& input, const SConvertOptions& options) {
    const std::string& given = input.m_name.GetGiven();
    const fs::path name = input.m_name.IsRemote() ? fs::path(FileNameOfAddress(given)) : fs::path(given);
    fs::path directory = input.m_name.IsRemote() ? fs::path() : name.parent_path();
    if (!options.m_strOutputDirectory.empty()) directory = fs::path(options.m_strOutputDirectory) / input.m_folder;
    return (directory / name.stem()).string() + "." + options.m_strExtension;
}

// Tells outputs apart, whatever links lead to them.
class COutputNames {
public:
    // Throws when `output` was there already.
    void Add(const std::string& output, const std::string& input) {
        const auto [place, added] = m_inputs.emplace(Resolve(output), input);
        if (added) return;
        throw CFailure(output, "two inputs would become it, " + place->second + " and " + input,
                       " (nothing is converted; --out-dir keeps apart what different runs make)");
    }

private:
    fs::path Resolve(const std::string& output) {
        const fs::path meant = MeantFile(output);
        const fs::path parent = meant.parent_path();
        const auto [known, added] = m_directories.emplace(parent, parent);
        if (added) known->second = ResolveDirectory(parent);
        return known->second / meant.filename();
    }

    // What leads nowhere stays as it is: it fails for its own file, when that is converted.
    static fs::path MeantFile(const std::string& output) {
        try {
            return FileAtTheEndOfLinks(output);
        } catch (const CFailure&) {
            return FromStart(output);
        }
    }

    static fs::path ResolveDirectory(const fs::path& directory) {
        std::error_code error;
        fs::path resolved = fs::weakly_canonical(directory, error);
        return error ? directory : resolved;
    }

    std::map<fs::path, fs::path> m_directories;
    std::map<fs::path, std::string> m_inputs;
};

bool Identify(const std::string& path, CFileIdentity& identity) {
    struct stat entry = {};
    if (stat(FromStart(path).c_str(), &entry) != 0) return false;
    identity = {entry.st_dev, entry.st_ino};
    return true;
}

// Files by what they are, whatever names and links lead to them.
class CFileSet {
public:
    void Add(const CSourceName& name) {
        CFileIdentity identity;
        if (!name.IsRemote() && Identify(name.GetURL(), identity)) m_files.insert(identity);
    }

    bool Has(const std::string& path) const {
        CFileIdentity identity;
        return Identify(path, identity) && m_files.count(identity) != 0;
    }

private:
    std::set<CFileIdentity> m_files;
};

// `already` is left out of `files`.
void RefuseClashes(const std::vector<SPlannedFile>& files, const CFileSet& already, bool skipExisting) {
    CFileSet inputs;
    COutputNames outputs;
    for (const SPlannedFile& file : files) {
        inputs.Add(file.m_name);
        outputs.Add(file.m_strOutput, file.m_name.GetGiven());
    }
    for (const SPlannedFile& file : files) {
        const std::string output = "the output of " + file.m_name.GetGiven() + " ";
        if (inputs.Has(file.m_strOutput)) {
            throw CFailure(file.m_strOutput, output + "is one of the inputs",
                           " (nothing is converted; --out-dir DIR writes elsewhere)");
        }
        if (!skipExisting && already.Has(file.m_strOutput)) {
            throw CFailure(file.m_strOutput, output + "is there and may be an original",
                           " (nothing is converted; --skip-existing keeps it, --out-dir DIR writes elsewhere)");
        }
    }
}

// Whether outputs come to lie beside the input, in its own directory.
bool IsInPlace(const SInputFile& input, const std::string& output) {
    std::error_code error;
    const fs::path directory = fs::path(input.m_name.GetGiven()).parent_path();
    const fs::path outputDirectory = fs::path(output).parent_path();
    return directory == outputDirectory || fs::equivalent(FromStart(directory), FromStart(outputDirectory), error);
}

// What becomes of the inputs, before shards are told apart.
SConversionPlan PlanAll(const SConvertOptions& options, SInputFiles inputs) {
    CFileSet already;
    SConversionPlan plan;
    plan.m_nOthers = inputs.m_nOthers;
    plan.m_vFailures = std::move(inputs.m_vFailures);
    for (SInputFile& input : inputs.m_vFiles) {
        const std::string extension = ExtensionOf(input.m_name.GetGiven());
        std::string output = OutputOf(input, options);
        if (input.m_bFromDirectory && IsInPlace(input, output) &&
            strcasecmp(extension.c_str(), options.m_strExtension.c_str()) == 0) {
            already.Add(input.m_name);
            ++plan.m_nAlready;
            continue;
        }
        plan.m_vFiles.push_back({std::move(input.m_name), std::move(output)});
    }
    RefuseClashes(plan.m_vFiles, already, options.m_bSkipExisting);
    return plan;
}

std::vector<SPlannedFile> TakeShard(std::vector<SPlannedFile> files, const SShard& shard) {
    std::vector<SPlannedFile> taken;
    for (std::size_t i = shard.m_nIndex; i < files.size(); i += shard.m_nCount) taken.push_back(std::move(files[i]));
    return taken;
}

}  // namespace

SConversionPlan MakeConversionPlan(const SConvertOptions& options, const CPluginSession& session) {
    const SInputRequest request{options.m_vInputs, options.m_bRecursive, session.GetDecoderExtensions(),
                                options.m_strOutputDirectory};
    SConversionPlan plan = PlanAll(options, FindInputFiles(request));
    plan.m_vFiles = TakeShard(std::move(plan.m_vFiles), options.m_shard);
    return plan;
}

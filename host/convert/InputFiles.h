// The inputs that a command line names, with what its directories hold.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "host/Failure.h"
#include "host/SourceName.h"

struct SInputFile {
    CSourceName m_name;

    // Directories between the directory that the person named and this file; empty for a file that was named itself.
    std::filesystem::path m_folder;

    bool m_bFromDirectory;
};

struct SInputFiles {
    std::vector<SInputFile> m_vFiles;   // sorted by name, the same on every machine
    std::vector<CFailure> m_vFailures;  // directories that cannot be read
    int m_nOthers = 0;                  // files of directories with an extension that nobody lists
};

struct SInputRequest {
    std::vector<std::string> m_vNames;
    bool m_bRecursive;

    // Without the dot; in any case of letters.
    std::vector<std::string> m_vExtensions;

    // Not entered unless it is named itself; empty for none.
    std::string m_strExcludedDirectory;
};

// Links to directories below the named ones are not followed, so that circles end. Throws CFailure for a directory
// without m_bRecursive.
SInputFiles FindInputFiles(const SInputRequest& request);

// What is converted into what.
#pragma once

#include <string>
#include <vector>

#include "host/Failure.h"
#include "host/PluginSession.h"
#include "host/SourceName.h"
#include "host/convert/ConvertOptions.h"

struct SPlannedFile {
    CSourceName m_name;
    std::string m_strOutput;
};

struct SConversionPlan {
    std::vector<SPlannedFile> m_vFiles;
    std::vector<CFailure> m_vFailures;  // directories that cannot be read
    int m_nOthers = 0;                  // files that are not sound, as far as their extension tells
    int m_nAlready = 0;                 // files of directories that are what they would become
};

// Writes nothing. Throws CFailure when two inputs would become the same output, when an output is one of the inputs,
// and, unless existing outputs are skipped, when it is one of the files that are left out as what they would become; it
// is the same failure for every shard.
SConversionPlan MakeConversionPlan(const SConvertOptions& options, const CPluginSession& session);

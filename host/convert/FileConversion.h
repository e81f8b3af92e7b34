// One planned file, from the question whether it is there to its place under its own name.
#pragma once

#include <functional>

#include "host/convert/Console.h"
#include "host/convert/ConversionPlan.h"
#include "host/convert/ConversionResult.h"

// Called with a converted file that is complete but not yet in its place; what it throws leaves no output.
using CCommitHook = std::function<void(const SConversionResult&)>;

// What every file of a command line shares. [any thread]
struct SConversionSetting {
    const CPluginSession& m_session;
    const SConvertOptions& m_options;
    CConsole& m_console;  // hears how far it is
};

// Never throws a CFailure: it is in the result. [stream-thread]
SConversionResult ConvertFile(const SConversionSetting& setting, const SPlannedFile& file, const CCommitHook& hook);

// Says on standard error what of `input` got lost on the way, unless it is told elsewhere.
void ReportLosses(const SConversionSetting& setting, const std::string& input, const SConversionReport& report);

// The result of a file before anything has been done: planned, skipped where the options say so, or, in a dry run,
// failed for an input that is not there.
SConversionResult ExpectedResult(const SConvertOptions& options, const SPlannedFile& file);

// What those of `files` that are planned are to the progress; `expected` has the result of each.
SWorkload WorkloadOf(const std::vector<SPlannedFile>& files, const std::vector<SConversionResult>& expected);

// Converts the one input and writes the complete file to standard output. Throws CFailure. [stream-thread]
void ConvertToStandardOutput(const SConversionSetting& setting);

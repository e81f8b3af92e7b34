// What became of one file, in words and as JSON.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "host/Failure.h"
#include "host/convert/Conversion.h"

enum class EOutcome {
    Planned,  // by --dry-run, or not reached
    Converted,
    Skipped,  // its output is there
    Failed,
    Interrupted,
};

struct SConversionResult {
    std::string m_strInput;
    std::string m_strOutput;
    EOutcome m_eOutcome = EOutcome::Planned;
    SConversionReport m_report{};
    std::string m_strFailure;  // the whole line
    std::string m_strReason;   // what other files may have in common
};

void SetFailure(SConversionResult& result, const CFailure& failure);

// Two lines: the input with its format and length, the output likewise.
std::string ReportText(const SConversionResult& result);

// One line: both names, the output's format and length, and what there is to remark.
std::string LineText(const SConversionResult& result);

// What standard error tells of a converted file: the warning, and the clipped samples where neither a line nor JSON
// tells them. Empty for nothing.
std::string LossText(const SConversionReport& report, const SConvertOptions& options);

nlohmann::ordered_json ToJson(const SConversionResult& result);

int CountOf(const std::vector<SConversionResult>& results, EOutcome outcome);

// "2 No such file or directory, 1 the file is empty": the most frequent reason first.
std::string ReasonsText(const std::vector<SConversionResult>& results);

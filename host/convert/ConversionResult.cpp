// What became of one file, in words and as JSON.
#include "host/convert/ConversionResult.h"

#include <algorithm>
#include <map>
#include <nlohmann/json.hpp>

#include "host/FormatText.h"
#include "host/Json.h"
#include "host/Printable.h"

namespace {

std::string StreamText(const SStreamReport& stream) {
    return FormatText(stream.m_format) + ", " + LengthText(stream.m_nFrames, stream.m_format.m_format.nSampleRate);
}

// Empty for none.
std::string ClippingText(const SConversionReport& report) {
    if (report.m_nClippedSamples == 0) return {};
    return std::to_string(report.m_nClippedSamples) +
           (report.m_nClippedSamples == 1 ? " sample clipped" : " samples clipped");
}

std::string Joined(const std::string& left, const std::string& separator, const std::string& right) {
    return left + (left.empty() || right.empty() ? "" : separator) + right;
}

nlohmann::ordered_json StreamJson(const SStreamReport& stream) {
    nlohmann::ordered_json json = FormatJson(stream.m_format);
    json["frames"] = stream.m_nFrames;
    json["seconds"] = SecondsOf(stream.m_nFrames, stream.m_format.m_format.nSampleRate);
    return json;
}

const char* OutcomeName(EOutcome outcome) {
    switch (outcome) {
        case EOutcome::Planned:
            return "planned";
        case EOutcome::Converted:
            return "converted";
        case EOutcome::Skipped:
            return "skipped";
        case EOutcome::Failed:
            return "failed";
        case EOutcome::Interrupted:
            break;
    }
    return "interrupted";
}

}  // namespace

void SetFailure(SConversionResult& result, const CFailure& failure) {
    result.m_eOutcome = EOutcome::Failed;
    result.m_strFailure = failure.what();
    result.m_strReason = failure.GetReason();
}

std::string ReportText(const SConversionResult& result) {
    return Printable(result.m_strInput) + ": " + StreamText(result.m_report.m_source) + "\n" +
           Printable(result.m_strOutput) + ": " +
           Joined(StreamText(result.m_report.m_target), ", ", ClippingText(result.m_report));
}

std::string LineText(const SConversionResult& result) {
    const std::string names = Printable(result.m_strInput + " -> " + result.m_strOutput);
    if (result.m_eOutcome == EOutcome::Skipped) return names + ": skipped, it is there";
    if (result.m_eOutcome != EOutcome::Converted) return names;
    return names + ": " + Joined(StreamText(result.m_report.m_target), ", ", ClippingText(result.m_report));
}

std::string LossText(const SConversionReport& report, const SConvertOptions& options) {
    const bool clippingTold = !options.m_bStandardOutput && (options.m_bJson || !options.m_bQuiet);
    return Joined(report.m_strWarning, "; ", clippingTold ? "" : ClippingText(report));
}

nlohmann::ordered_json ToJson(const SConversionResult& result) {
    nlohmann::ordered_json json = {
        {"input", result.m_strInput}, {"output", result.m_strOutput}, {"status", OutcomeName(result.m_eOutcome)}};
    if (result.m_eOutcome == EOutcome::Converted) {
        json["source"] = StreamJson(result.m_report.m_source);
        json["target"] = StreamJson(result.m_report.m_target);
        json["clippedSamples"] = result.m_report.m_nClippedSamples;
        if (!result.m_report.m_strWarning.empty()) json["warning"] = result.m_report.m_strWarning;
    }
    if (!result.m_strFailure.empty()) json["failure"] = result.m_strFailure;
    return json;
}

int CountOf(const std::vector<SConversionResult>& results, EOutcome outcome) {
    return static_cast<int>(std::count_if(results.begin(), results.end(), [outcome](const SConversionResult& result) {
        return result.m_eOutcome == outcome;
    }));
}

std::string ReasonsText(const std::vector<SConversionResult>& results) {
    std::map<std::string, int> counts;
    for (const SConversionResult& result : results) {
        if (result.m_eOutcome == EOutcome::Failed) ++counts[result.m_strReason];
    }
    std::vector<std::pair<std::string, int>> sorted(counts.begin(), counts.end());
    std::stable_sort(sorted.begin(), sorted.end(),
                     [](const auto& left, const auto& right) { return left.second > right.second; });
    std::string text;
    for (const auto& [reason, count] : sorted)
        text += (text.empty() ? "" : ", ") + std::to_string(count) + " " + reason;
    return text;
}

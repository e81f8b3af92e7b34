// keloaudio convert.
#include "host/ConvertCommand.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <numeric>
#include <vector>

#include "host/Encoders.h"
#include "host/Failure.h"
#include "host/FailureText.h"
#include "host/FormatText.h"
#include "host/PluginCall.h"
#include "host/PluginOptions.h"
#include "host/SourceStream.h"
#include "host/StandardOutput.h"
#include "host/StopSignal.h"
#include "host/TargetFile.h"
#include "host/TargetStream.h"

namespace {

constexpr int kMinSampleRate = 1000;
constexpr int kMaxSampleRate = 768000;
constexpr int kMaxChannels = 64;

constexpr int kBlockBytes = 65536;

// The source aggregator rounds its requests to this.
constexpr std::int64_t kRequestUnit = 12;

// Less than a hundredth of a second may be the rounding of announced lengths and of the resampler.
constexpr double kShortfallPerSecond = 100;

struct SConvertOptions {
    SPluginOptions m_plugins;
    std::string m_strInput;
    std::string m_strOutput;

    // 0 keeps what the source has.
    int m_nSampleRate = 0;
    int m_nBitsPerSample = 0;
    int m_nChannels = 0;
};

struct SStreamReport {
    SWavFormat m_format;
    std::uint64_t m_nFrames;
};

struct SConversionReport {
    SStreamReport m_source;
    SStreamReport m_target;
};

SWavFormat ApplyOptions(SWavFormat format, const SConvertOptions& options) {
    if (options.m_nSampleRate != 0) format.nSampleRate = options.m_nSampleRate;
    if (options.m_nBitsPerSample != 0) format.nBitsPerSample = options.m_nBitsPerSample;
    if (options.m_nChannels != 0) format.nChannels = options.m_nChannels;
    return format;
}

bool SameRateAndChannels(const SWavFormat& left, const SWavFormat& right) {
    return left.nSampleRate == right.nSampleRate && left.nChannels == right.nChannels;
}

// Whole sample frames of `format` in whole units, near kBlockBytes.
std::vector<unsigned char> MakeBlock(const SWavFormat& format) {
    const std::int64_t unit = std::lcm(kRequestUnit, BlockSizeOf(format));
    return std::vector<unsigned char>(static_cast<std::size_t>(unit * std::max<std::int64_t>(1, kBlockBytes / unit)));
}

void CheckStop(const SConvertOptions& options) {
    if (GetStopSignal() != 0) throw CFailure(options.m_strOutput, "interrupted, nothing is written");
}

// Moves every block and returns the number of bytes.
std::uint64_t Pump(CSourceStream& source, CTargetStream& target, const SConvertOptions& options) {
    std::vector<unsigned char> block = MakeBlock(source.GetFormat());
    std::uint64_t total = 0;
    for (;;) {
        CheckStop(options);
        const int read = source.Read(block.data(), static_cast<int>(block.size()));
        if (read == 0) return total;
        target.Write(block.data(), read);
        total += static_cast<std::uint64_t>(read);
    }
}

// One conversion from the choice of formats to the end of both streams; the streams are gone when it returns.
class CConversion {
public:
    CConversion(const CPluginSession& session, const SConvertOptions& options, const CSourceName& name)
        : m_session(session), m_options(options), m_name(name), m_pEncoder(FindEncoder(session, options.m_strOutput)) {
        const CSourceStream source(session, name, nullptr);
        m_report.m_source = {source.GetFormat(), source.GetAnnouncedFrames()};
    }

    SConversionReport Run(const std::string& path) {
        SWavFormat wanted = ApplyOptions(m_report.m_source.m_format, m_options);
        auto target = MakeTarget(path, wanted);
        if (!SameRateAndChannels(target->GetFileFormat(), wanted)) {
            wanted = AdoptRateAndChannels(wanted, target->GetFileFormat());
            target = MakeTarget(path, wanted);
        }
        CSourceStream source(m_session, m_name, &wanted);
        Transfer(source, *target, wanted);
        return m_report;
    }

private:
    std::unique_ptr<CTargetStream> MakeTarget(const std::string& path, const SWavFormat& format) const {
        const STargetPlace place{m_options.m_strOutput, path, ExtensionOf(m_options.m_strOutput)};
        return std::make_unique<CTargetStream>(m_session, *m_pEncoder, place, format);
    }

    // A target's convertor cannot be emptied at the end, so only the source side may change the number of frames.
    SWavFormat AdoptRateAndChannels(SWavFormat wanted, const SWavFormat& accepted) const {
        const bool rateForced = m_options.m_nSampleRate != 0 && accepted.nSampleRate != wanted.nSampleRate;
        const bool channelsForced = m_options.m_nChannels != 0 && accepted.nChannels != wanted.nChannels;
        if (rateForced || channelsForced) {
            throw CFailure(m_options.m_strOutput,
                           "no " + FormatText(wanted) + " in this file format (it takes " + FormatText(accepted) + ")");
        }
        wanted.nSampleRate = accepted.nSampleRate;
        wanted.nChannels = accepted.nChannels;
        return wanted;
    }

    // Some formats only estimate their length, so a shortfall is worth a word but is no failure.
    void WarnOfShortfall() const {
        const SStreamReport& source = m_report.m_source;
        const double delivered = static_cast<double>(m_report.m_target.m_nFrames) * source.m_format.nSampleRate /
                                 m_report.m_target.m_format.nSampleRate;
        const double missing = static_cast<double>(source.m_nFrames) - delivered;
        if (missing * kShortfallPerSecond < source.m_format.nSampleRate) return;
        const std::string text = "ended early: " + std::to_string(source.m_nFrames) + " frames announced, about " +
                                 std::to_string(static_cast<std::uint64_t>(delivered)) + " delivered";
        ReportFailure(m_name.GetGiven().c_str(), text.c_str());
    }

    void Transfer(CSourceStream& source, CTargetStream& target, const SWavFormat& format) {
        source.Start();
        target.Start();
        const std::uint64_t bytes = Pump(source, target, m_options);
        target.End();
        source.End();
        CheckStop(m_options);
        const auto frameBytes = static_cast<std::uint64_t>(BlockSizeOf(format));
        m_report.m_target = {target.GetFileFormat(), bytes / frameBytes};
        WarnOfShortfall();
        // The announced length is rounded or unknown for some sources; without resampling the count is exact.
        if (format.nSampleRate == m_report.m_source.m_format.nSampleRate) {
            m_report.m_source.m_nFrames = m_report.m_target.m_nFrames;
        }
    }

    const CPluginSession& m_session;
    const SConvertOptions& m_options;
    const CSourceName& m_name;
    CComPtr<IAudioTargetOpener> m_pEncoder;
    SConversionReport m_report{};
};

void PrintReport(const std::string& name, const SStreamReport& report) {
    const std::string line =
        name + ": " + FormatText(report.m_format) + ", " + LengthText(report.m_nFrames, report.m_format.nSampleRate);
    std::puts(line.c_str());
}

int RunConvert(const SConvertOptions& options) {
    const CSourceName name(options.m_strInput);
    const CPluginSession session(options.m_plugins);
    CallPlugins(options.m_strInput, [&] {
        CConversion conversion(session, options, name);
        CTargetFile file(options.m_strOutput, name.GetURL());
        const SConversionReport report = conversion.Run(file.GetTemporaryPath());
        PrintReport(options.m_strInput, report.m_source);
        PrintReport(options.m_strOutput, report.m_target);
        // A report that nobody gets is a failure, and a failure leaves no output.
        FlushStandardOutput();
        file.Commit();
    });
    return 0;
}

std::function<int()> DefineConvert(CLI::App& app) {
    const auto options = std::make_shared<SConvertOptions>();
    AddPluginOptions(app, options->m_plugins);
    app.add_option("INPUT", options->m_strInput, "A file, or an http:// or ftp:// address")
        ->required()
        ->check(RefuseEmpty);
    app.add_option("OUTPUT", options->m_strOutput, "The file to write; its extension chooses the encoder")
        ->required()
        ->check(RefuseEmpty);
    app.add_option("--rate", options->m_nSampleRate, "Sample frames per second")
        ->type_name("HZ")
        ->check(CLI::Range(kMinSampleRate, kMaxSampleRate));
    app.add_option("--bits", options->m_nBitsPerSample, "Bits per sample: 8, 16, 24 or 32")
        ->type_name("N")
        ->check(CLI::IsMember({8, 16, 24, 32}));
    app.add_option("--channels", options->m_nChannels, "Number of channels")
        ->type_name("N")
        ->check(CLI::Range(1, kMaxChannels));
    return [options] { return RunConvert(*options); };
}

}  // namespace

const SCommand kConvertCommand = {"convert", "Convert one audio file",
                                  "Example: keloaudio convert in.oga out.flac --rate 48000 --bits 24", DefineConvert};

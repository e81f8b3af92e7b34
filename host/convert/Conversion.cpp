// One conversion from an opened source to a complete file.
#include "host/convert/Conversion.h"

#include <algorithm>
#include <numeric>
#include <utility>
#include <vector>

#include "host/ConvertorWatch.h"
#include "host/Encoders.h"
#include "host/FormatText.h"
#include "host/StopSignal.h"
#include "host/convert/TargetFormat.h"

namespace {

constexpr int kBlockBytes = 65536;

// The source aggregator rounds its requests to this.
constexpr std::int64_t kRequestUnit = 12;

// Less than a hundredth of a second may be the rounding of announced lengths and of the resampler.
constexpr double kShortfallPerSecond = 100;

bool IsSame(const SWavFormat& left, const SWavFormat& right) {
    return SHeldWavFormat{left, kIntegerSamples} == SHeldWavFormat{right, kIntegerSamples};
}

// Whole sample frames of `format` in whole units, near kBlockBytes.
std::vector<unsigned char> MakeBlock(const SWavFormat& format) {
    const std::int64_t unit = std::lcm(kRequestUnit, BlockSizeOf(format));
    return std::vector<unsigned char>(static_cast<std::size_t>(unit * std::max<std::int64_t>(1, kBlockBytes / unit)));
}

}  // namespace

CConversion::CConversion(const CPluginSession& session, const SConvertOptions& options, const CSourceName& name,
                         std::string output, std::string extension)
    : m_session(session),
      m_options(options),
      m_name(name),
      m_strOutput(std::move(output)),
      m_strExtension(std::move(extension)),
      m_pEncoder(FindEncoder(session, m_strOutput, m_strExtension)),
      m_source(std::make_unique<CSourceStream>(session, name)) {
    m_report.m_source = {m_source->GetRealFormat(), m_source->GetAnnouncedFrames()};
}

SConversionReport CConversion::Run(const std::string& output, const CProgressListener& listener) {
    const CConvertorRecord record;
    const std::string path = m_source->GetLocalPath();
    SWavFormat format = AimedFormat(m_options.m_format, m_report.m_source.m_format,
                                    ExtensionOf(path.empty() ? m_name.GetURL() : path), m_strExtension);
    auto target = MakeTarget(output, format);
    // The source converts: a target's convertor cannot be emptied at the end.
    if (!IsSame(target->GetFileFormat(), format)) {
        RequireAccepted(format, target->GetFileFormat());
        format = target->GetFileFormat();
        target = MakeTarget(output, format);
    }
    Warn(target->GetWarning());
    m_source->Deliver(format);
    Transfer(*target, format, listener);
    m_report.m_nClippedSamples = record.GetClippedSamples();
    target.reset();
    m_source.reset();
    return std::move(m_report);
}

std::unique_ptr<CTargetStream> CConversion::MakeTarget(const std::string& path, const SWavFormat& format) const {
    STargetRequest request{m_pEncoder, m_strOutput, path, m_strExtension, m_options.m_settings, m_source->GetTags()};
    return std::make_unique<CTargetStream>(m_session, std::move(request), format);
}

// The number of bits is taken as the nearest that the file format has; the rest only if nobody asked for it.
void CConversion::RequireAccepted(const SWavFormat& aimed, const SWavFormat& accepted) const {
    const SFormatOptions& asked = m_options.m_format;
    const bool rateForced = asked.m_nSampleRate != 0 && accepted.nSampleRate != aimed.nSampleRate;
    const bool channelsForced = asked.m_nChannels != 0 && accepted.nChannels != aimed.nChannels;
    if (!rateForced && !channelsForced) return;
    throw CFailure(m_strOutput,
                   "no " + FormatText(aimed) + " in this file format (it takes " + FormatText(accepted) + ")");
}

// Moves every block and returns the number of sample frames.
std::uint64_t CConversion::Pump(CExcerpt& excerpt, CTargetStream& target, const SWavFormat& format,
                                const CProgressListener& listener) const {
    std::vector<unsigned char> block = MakeBlock(format);
    const double sourceRate = m_report.m_source.m_format.m_format.nSampleRate;
    const double announced = static_cast<double>(excerpt.GetAnnouncedFrames()) / sourceRate;
    std::uint64_t frames = 0;
    for (;;) {
        RequireNoStopSignal(m_strOutput);
        const int read = excerpt.Read(block.data(), static_cast<int>(block.size()));
        if (read == 0) return frames;
        target.Write(block.data(), read);
        frames += static_cast<std::uint64_t>(read / BlockSizeOf(format));
        const double seconds = static_cast<double>(frames) / format.nSampleRate;
        listener(announced > 0 ? std::min(1.0, seconds / announced) : 0, seconds);
    }
}

void CConversion::Transfer(CTargetStream& target, const SWavFormat& format, const CProgressListener& listener) {
    CExcerpt excerpt(*m_source, format, m_options.m_excerpt, m_name.GetGiven());
    excerpt.Start();
    target.Start();
    const std::uint64_t frames = Pump(excerpt, target, format, listener);
    target.End();
    m_source->End();
    RequireNoStopSignal(m_strOutput);
    m_report.m_source.m_nFrames = excerpt.GetAnnouncedFrames();
    m_report.m_target = {{target.GetFileFormat(), kIntegerSamples}, frames};
    NoteShortfall();
    // The announced length is rounded or unknown for some sources; without resampling the count is exact.
    if (format.nSampleRate == m_report.m_source.m_format.m_format.nSampleRate) m_report.m_source.m_nFrames = frames;
}

void CConversion::Warn(const std::string& warning) {
    if (warning.empty()) return;
    m_report.m_strWarning += (m_report.m_strWarning.empty() ? "" : "; ") + warning;
}

// Some formats only estimate their length, so a shortfall is worth a word but is no failure.
void CConversion::NoteShortfall() {
    const SStreamReport& source = m_report.m_source;
    const std::int32_t rate = source.m_format.m_format.nSampleRate;
    const double delivered =
        static_cast<double>(m_report.m_target.m_nFrames) * rate / m_report.m_target.m_format.m_format.nSampleRate;
    if ((static_cast<double>(source.m_nFrames) - delivered) * kShortfallPerSecond < rate) return;
    Warn("ended early: " + std::to_string(source.m_nFrames) + " frames announced, about " +
         std::to_string(static_cast<std::uint64_t>(delivered)) + " delivered");
}

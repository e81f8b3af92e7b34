// One conversion from an opened source to a complete file.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "host/Failure.h"
#include "host/SourceStream.h"
#include "host/TargetStream.h"
#include "host/convert/ConvertOptions.h"
#include "host/convert/Excerpt.h"

struct SStreamReport {
    SHeldWavFormat m_format;
    std::uint64_t m_nFrames;
};

struct SConversionReport {
    SStreamReport m_source;
    SStreamReport m_target;
    std::uint64_t m_nClippedSamples = 0;
    std::string m_strWarning;  // about the source or the tags; empty for none
};

// Hears how far a conversion is: the part of the whole, 0 while that is unknown, and the seconds of sound written.
using CProgressListener = std::function<void(double part, double seconds)>;

// Opens the source at once and keeps it; the streams are gone when Run returns. Throws CFailure. One thread.
// [stream-thread]
class CConversion {
public:
    // `output` is the name for messages; `extension` chooses the encoder.
    CConversion(const CPluginSession& session, const SConvertOptions& options, const CSourceName& name,
                std::string output, std::string extension);

    // Writes the file `output`. Once.
    SConversionReport Run(const std::string& output, const CProgressListener& listener);

private:
    std::unique_ptr<CTargetStream> MakeTarget(const std::string& path, const SWavFormat& format) const;
    void RequireAccepted(const SWavFormat& aimed, const SWavFormat& accepted) const;
    std::uint64_t Pump(CExcerpt& excerpt, CTargetStream& target, const SWavFormat& format,
                       const CProgressListener& listener) const;
    void Transfer(CTargetStream& target, const SWavFormat& format, const CProgressListener& listener);
    void NoteShortfall();
    void Warn(const std::string& warning);

    const CPluginSession& m_session;
    const SConvertOptions& m_options;
    const CSourceName& m_name;
    std::string m_strOutput;
    std::string m_strExtension;
    CComPtr<IAudioTargetOpener> m_pEncoder;
    std::unique_ptr<CSourceStream> m_source;
    SConversionReport m_report{};
};

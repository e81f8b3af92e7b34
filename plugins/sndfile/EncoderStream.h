// A sound file that is being written, as an encoder stream.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "plugins/sndfile/OutputFile.h"
#include "plugins/sndfile/OutputFormat.h"
#include "plugins/sndfile/SampleWriter.h"
#include "plugins/sndfile/StreamObject.h"
#include "stream/Process.h"
#include "stream/RawWriter.h"

// Made by CEncoderTarget with a count of 0. The file is there from Start on; a stream that goes without End completes
// and closes it. One stream is driven by one thread at a time. [stream-thread]
class CEncoderStream final : public CStreamObject<IProcess, IAudioRawWriter> {
public:
    CEncoderStream(const std::string& path, const SOutputFormat& output, const SWavFormat& format);

    int InnerQueryInterface(unsigned long identity, void** face) override;

    bool Start(IStatus** status) override;

    // Closes the file in any case. False when the file is not whole, be it from closing or from an earlier write.
    bool End(IStatus** status) override;
    bool IsInProcess() override { return m_file != nullptr; }

    // No bytes are as good as any: a converting target may have nothing to pass on yet.
    bool RawWrite(unsigned char* data, int size, EAudioRawState& state, IStatus** status) override;
    SWavFormat GetRawFormat() override { return m_format; }

private:
    bool WriteFrames(const unsigned char* data, int size, IStatus** status);

    std::string m_strPath;
    const SOutputFormat& m_output;
    SWavFormat m_format;
    CSampleWriter m_writer;
    std::unique_ptr<COutputFile> m_file;
    std::uint64_t m_nBytes = 0;  // of samples in the file
};

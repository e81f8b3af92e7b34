// One source, opened and read through the manager.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "com/ComPtr.h"
#include "host/PluginSession.h"
#include "host/RunningProcess.h"
#include "host/SourceName.h"
#include "host/Tags.h"
#include "stream/RawReader.h"
#include "stream/SourceDetails.h"

// Opened once, and a remote source fetched once: the decoder tells the format, the length and the tags, then the source
// aggregator is built around the same decoder. Every failure is a CFailure that names the source, the reason and, once
// decoders were asked, who they are. One thread. [stream-thread]
class CSourceStream {
public:
    CSourceStream(const CPluginSession& session, const CSourceName& name);

    CSourceStream(const CSourceStream&) = delete;
    CSourceStream& operator=(const CSourceStream&) = delete;

    // The decoder's own samples, before any conversion.
    SHeldWavFormat GetRealFormat() const { return m_realFormat; }

    // The same without its qualifier, as the decoder tells it to whoever does not ask for advanced formats.
    SWavFormat GetPlainFormat() const { return m_plainFormat; }

    // Announced length in sample frames of GetRealFormat(), 0 when unknown.
    std::uint64_t GetAnnouncedFrames() const;

    const CTagTexts& GetTags() const { return m_tags; }

    // Positions in sample frames of GetRealFormat().
    std::vector<std::uint64_t> GetIndexPoints() const;

    // The file that the decoder reads, which for a remote source is a local copy; empty when the decoder does not tell.
    std::string GetLocalPath() const;

    // The file name of the plug-in whose code the decoder is; empty when it cannot be told.
    std::string GetPluginFile() const;

    // Read delivers samples of `wanted` from here on. Once, before Start.
    void Deliver(const SWavFormat& wanted);

    void Start();

    // Moves to a sample frame of GetRealFormat(), after Start and before the first Read. False: nothing has moved, the
    // decoder does not seek.
    bool SeekTo(std::uint64_t frame);

    // Fills the buffer with the next bytes and returns their count; 0 is the end.
    int Read(unsigned char* buffer, int size);

    void End();

private:
    CComPtr<IUnknown> Open(const SWavFormat* wanted) const;
    void ReadFormats();
    bool Wrap(const SWavFormat& wanted);
    std::string StartFailureText(IStatus* status) const;

    template <typename TCall>
    auto Ask(const TCall& call) const;

    int ReadOnce(unsigned char* buffer, int size, EAudioRawState& state);

    [[noreturn]] void Fail(const std::string& reason) const;

    const CPluginSession& m_session;
    const CSourceName& m_name;

    // The decoder, then the aggregator around it.
    CComPtr<IUnknown> m_pStream;

    // Faces of the bare decoder, which give their references back before the stream ends.
    CComPtr<IAudioRawBlockInfo> m_pBlockInfo;
    CComPtr<ISeekable> m_pSeekable;

    // Sample frames per second of the lengths that m_pBlockInfo tells.
    std::int32_t m_nLengthRate = 0;

    SHeldWavFormat m_realFormat{};
    SWavFormat m_plainFormat{};
    SWavFormat m_wanted{};
    CTagTexts m_tags;
    CComPtr<IAudioRawReader> m_pReader;
    CRunningProcess m_process;
};

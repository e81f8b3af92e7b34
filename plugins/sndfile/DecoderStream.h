// A sound file as a decoder stream.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "plugins/sndfile/SampleReader.h"
#include "plugins/sndfile/StreamObject.h"
#include "plugins/sndfile/Tags.h"
#include "stream/Process.h"
#include "stream/RawReader.h"
#include "stream/SourceDetails.h"

// Made by CDecoder with a count of 0. One stream is driven by one thread at a time. [stream-thread]
class CDecoderStream final : public CStreamObject<IProcess, IAudioRawReader, IAudioRawBlockInfo, ISeekable, IInfoReader,
                                                  IIndexArray, ISourceName> {
public:
    CDecoderStream(const char* path, std::unique_ptr<CSoundFile> file);

    // ISeekable only for seekable files, IIndexArray only for files with cues. IInfoReader for every file: a source
    // completes title and artist from the file's name only where it is offered.
    int InnerQueryInterface(unsigned long identity, void** face) override;

    // Starts at the first frame, also after an earlier End.
    bool Start(IStatus** status) override;
    bool End(IStatus** status) override;
    bool IsInProcess() override { return m_bInProcess; }

    SWavFormat GetRawFormat() override { return m_reader.Format(); }
    bool RawRead(unsigned char* buffer, int size, int* read, EAudioRawState& state, IStatus** status) override;
    std::uint64_t GetRawLen() override;

    std::uint64_t GetPos() override { return static_cast<std::uint64_t>(m_reader.Position()); }
    std::int64_t GetBlockSize() override { return BlockSizeOf(m_reader.Format()); }
    std::uint64_t GetDataLength() override { return static_cast<std::uint64_t>(m_reader.Length()); }

    bool Seek(unsigned long position, IStatus** status) override;

    const char* GetTitle() override { return Tag(&STags::m_strTitle); }
    const char* GetArtist() override { return Tag(&STags::m_strArtist); }
    const char* GetAlbum() override { return Tag(&STags::m_strAlbum); }
    const char* GetYear() override { return Tag(&STags::m_strYear); }
    const char* GetGenre() override { return Tag(&STags::m_strGenre); }

    int GetIndexNumber() override { return static_cast<int>(m_vCuePoints.size()); }
    std::uint64_t GetIndex(int n) override;

    void ReservedFirst() override {}
    const char* GetSourceName() override { return m_strPath.c_str(); }

private:
    bool ReadFrames(unsigned char* buffer, int size, int* read, EAudioRawState& state, IStatus** status);
    bool SeekFrames(unsigned long position, IStatus** status);
    const char* Tag(std::string STags::*tag) const { return (m_tags.*tag).c_str(); }

    std::string m_strPath;
    STags m_tags;
    std::vector<std::uint64_t> m_vCuePoints;
    CSampleReader m_reader;
    bool m_bInProcess = false;
};

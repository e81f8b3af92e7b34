// A sound file opened for reading.
#pragma once

#include <memory>
#include <string>

#include "plugins/shared/FileDescriptor.h"
#include "plugins/sndfile/ChannelOrder.h"
#include "plugins/sndfile/FileSurvey.h"
#include "plugins/sndfile/SndFileHandle.h"

// Owns the file and the codec's handle. [stream-thread]
class CSoundFile {
public:
    // Throws the reason when the file cannot be opened or read as audio. [any thread]
    static std::unique_ptr<CSoundFile> Open(const std::string& path);

    CSoundFile(CFileDescriptor descriptor, std::string formatName);

    CSoundFile(const CSoundFile&) = delete;
    CSoundFile& operator=(const CSoundFile&) = delete;

    // A new codec handle at the first frame of the same file. Throws the reason when there is none any more.
    void Reopen();

    SNDFILE* Handle() const { return m_handle.get(); }
    const SF_INFO& Info() const { return m_info; }
    // Frames; 0 where neither the codec nor the file tells a number that can be.
    sf_count_t KnownLength() const;
    // Whether the codec can go to any frame; every file can be reopened.
    bool IsSeekable() const { return m_info.seekable != 0; }
    // The last frame that the codec's own seek is sure to find.
    sf_count_t LastSureFrame() const;

    CChannelOrder ChannelOrder() const;

    // Such as "FLAC"; empty when the file's first bytes do not tell.
    const std::string& FormatName() const { return m_strFormatName; }

    // Why a sound that ends after `frames` frames is not the whole one; empty when it is.
    std::string ShortfallAt(sf_count_t frames) const;

private:
    void OpenHandle();
    void Promise();

    CFileDescriptor m_descriptor;
    std::string m_strFormatName;
    SFileSurvey m_survey;
    std::unique_ptr<CSplicedFile> m_spliced;  // what the codec reads, unless it reads the file itself
    CSndFileHandle m_handle;
    SF_INFO m_info = {};
};

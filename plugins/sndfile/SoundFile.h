// A sound file opened for reading.
#pragma once

#include <memory>
#include <string>

#include "plugins/sndfile/FileDescriptor.h"
#include "plugins/sndfile/SndFileHandle.h"

// Owns the file and the codec's handle. [stream-thread]
class CSoundFile {
public:
    // Null when the file cannot be opened or read as audio; `reason` then tells why. [any thread]
    static std::unique_ptr<CSoundFile> Open(const char* path, std::string& reason);

    CSoundFile(CFileDescriptor descriptor, CSndFileHandle handle, const SF_INFO& info, std::string formatName);

    // A new codec handle at the first frame of the same file. False leaves no usable handle.
    bool Reopen();

    SNDFILE* Handle() const { return m_handle.get(); }
    const SF_INFO& Info() const { return m_info; }
    // Whether the codec can go to any frame; every file can be reopened.
    bool IsSeekable() const { return m_info.seekable != 0; }

    // Such as "FLAC"; empty when the file's first bytes do not tell.
    const std::string& FormatName() const { return m_strFormatName; }

private:
    CFileDescriptor m_descriptor;
    CSndFileHandle m_handle;
    SF_INFO m_info;
    std::string m_strFormatName;
};

// A sound file opened for writing.
#pragma once

#include <memory>
#include <string>

#include "plugins/sndfile/FileDescriptor.h"
#include "plugins/sndfile/SndFileHandle.h"

// Owns the file and the codec's handle, and keeps the first error of the system: libsndfile drops those that happen
// while it closes. [stream-thread]
class COutputFile {
public:
    // Creates the file or empties it. Null on failure; `reason` then tells why.
    static std::unique_ptr<COutputFile> Create(const std::string& path, const SF_INFO& info, std::string& reason);

    explicit COutputFile(CFileDescriptor descriptor) : m_descriptor(std::move(descriptor)) {}

    COutputFile(const COutputFile&) = delete;
    COutputFile& operator=(const COutputFile&) = delete;

    SNDFILE* Handle() const { return m_handle.get(); }

    // What went wrong so far; empty when nothing did.
    std::string Reason() const;

    // Completes and closes the file. Empty, or what went wrong with it from creation on.
    std::string Close();

private:
    static sf_count_t Length(void* self);
    static sf_count_t Seek(sf_count_t offset, int whence, void* self);
    static sf_count_t Write(const void* data, sf_count_t count, void* self);
    static sf_count_t Tell(void* self);

    void NoteError(int error);

    CFileDescriptor m_descriptor;
    int m_nError = 0;
    CSndFileHandle m_handle;  // closed first: closing writes
};

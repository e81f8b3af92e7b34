// A sound file opened for writing.
#pragma once

#include <memory>
#include <string>

#include "plugins/shared/FileDescriptor.h"
#include "plugins/sndfile/SndFileHandle.h"

// Owns the file and the codec's handle, and keeps the first error of the system. The codec does not learn of it: some
// write what failed again, or leak. Nothing is written any more then. [stream-thread]
class COutputFile {
public:
    // Creates the file or empties it, and puts `lead` in front of what the codec writes. Throws the reason.
    COutputFile(const std::string& path, const std::string& lead, const SF_INFO& info);

    COutputFile(const COutputFile&) = delete;
    COutputFile& operator=(const COutputFile&) = delete;

    SNDFILE* Handle() const { return m_handle.get(); }

    // What went wrong so far; empty when nothing did.
    std::string Reason() const;

    // Completes the file as far as the codec goes.
    void CloseHandle();

    // After CloseHandle: what the codec wrote last at the beginning, the size of the file, other bytes at its start.
    const std::string& Header() const { return m_strHeader; }
    std::uint64_t Size() const;
    void ReplaceStart(const std::string& bytes);

    // After CloseHandle.
    void Close() { NoteError(m_descriptor.Close()); }

private:
    static sf_count_t Length(void* self);
    static sf_count_t Seek(sf_count_t offset, int whence, void* self);
    static sf_count_t Write(const void* data, sf_count_t count, void* self);
    static sf_count_t Tell(void* self);

    void WriteAt(const char* bytes, sf_count_t count, sf_count_t position);
    void NoteError(int error);

    CFileDescriptor m_descriptor;
    sf_count_t m_nLead;
    sf_count_t m_nPosition = 0;  // behind the lead
    std::string m_strHeader;
    int m_nError = 0;
    int m_nCodecError = SF_ERR_NO_ERROR;  // that closing the handle ended with
    CSndFileHandle m_handle;              // closed first: closing writes
};

// The bytes of a file for libavformat.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "plugins/libav/LibavObjects.h"

// An open regular file. Any number of readers may share it. [any thread]
class CInputFile {
public:
    // Throws the reason why the file cannot be read as audio.
    explicit CInputFile(const std::string& path);
    ~CInputFile();

    CInputFile(const CInputFile&) = delete;
    CInputFile& operator=(const CInputFile&) = delete;

    int Descriptor() const { return m_nDescriptor; }

private:
    int m_nDescriptor;
};

// One reader of a file with a position of its own. libavformat gets these bytes and no name: so it can open nothing by
// itself, and no name makes it take any bytes for headerless audio. [stream-thread]
class CFileReader {
public:
    explicit CFileReader(std::shared_ptr<const CInputFile> file);
    ~CFileReader();

    CFileReader(const CFileReader&) = delete;
    CFileReader& operator=(const CFileReader&) = delete;

    AVIOContext* Context() const { return m_pContext; }

private:
    static int Read(void* self, std::uint8_t* buffer, int size);
    static std::int64_t Seek(void* self, std::int64_t offset, int whence);

    std::shared_ptr<const CInputFile> m_file;
    AVIOContext* m_pContext;
    std::int64_t m_nPosition = 0;
};

// Files that are written: what the author of an encoder writes.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "sdk/Settings.h"
#include "sdk/Sound.h"

// What a host has said about one output.
struct STargetRequest {
    std::string m_strPath;       // may be a temporary name
    std::string m_strExtension;  // one of the component's own, as it lists it: it chooses the file format
    STags m_tags;
    CSettings m_settings;
};

// One file from its creation to its end. Every operation may throw: what() is the reason that a person reads, without
// the file's name. The destructor closes a file that Finish has not, whole or not. [stream-thread]
class CSoundWriter {
public:
    CSoundWriter() = default;
    virtual ~CSoundWriter() = default;

    CSoundWriter(const CSoundWriter&) = delete;
    CSoundWriter& operator=(const CSoundWriter&) = delete;

    // Takes `frames` (at least 1) sample frames. After a failure no further ones follow.
    virtual void Write(const unsigned char* data, std::int64_t frames) = 0;

    // Completes and closes the file; throws when it is not whole. After a failed Write the stream refuses its end
    // whatever is thrown here. Nothing follows.
    virtual void Finish() = 0;
};

// The file formats of an encoder. Every operation but HasTag may throw the reason against the request. [any thread]
class CFileEncoding {
public:
    // What a file takes when samples of `format` are at hand: at best the same, else the nearest. The target converts.
    virtual SWavFormat AcceptFormat(const STargetRequest& request, const SWavFormat& format) = 0;

    // Creates the file for samples of `accepted`, which AcceptFormat has given.
    virtual std::unique_ptr<CSoundWriter> CreateWriter(const STargetRequest& request, const SWavFormat& accepted) = 0;

    // Whether the file format has a place for `tag`.
    virtual bool HasTag(const STargetRequest& /*request*/, ETag /*tag*/) { return false; }

    // Throws for a text that the file format cannot hold. `text` is UTF-8.
    virtual void CheckTag(const STargetRequest& /*request*/, ETag /*tag*/, const std::string& /*text*/) {}

    // The settings of the file format with their defaults.
    virtual std::vector<SSetting> GetSettings(const std::string& /*extension*/) { return {}; }

    // Throws for a value that the setting does not take. A list of values such as "low|high" is checked already.
    virtual void CheckSetting(const STargetRequest& /*request*/, const std::string& /*name*/,
                              const std::string& /*value*/) {}

protected:
    ~CFileEncoding() = default;
};

// A file that an encoder has written, read back.
#pragma once

#include <optional>
#include <string>

#include "host/Tags.h"
#include "host/validate/SampleSound.h"
#include "host/validate/Trial.h"

struct SDecodedFile {
    SWavFormat m_format{};
    CBytes m_sound;
    CTagTexts m_tags;

    std::int64_t Frames() const { return static_cast<std::int64_t>(m_sound.size()) / BlockSizeOf(m_format); }
};

// With a decoder of the plug-in that lists the file's extension, else with one of the other plug-ins. Empty when nobody
// lists it. Throws CFinding when whoever does cannot read it.
std::optional<SDecodedFile> DecodeFile(CTrial& trial, const std::string& path);

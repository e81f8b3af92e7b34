// A decoder plug-in to copy: files of a small format named "plain". Replace the format by your own.
//
// A plain file is the four characters "PLN1", sample rate (32 bits), channels (16 bits), bits per sample (16 bits) and
// a title of 64 bytes, all little-endian, and then packed little-endian PCM to the end of the file.
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "sdk/Decoder.h"
#include "sdk/Plugin.h"
#include "sdk/Utf8.h"

namespace {

struct SPlainHeader {
    char m_strMagic[4];
    std::uint32_t m_nSampleRate;
    std::uint16_t m_nChannels;
    std::uint16_t m_nBitsPerSample;
    char m_strTitle[64];
};

constexpr std::uint32_t kMaxSampleRate = 768000;
constexpr std::uint16_t kMaxChannels = 8;

// Opening a pipe would wait until somebody writes to it.
std::ifstream OpenRegularFile(const std::string& path) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error)) Refuse(error ? error.message() : "not a regular file");
    std::ifstream file(path, std::ios::binary);
    if (!file) Refuse(SystemReason(errno));
    return file;
}

// One open file. Whatever is thrown reaches the host as a false result with these words. [stream-thread]
class CPlainSound final : public CSound {
public:
    explicit CPlainSound(const std::string& path) : m_file(OpenRegularFile(path)) {
        ReadHeader();
        m_file.seekg(0, std::ios::end);
        const std::int64_t bytes = m_file.tellg() - kDataOffset;
        m_nFrames = static_cast<std::uint64_t>(bytes / BlockSizeOf(GetFormat()));
        Seek(0);
    }

    SWavFormat GetFormat() const override {
        return {static_cast<std::int32_t>(m_header.m_nSampleRate), m_header.m_nBitsPerSample, m_header.m_nChannels};
    }

    std::uint64_t GetLength() const override { return m_nFrames; }

    std::int64_t Read(unsigned char* buffer, std::int64_t frames) override {
        const auto left = static_cast<std::int64_t>(m_nFrames - m_nPosition);
        frames = std::min(frames, left);
        m_file.read(reinterpret_cast<char*>(buffer), frames * BlockSizeOf(GetFormat()));
        if (!m_file) Refuse("cannot be read");
        m_nPosition += static_cast<std::uint64_t>(frames);
        return frames;
    }

    bool IsSeekable() const override { return true; }

    void Seek(std::uint64_t frame) override {
        m_file.clear();
        m_file.seekg(kDataOffset + static_cast<std::int64_t>(frame) * BlockSizeOf(GetFormat()));
        if (!m_file) Refuse("cannot be positioned");
        m_nPosition = frame;
    }

    STags GetTags() const override {
        STags tags;
        tags.m_strTitle = AsUtf8({m_header.m_strTitle, strnlen(m_header.m_strTitle, sizeof(m_header.m_strTitle))});
        return tags;
    }

private:
    static constexpr std::int64_t kDataOffset = sizeof(SPlainHeader);

    void ReadHeader() {
        m_file.read(reinterpret_cast<char*>(&m_header), sizeof(m_header));
        if (!m_file || std::memcmp(m_header.m_strMagic, "PLN1", 4) != 0) Refuse("not a plain file");
        const std::uint16_t bits = m_header.m_nBitsPerSample;
        const bool knownBits = bits == 8 || bits == 16 || bits == 24 || bits == 32;
        if (!knownBits || m_header.m_nChannels < 1 || m_header.m_nChannels > kMaxChannels ||
            m_header.m_nSampleRate < 1 || m_header.m_nSampleRate > kMaxSampleRate) {
            Refuse("a plain file of an unknown sample format");
        }
    }

    std::ifstream m_file;
    SPlainHeader m_header{};
    std::uint64_t m_nFrames = 0;
    std::uint64_t m_nPosition = 0;
};

class CPlainDecoder final : public CDecoderComponent<> {
public:
    CPlainDecoder() : CDecoderComponent("Plain Decoder", {"plain"}) {}

private:
    std::unique_ptr<CSound> OpenSound(const std::string& path, EAudioFeature /*level*/) override {
        return std::make_unique<CPlainSound>(path);
    }
};

}  // namespace

KELO_PLUGIN(CPlainDecoder);

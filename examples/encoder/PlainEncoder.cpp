// An encoder plug-in to copy: files of a small format named "plain". Replace the format by your own.
//
// A plain file is the four characters "PLN1", sample rate (32 bits), channels (16 bits), bits per sample (16 bits) and
// a title of 64 bytes, all little-endian, and then packed little-endian PCM to the end of the file.
#include <algorithm>
#include <cerrno>
#include <cstdio>

#include "sdk/Encoder.h"
#include "sdk/Plugin.h"

namespace {

struct SPlainHeader {
    char m_strMagic[4];
    std::uint32_t m_nSampleRate;
    std::uint16_t m_nChannels;
    std::uint16_t m_nBitsPerSample;
    char m_strTitle[64];
};

constexpr std::int32_t kMaxSampleRate = 768000;
constexpr std::int32_t kMaxChannels = 8;
constexpr std::int32_t kMaxBits = 32;

SPlainHeader HeaderOf(const STargetRequest& request, const SWavFormat& format) {
    SPlainHeader header{{'P', 'L', 'N', '1'},
                        static_cast<std::uint32_t>(format.nSampleRate),
                        static_cast<std::uint16_t>(format.nChannels),
                        static_cast<std::uint16_t>(format.nBitsPerSample),
                        {}};
    request.m_tags.m_strTitle.copy(header.m_strTitle, sizeof(header.m_strTitle));
    return header;
}

// One file that is being written. Whatever is thrown reaches the host as a false result with these words.
// [stream-thread]
class CPlainWriter final : public CSoundWriter {
public:
    CPlainWriter(const STargetRequest& request, const SWavFormat& format)
        : m_nBlockSize(static_cast<std::size_t>(BlockSizeOf(format))),
          m_file(std::fopen(request.m_strPath.c_str(), "wb")) {
        if (m_file == nullptr) Refuse("cannot be written: " + SystemReason(errno));
        const SPlainHeader header = HeaderOf(request, format);
        WriteBytes(&header, sizeof(header));
    }

    void Write(const unsigned char* data, std::int64_t frames) override {
        WriteBytes(data, static_cast<std::size_t>(frames) * m_nBlockSize);
    }

    // Closing tells of what was still to be written, and not of what failed before.
    void Finish() override {
        const bool failed = std::ferror(m_file.get()) != 0;
        if (std::fclose(m_file.release()) != 0) Refuse("not written completely: " + SystemReason(errno));
        if (failed) Refuse("not written completely");
    }

private:
    struct SCloser {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    void WriteBytes(const void* data, std::size_t bytes) {
        if (std::fwrite(data, 1, bytes, m_file.get()) != bytes) Refuse("cannot be written: " + SystemReason(errno));
    }

    std::size_t m_nBlockSize;
    std::unique_ptr<std::FILE, SCloser> m_file;
};

class CPlainEncoder final : public CEncoderComponent<> {
public:
    CPlainEncoder() : CEncoderComponent("Plain Encoder", {"plain"}) {}

private:
    // The source's own format, but for widths that no plain file has: the target then converts.
    SWavFormat AcceptFormat(const STargetRequest& /*request*/, const SWavFormat& format) override {
        if (format.nChannels < 1 || format.nChannels > kMaxChannels) {
            Refuse("a plain file has no " + std::to_string(format.nChannels) + " channels");
        }
        if (format.nSampleRate < 1 || format.nSampleRate > kMaxSampleRate) {
            Refuse("a plain file has no " + std::to_string(format.nSampleRate) + " Hz");
        }
        const std::int32_t bytes = (std::min(format.nBitsPerSample, kMaxBits) + 7) / 8;
        return {format.nSampleRate, 8 * bytes, format.nChannels};
    }

    std::unique_ptr<CSoundWriter> CreateWriter(const STargetRequest& request, const SWavFormat& accepted) override {
        return std::make_unique<CPlainWriter>(request, accepted);
    }

    bool HasTag(const STargetRequest& /*request*/, ETag tag) override { return tag == TAG_TITLE; }

    // A longer title would have to be cut, perhaps inside a character.
    void CheckTag(const STargetRequest& /*request*/, ETag /*tag*/, const std::string& text) override {
        if (text.size() > sizeof(SPlainHeader::m_strTitle)) {
            Refuse("a title of " + std::to_string(text.size()) + " bytes, where a plain file holds 64");
        }
    }
};

}  // namespace

KELO_PLUGIN(CPlainEncoder);

// A file that is being written, as an encoder stream.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include "sdk/SoundWriter.h"
#include "sdk/StreamObject.h"

// Made by a target with a count of 0. The file is there from Start on. One stream is driven by one thread at a time.
// [stream-thread]
class CEncoderStream final : public CStreamObject<IAudioRawWriter> {
public:
    // `encoding` outlives the stream. Throws for a format without bytes.
    CEncoderStream(CFileEncoding& encoding, STargetRequest request, const SWavFormat& accepted)
        : CStreamObject(request.m_strPath),
          m_encoding(encoding),
          m_request(std::move(request)),
          m_format(accepted),
          m_nBlockSize(BlockSizeOf(accepted)) {
        if (m_nBlockSize < 1) Refuse("samples without bytes cannot be written");
    }

    // No bytes are as good as any: a converting target may have nothing to pass on yet.
    bool RawWrite(unsigned char* data, int size, EAudioRawState& /*state*/, IStatus** status) override {
        return Guard(status, [&] {
            if (!IsInProcess()) Refuse("write before start");
            if (size < 0) return LoseSamples();
            if (m_bBroken) Refuse("an earlier write has failed");
            if (size == 0) return true;
            if (data == nullptr) throw CBadArgument();
            if (size % m_nBlockSize != 0) {
                Refuse(std::to_string(size) + " bytes are not whole frames of " + std::to_string(m_nBlockSize));
            }
            m_bBroken = true;  // left standing by a failure: nobody knows what the file holds then
            m_writer->Write(data, size / m_nBlockSize);
            m_bBroken = false;
            return true;
        });
    }

    SWavFormat GetRawFormat() override { return m_format; }

private:
    void Begin() override {
        m_writer = m_encoding.CreateWriter(m_request, m_format);
        m_bBroken = false;
    }

    // A negative size is what a target passes on when its conversion has failed: the convertor's status stands.
    bool LoseSamples() {
        m_bBroken = true;
        return false;
    }

    // Closes the file in any case. A writer may know of its own last step alone.
    void Finish() override {
        const std::unique_ptr<CSoundWriter> writer = std::move(m_writer);
        writer->Finish();
        if (m_bBroken) Refuse("not written completely: an earlier write has failed");
    }

    CFileEncoding& m_encoding;
    STargetRequest m_request;
    SWavFormat m_format;
    std::int64_t m_nBlockSize;
    std::unique_ptr<CSoundWriter> m_writer;
    bool m_bBroken = false;  // by a failed write
};

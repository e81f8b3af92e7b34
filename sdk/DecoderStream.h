// An open sound as a decoder stream.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "sdk/Sound.h"
#include "sdk/StreamObject.h"

// Offers ISeekable only for seekable sounds and IIndexArray only for sounds with index points, and IInfoReader for
// every sound: a source completes title and artist from the file's name only where that is offered. Made by
// CDecoderComponent with a count of 0. One stream is driven by one thread at a time. [stream-thread]
class CDecoderStream final : public CStreamObject<IAudioRawReader, IAudioRawBlockInfo, ISeekable, IInfoReader,
                                                  IIndexArray, ISourceName, IAdvancedFormat> {
public:
    // The path is the source's name and the subject of refusals. Throws for a sound without a format.
    CDecoderStream(std::string path, std::unique_ptr<CSound> sound)
        : CStreamObject(std::move(path)),
          m_sound(std::move(sound)),
          m_format(m_sound->GetFormat()),
          m_nBlockSize(BlockSizeOf(m_format)),
          m_tags(m_sound->GetTags()),
          m_vIndexPoints(m_sound->GetIndexPoints()) {
        if (m_nBlockSize < 1) Refuse("a sound of frames without bytes");
    }

    SWavFormat GetRawFormat() override { return m_format; }

    bool RawRead(unsigned char* buffer, int size, int* read, EAudioRawState& state, IStatus** status) override {
        return Guard(status, [&] {
            if (buffer == nullptr || read == nullptr || size <= 0) throw CBadArgument();
            *read = 0;
            RequireProcess("read");
            if (size < m_nBlockSize) {
                Refuse("a buffer of " + std::to_string(size) + " bytes does not hold a frame of " +
                       std::to_string(m_nBlockSize));
            }
            const std::int64_t frames = m_sound->Read(buffer, size / m_nBlockSize);
            m_nPosition += static_cast<std::uint64_t>(frames);
            *read = static_cast<int>(frames * m_nBlockSize);
            state = frames == 0 ? ARS_END : ARS_MORE;
            return true;
        });
    }

    std::uint64_t GetRawLen() override { return GetDataLength() * static_cast<std::uint64_t>(m_nBlockSize); }

    std::uint64_t GetPos() override { return m_nPosition; }
    std::int64_t GetBlockSize() override { return m_nBlockSize; }
    std::uint64_t GetDataLength() override { return m_sound->GetLength(); }

    bool Seek(unsigned long position, IStatus** status) override {
        return Guard(status, [&] {
            // Start goes to the first frame, so a seek before it would be lost.
            RequireProcess("seek");
            const std::uint64_t length = GetDataLength();
            if (length != 0 && position > length) {
                Refuse("frame " + std::to_string(position) + " is beyond the end (" + std::to_string(length) +
                       " frames)");
            }
            m_sound->Seek(position);
            m_nPosition = position;
            return true;
        });
    }

    const char* GetTitle() override { return m_tags.m_strTitle.c_str(); }
    const char* GetArtist() override { return m_tags.m_strArtist.c_str(); }
    const char* GetAlbum() override { return m_tags.m_strAlbum.c_str(); }
    const char* GetYear() override { return m_tags.m_strYear.c_str(); }
    const char* GetGenre() override { return m_tags.m_strGenre.c_str(); }

    int GetIndexNumber() override { return static_cast<int>(m_vIndexPoints.size()); }

    std::uint64_t GetIndex(int n) override {
        return n >= 0 && n < GetIndexNumber() ? m_vIndexPoints[static_cast<std::size_t>(n)] : kNoIndexPoint;
    }

    void ReservedFirst() override {}
    const char* GetSourceName() override { return Path().c_str(); }

    SAdvancedWavFormat GetAdvancedFormat() override { return {{m_format, m_sound->GetFormatQualifier()}, {}}; }

private:
    bool Offers(unsigned long identity) const override {
        if (identity == IID_ISeekable) return m_sound->IsSeekable();
        return identity != IID_IIndexArray || !m_vIndexPoints.empty();
    }

    // Starts at the first frame, also after an earlier End.
    void Begin() override {
        if (m_bUsed) m_sound->Rewind();
        m_bUsed = true;
        m_nPosition = 0;
    }

    void Finish() override {}

    void RequireProcess(const char* operation) {
        if (!IsInProcess()) Refuse(std::string(operation) + " before start");
    }

    std::unique_ptr<CSound> m_sound;
    SWavFormat m_format;
    std::int64_t m_nBlockSize;
    STags m_tags;
    std::vector<std::uint64_t> m_vIndexPoints;
    std::uint64_t m_nPosition = 0;
    bool m_bUsed = false;
};

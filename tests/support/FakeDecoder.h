// A decoder stream that does what its test says.
#pragma once

#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "stream/RawReader.h"
#include "stream/SourceDetails.h"
#include "tests/support/FakeStream.h"

namespace support {

// What a raw read was asked for.
struct SReadCall {
    unsigned char* m_pBuffer;
    int m_nSize;
    int* m_pRead;
    EAudioRawState m_eState;
    IStatus** m_ppStatus;
};

// By default a read fills the buffer with the bytes 0, 1, 2 ... and answers the state m_eState.
struct SDecoderScript : SStreamScript {
    SDecoderScript() { m_denied = {IID_IAdvancedFormat, IID_ISourceName}; }

    SWavFormat m_format{44100, 16, 2};
    bool m_bFormatThrows = false;
    SAdvancedWavFormat m_advanced{{{44100, 16, 2}, 0}, {}};
    std::uint64_t m_nRawLength = 0;
    std::uint64_t m_nPosition = 0;
    std::uint64_t m_nDataLength = 0;
    std::int64_t m_nBlockSize = 4;

    std::function<bool(unsigned char*, int, int*, EAudioRawState&, IStatus**)> m_read;
    EAudioRawState m_eState = ARS_MORE;
    std::vector<SReadCall> m_readCalls;

    bool m_bSeekResult = true;
    std::vector<unsigned long> m_seeks;
    IStatus** m_ppSeekStatus = nullptr;

    const char* m_pTitle = nullptr;
    const char* m_pArtist = nullptr;
    const char* m_pAlbum = nullptr;
    const char* m_pYear = nullptr;
    const char* m_pGenre = nullptr;
    const char* m_pSourceName = nullptr;
    std::vector<std::uint64_t> m_indexes;
};

// Offers every interface of a decoder; IAdvancedFormat and ISourceName are denied until the script allows them.
class CFakeDecoder final : public CFakeStream<SDecoderScript> {
public:
    explicit CFakeDecoder(SDecoderScript& script)
        : CFakeStream(script),
          m_reader(*this, "IAudioRawReader"),
          m_blockInfo(*this, "IAudioRawBlockInfo"),
          m_infoReader(*this, "IInfoReader"),
          m_seekable(*this, "ISeekable"),
          m_indexArray(*this, "IIndexArray"),
          m_advancedFormat(*this, "IAdvancedFormat"),
          m_sourceName(*this, "ISourceName") {}

protected:
    void* FaceOf(unsigned long identity) override {
        switch (identity) {
            case IID_IAudioRawReader:
                return static_cast<IAudioRawReader*>(&m_reader);
            case IID_IAudioRawBlockInfo:
                return static_cast<IAudioRawBlockInfo*>(&m_blockInfo);
            case IID_IInfoReader:
                return static_cast<IInfoReader*>(&m_infoReader);
            case IID_ISeekable:
                return static_cast<ISeekable*>(&m_seekable);
            case IID_IIndexArray:
                return static_cast<IIndexArray*>(&m_indexArray);
            case IID_IAdvancedFormat:
                return static_cast<IAdvancedFormat*>(&m_advancedFormat);
            case IID_ISourceName:
                return static_cast<ISourceName*>(&m_sourceName);
            default:
                return nullptr;
        }
    }

private:
    class CReaderFace final : public CLoggedFace<IAudioRawReader, CFakeDecoder> {
    public:
        using CLoggedFace::CLoggedFace;
        SWavFormat GetRawFormat() override {
            if (m_owner.Script().m_bFormatThrows) throw 7;
            return m_owner.Script().m_format;
        }
        std::uint64_t GetRawLen() override { return m_owner.Script().m_nRawLength; }
        bool RawRead(unsigned char* buffer, int size, int* read, EAudioRawState& state, IStatus** status) override {
            SDecoderScript& script = m_owner.Script();
            script.m_readCalls.push_back({buffer, size, read, state, status});
            if (script.m_read) return script.m_read(buffer, size, read, state, status);
            for (int i = 0; i < size; ++i) buffer[i] = static_cast<unsigned char>(i);
            *read = size;
            state = script.m_eState;
            return true;
        }
    };

    class CBlockInfoFace final : public CLoggedFace<IAudioRawBlockInfo, CFakeDecoder> {
    public:
        using CLoggedFace::CLoggedFace;
        std::uint64_t GetPos() override { return m_owner.Script().m_nPosition; }
        std::int64_t GetBlockSize() override { return m_owner.Script().m_nBlockSize; }
        std::uint64_t GetDataLength() override { return m_owner.Script().m_nDataLength; }
    };

    class CInfoFace final : public CLoggedFace<IInfoReader, CFakeDecoder> {
    public:
        using CLoggedFace::CLoggedFace;
        const char* GetTitle() override { return m_owner.Script().m_pTitle; }
        const char* GetArtist() override { return m_owner.Script().m_pArtist; }
        const char* GetAlbum() override { return m_owner.Script().m_pAlbum; }
        const char* GetYear() override { return m_owner.Script().m_pYear; }
        const char* GetGenre() override { return m_owner.Script().m_pGenre; }
    };

    class CSeekFace final : public CLoggedFace<ISeekable, CFakeDecoder> {
    public:
        using CLoggedFace::CLoggedFace;
        bool Seek(unsigned long position, IStatus** status) override {
            m_owner.Script().m_ppSeekStatus = status;
            m_owner.Script().m_seeks.push_back(position);
            return m_owner.Script().m_bSeekResult;
        }
    };

    class CIndexFace final : public CLoggedFace<IIndexArray, CFakeDecoder> {
    public:
        using CLoggedFace::CLoggedFace;
        int GetIndexNumber() override { return static_cast<int>(m_owner.Script().m_indexes.size()); }
        std::uint64_t GetIndex(int n) override {
            return n >= 0 && n < GetIndexNumber() ? m_owner.Script().m_indexes[static_cast<std::size_t>(n)]
                                                  : kNoIndexPoint;
        }
    };

    class CAdvancedFace final : public CLoggedFace<IAdvancedFormat, CFakeDecoder> {
    public:
        using CLoggedFace::CLoggedFace;
        SAdvancedWavFormat GetAdvancedFormat() override { return m_owner.Script().m_advanced; }
    };

    class CNameFace final : public CLoggedFace<ISourceName, CFakeDecoder> {
    public:
        using CLoggedFace::CLoggedFace;
        void ReservedFirst() override { m_owner.Script().m_log.Note("reserved"); }
        const char* GetSourceName() override {
            m_owner.Script().m_log.Note("source name");
            return m_owner.Script().m_pSourceName;
        }
    };

    CReaderFace m_reader;
    CBlockInfoFace m_blockInfo;
    CInfoFace m_infoReader;
    CSeekFace m_seekable;
    CIndexFace m_indexArray;
    CAdvancedFace m_advancedFormat;
    CNameFace m_sourceName;
};

inline IUnknown* NewDecoder(SDecoderScript& script) { return NewStream<CFakeDecoder>(script); }

}  // namespace support

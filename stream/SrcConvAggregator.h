// The source as hosts see it: one decoder stream, delivered in the wanted format.
#pragma once

#include <cstdint>
#include <memory>

#include "com/Aggregatable.h"
#include "com/ComPtr.h"
#include "portable/BasicString.h"
#include "portable/Export.h"
#include "stream/AudioPluginMgrInterface.h"
#include "stream/Convertor.h"
#include "stream/LiveAggregators.h"
#include "stream/Process.h"
#include "stream/RawReader.h"
#include "stream/SourceDetails.h"

// Outer object of a decoder stream. Byte counts are bytes of the raw format; positions and lengths are sample frames.
// Shares the decoder's reference count and ends when only its own references on the decoder are left.
// One stream is driven by one thread at a time. [stream-thread]
class KELO_EXPORT CSrcConvAggregator : public IProcess,
                                       public IAudioRawReader,
                                       public IAudioRawBlockInfo,
                                       public IIndexArray,
                                       public IInfoReader,
                                       public ISeekable,
                                       public IRealFormat {
public:
    // Wraps the decoder in `*stream` and takes its place there; `wanted` is the format to deliver, null for the
    // decoder's own. An object that IsValid denies has left `*stream` alone and is only destroyed.
    CSrcConvAggregator(IAudioPluginMgr* manager, IUnknown** stream, const SWavFormat* wanted);

    CSrcConvAggregator(const CSrcConvAggregator&) = delete;
    CSrcConvAggregator& operator=(const CSrcConvAggregator&) = delete;

    // False: the decoder lacks an interface that every source needs, or refused.
    bool IsValid() const { return m_bValid; }

    unsigned int AddRef() override;
    unsigned int Release() override;

    // Interfaces that are not the aggregator's own are asked of the decoder.
    int QueryInterface(unsigned long identity, void** face) override;

    // Starts the decoder and, when the formats differ, makes a convertor through the manager's factory.
    bool Start(IStatus** status) override;
    bool End(IStatus** status) override;
    bool IsInProcess() override;

    // Does not end a started stream.
    virtual ~CSrcConvAggregator();

    SWavFormat GetRawFormat() override;

    // AE_BAD_ARGUMENT for a null pointer or a size of 0; AE_BUFFER_TOO_SMALL when a converting read would ask the
    // decoder for 15 bytes or less. A block that comes out longer than `size` is lost: false without a status.
    bool RawRead(unsigned char* buffer, int size, int* read, EAudioRawState& state, IStatus** status) override;

    // Lengths and positions are computed in single precision; very long streams lose their low digits.
    std::uint64_t GetRawLen() override;
    std::uint64_t GetPos() override;
    std::int64_t GetBlockSize() override;
    std::uint64_t GetDataLength() override;

    int GetIndexNumber() override;
    std::uint64_t GetIndex(int n) override;

    // Null when the decoder has no tags; otherwise completed from the source's name as the manager's settings say.
    const char* GetArtist() override;
    const char* GetTitle() override;
    const char* GetAlbum() override;
    const char* GetYear() override;
    const char* GetGenre() override;

    // Only the low 32 bits of the position count.
    bool Seek(unsigned long position, IStatus** status) override;

    SWavFormat GetRealFormat() override;

    // Whether the manager has advanced formats switched on.
    bool IsAdvancedFormatsEnabled();

    // Rebuilds artist and title from the tags and the source's name.
    void ObtainArtistTitle();

private:
    KELO_HIDDEN bool Adopt(IUnknown** stream);
    KELO_HIDDEN void ReadFormats(IAdvancedFormat* advanced, const SWavFormat* wanted);
    KELO_HIDDEN void ComputeRatios();
    KELO_HIDDEN bool CreateConvertor(IStatus** status);
    KELO_HIDDEN bool ConvertBlock(unsigned char* buffer, int size, int* read, IStatus** status);

    // Destroyed in reverse: the order in which the references are given back is part of the contract.
    CComPtr<IUnknown> m_pDecoder;
    CComPtr<IProcess> m_pProcess;
    CComPtr<IAudioRawReader> m_pReader;
    CComPtr<IAudioRawBlockInfo> m_pBlockInfo;
    CComPtr<IAggregatable> m_pAggregatable;
    CComPtr<IIndexArray> m_pIndexArray;
    CComPtr<IInfoReader> m_pInfoReader;
    CComPtr<ISeekable> m_pSeekable;
    CComPtr<IAudioPluginMgr> m_pManager;
    CComPtr<IAudioConvertor> m_pConvertor;
    SAdvancedWavFormat m_realFormat;
    SHeldWavFormat m_rawFormat;
    bool m_bValid;
    std::unique_ptr<unsigned char[]> m_pConversionBuffer;
    float m_fByteRatio;
    float m_fRateRatio;
    CBasicString<char> m_strArtist;
    CBasicString<char> m_strTitle;

    // Both stay readable while the members above are released: a decoder that delegates comes back through Release.
    IAggregatable* m_pInner;
    unsigned int m_nHoldings;

    CLiveAggregator m_liveAggregator;
};

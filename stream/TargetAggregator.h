// The target as hosts see it: one encoder stream that accepts the host's format.
#pragma once

#include "com/Aggregatable.h"
#include "com/ComPtr.h"
#include "portable/Export.h"
#include "stream/AudioPluginMgrInterface.h"
#include "stream/Convertor.h"
#include "stream/LiveAggregators.h"
#include "stream/Process.h"
#include "stream/RawWriter.h"

class CPassedStatus;

// Outer object of an encoder stream. Shares the encoder's reference count and ends when only its own references on the
// encoder are left. One stream is driven by one thread at a time. [stream-thread]
class KELO_EXPORT CTargetAggregator final : public IProcess, public IAudioRawWriter {
public:
    // Wraps the encoder in `*stream` and takes its place there; accepts samples of `format`. An object that IsValid
    // denies has left `*stream` alone and is only destroyed.
    CTargetAggregator(IAudioPluginMgr* manager, IUnknown** stream, const SWavFormat& format);

    // Does not end a started stream.
    ~CTargetAggregator();

    CTargetAggregator(const CTargetAggregator&) = delete;
    CTargetAggregator& operator=(const CTargetAggregator&) = delete;

    // False: the encoder lacks an interface that every target needs, or refused.
    bool IsValid() const { return m_bValid; }

    unsigned int AddRef() override;
    unsigned int Release() override;

    // Interfaces that are not the aggregator's own are asked of the encoder.
    int QueryInterface(unsigned long identity, void** face) override;

    // Makes a convertor through the manager's factory when the encoder accepts another format, then starts the encoder.
    // Fails with "No conversion possible" when there is none.
    bool Start(IStatus** status) override;
    bool End(IStatus** status) override;
    bool IsInProcess() override;

    // AE_BAD_ARGUMENT for null data or a size of 0.
    bool RawWrite(unsigned char* data, int size, EAudioRawState& state, IStatus** status) override;
    SWavFormat GetRawFormat() override;

private:
    KELO_HIDDEN bool StartEncoder(IStatus** status);
    KELO_HIDDEN bool CreateConvertor(IConvertorFactory* factory, const SHeldWavFormat& accepted, CPassedStatus& status);

    // Destroyed in reverse: the order in which the references are given back is part of the contract.
    CComPtr<IUnknown> m_pEncoder;
    CComPtr<IProcess> m_pProcess;
    CComPtr<IAudioRawWriter> m_pWriter;
    CComPtr<IAggregatable> m_pAggregatable;
    CComPtr<IAudioPluginMgr> m_pManager;
    CComPtr<IAudioConvertor> m_pConvertor;
    SAdvancedWavFormat m_inputFormat;
    bool m_bValid;

    // Stays readable while the members above are released: an encoder that delegates comes back through Release.
    IAggregatable* m_pInner;

    CLiveAggregator m_liveAggregator;
};

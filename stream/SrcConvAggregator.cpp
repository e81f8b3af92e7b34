// Life of a source: construction around the decoder, reference counting, interfaces, start and end.
#include "stream/SrcConvAggregator.h"

#include <new>

#include "com/FeatureSupport.h"
#include "com/QueryTable.h"
#include "stream/GuardedCall.h"
#include "stream/PassedStatus.h"
#include "stream/SourceLimits.h"

namespace {

// Interfaces that the aggregator offers only over a decoder that has them, and never asks of the decoder.
bool IsConditional(unsigned long identity) { return identity == IID_IInfoReader || identity == IID_ISeekable; }

}  // namespace

CSrcConvAggregator::CSrcConvAggregator(IAudioPluginMgr* manager, IUnknown** stream, const SWavFormat* wanted)
    : m_realFormat{kUnsetWavFormat, {}},
      m_rawFormat(kUnsetWavFormat),
      m_bValid(false),
      m_fByteRatio(1.0F),
      m_fRateRatio(1.0F),
      m_pInner(nullptr),
      m_nHoldings(0) {
    // Only in the body is the aggregator counted as alive, and plug-ins stay loaded from there on.
    m_pManager = CComPtr<IAudioPluginMgr>(manager);
    m_pDecoder = CComPtr<IUnknown>(*stream);
    if (!Adopt(stream)) return;
    CComPtr<IAdvancedFormat> advanced;
    try {
        advanced = CComPtr<IAdvancedFormat>::Query(m_pReader.Get(), IID_IAdvancedFormat);
        ReadFormats(advanced.Get(), wanted);
    } catch (...) {
        m_pAggregatable->SetAggregator(nullptr);
        throw;
    }
    *stream = static_cast<IAudioRawReader*>(this);
    m_bValid = true;
    ComputeRatios();
}

CSrcConvAggregator::~CSrcConvAggregator() = default;

bool CSrcConvAggregator::Adopt(IUnknown** stream) {
    m_pAggregatable = CComPtr<IAggregatable>::Query(*stream, IID_IAggregatable);
    m_pProcess = CComPtr<IProcess>::Query(*stream, IID_IProcess);
    m_pReader = CComPtr<IAudioRawReader>::Query(*stream, IID_IAudioRawReader);
    m_pBlockInfo = CComPtr<IAudioRawBlockInfo>::Query(*stream, IID_IAudioRawBlockInfo);
    m_pInfoReader = CComPtr<IInfoReader>::Query(*stream, IID_IInfoReader);
    m_pSeekable = CComPtr<ISeekable>::Query(*stream, IID_ISeekable);
    m_pIndexArray = CComPtr<IIndexArray>::Query(*stream, IID_IIndexArray);

    constexpr unsigned int kRequired = 5;  // decoder, IProcess, IAudioRawReader, IAudioRawBlockInfo, IAggregatable
    m_pInner = m_pAggregatable.Get();
    m_nHoldings = kRequired + (m_pSeekable ? 1 : 0) + (m_pInfoReader ? 1 : 0) + (m_pIndexArray ? 1 : 0);

    const bool complete = m_pManager && m_pAggregatable && m_pProcess && m_pReader && m_pBlockInfo;
    return complete && m_pAggregatable->SetAggregator(static_cast<IAudioRawReader*>(this));
}

void CSrcConvAggregator::ReadFormats(IAdvancedFormat* advanced, const SWavFormat* wanted) {
    if (advanced != nullptr && IsAdvancedFormatsEnabled()) {
        m_realFormat.m_held = advanced->GetAdvancedFormat().m_held;
    } else {
        m_realFormat.m_held = {m_pReader->GetRawFormat(), 0};
    }
    m_rawFormat = wanted != nullptr ? SHeldWavFormat{*wanted, 0} : m_realFormat.m_held;
}

void CSrcConvAggregator::ComputeRatios() {
    const SWavFormat& real = m_realFormat.m_held.m_format;
    const SWavFormat& raw = m_rawFormat.m_format;
    m_fByteRatio = static_cast<float>(ByteRateOf(real)) / static_cast<float>(ByteRateOf(raw));
    m_fRateRatio = static_cast<float>(real.nSampleRate) / static_cast<float>(raw.nSampleRate);
}

bool CSrcConvAggregator::IsAdvancedFormatsEnabled() {
    const auto features = CComPtr<IFeatureSupport>::Query(m_pManager.Get(), IID_IFeatureSupport);
    return features && features->IsSupported(AF_ADVANCED_FORMATS);
}

unsigned int CSrcConvAggregator::AddRef() { return m_pInner->InnerAddRef(); }

unsigned int CSrcConvAggregator::Release() {
    // After the step another thread's may end this object.
    const bool valid = m_bValid;
    const unsigned int holdings = m_nHoldings;
    const unsigned int count = m_pInner->InnerRelease();
    if (!valid || count != holdings) return count;
    delete this;
    return 0;
}

int CSrcConvAggregator::QueryInterface(unsigned long identity, void** face) {
    IInfoReader* const infoReader = m_pInfoReader ? this : nullptr;
    ISeekable* const seekable = m_pSeekable ? this : nullptr;
    const int answer = AnswerQuery(*this, identity, face,
                                   {{IID_IUnknown, static_cast<IAudioRawReader*>(this)},
                                    {IID_IAudioRawReader, static_cast<IAudioRawReader*>(this)},
                                    {IID_IProcess, static_cast<IProcess*>(this)},
                                    {IID_IAudioRawBlockInfo, static_cast<IAudioRawBlockInfo*>(this)},
                                    {IID_IIndexArray, static_cast<IIndexArray*>(this)},
                                    {IID_IRealFormat, static_cast<IRealFormat*>(this)},
                                    {IID_IInfoReader, infoReader},
                                    {IID_ISeekable, seekable}});
    if (answer != kInterfaceMissing || IsConditional(identity)) return answer;
    return m_pInner->InnerQueryInterface(identity, face);
}

bool CSrcConvAggregator::Start(IStatus** status) {
    CPassedStatus passed(status);
    if (!CallGuarded([&] { return m_pProcess->Start(status); })) return false;
    passed.Update();
    const bool delivers = m_realFormat.m_held == m_rawFormat || CallGuarded([&] { return CreateConvertor(status); });
    passed.Update();
    if (delivers) {
        m_pConversionBuffer.reset(new (std::nothrow) unsigned char[kConversionBufferSize]);
        if (m_pConversionBuffer) return true;
    }
    m_pConvertor.Reset();
    CallGuarded([&] { return m_pProcess->End(status); });
    return false;
}

bool CSrcConvAggregator::CreateConvertor(IStatus** status) {
    // The factory is lent: no reference was added and none is released.
    IConvertorFactory* factory = nullptr;
    m_pManager->GetConvertor(&factory);
    return factory != nullptr &&
           factory->CreateConvertor(&m_realFormat.m_held.m_format, &m_rawFormat.m_format, m_pConvertor.Out(), status) &&
           m_pConvertor;
}

bool CSrcConvAggregator::End(IStatus** status) {
    if (!CallGuarded([&] { return m_pProcess->End(status); })) return false;
    m_pConvertor.Reset();
    m_pConversionBuffer.reset();
    return true;
}

bool CSrcConvAggregator::IsInProcess() { return m_pProcess->IsInProcess(); }

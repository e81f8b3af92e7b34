// A target: construction around the encoder, reference counting, interfaces, conversion and writing.
#include "stream/TargetAggregator.h"

#include "com/QueryTable.h"
#include "com/StatusObject.h"
#include "stream/GuardedCall.h"
#include "stream/PassedStatus.h"

namespace {

constexpr unsigned int kHoldings = 4;  // encoder, IProcess, IAudioRawWriter, IAggregatable

}  // namespace

CTargetAggregator::CTargetAggregator(IAudioPluginMgr* manager, IUnknown** stream, const SWavFormat& format)
    : m_inputFormat{{format, 0}, {}}, m_bValid(false), m_pInner(nullptr) {
    // Only in the body is the aggregator counted as alive, and plug-ins stay loaded from there on.
    m_pManager = CComPtr<IAudioPluginMgr>(manager);
    m_pEncoder = CComPtr<IUnknown>(*stream);
    m_pAggregatable = CComPtr<IAggregatable>::Query(*stream, IID_IAggregatable);
    m_pProcess = CComPtr<IProcess>::Query(*stream, IID_IProcess);
    m_pWriter = CComPtr<IAudioRawWriter>::Query(*stream, IID_IAudioRawWriter);
    m_pInner = m_pAggregatable.Get();

    const bool complete = m_pAggregatable && m_pProcess && m_pWriter;
    if (!complete || !m_pAggregatable->SetAggregator(static_cast<IAudioRawWriter*>(this))) return;
    *stream = static_cast<IAudioRawWriter*>(this);
    m_bValid = true;
}

CTargetAggregator::~CTargetAggregator() = default;

unsigned int CTargetAggregator::AddRef() { return m_pInner->InnerAddRef(); }

unsigned int CTargetAggregator::Release() {
    const bool valid = m_bValid;  // after the step another thread's may end this object
    const unsigned int count = m_pInner->InnerRelease();
    if (!valid || count != kHoldings) return count;
    delete this;
    return 0;
}

int CTargetAggregator::QueryInterface(unsigned long identity, void** face) {
    const int answer = AnswerQuery(*this, identity, face,
                                   {{IID_IUnknown, static_cast<IAudioRawWriter*>(this)},
                                    {IID_IAudioRawWriter, static_cast<IAudioRawWriter*>(this)},
                                    {IID_IProcess, static_cast<IProcess*>(this)}});
    return answer == kInterfaceMissing ? m_pInner->InnerQueryInterface(identity, face) : answer;
}

bool CTargetAggregator::Start(IStatus** status) {
    return CallGuarded([&] { return StartEncoder(status); });
}

bool CTargetAggregator::StartEncoder(IStatus** status) {
    const SHeldWavFormat accepted{m_pWriter->GetRawFormat(), 0};
    CPassedStatus passed(status);
    CComPtr<IConvertorFactory> factory;
    if (accepted != m_inputFormat.m_held) {
        // The factory is lent, yet released here: one reference less of it for every converting Start, as hosts expect.
        IConvertorFactory* lent = nullptr;
        if (m_pManager) m_pManager->GetConvertor(&lent);
        factory = CComPtr<IConvertorFactory>::Adopt(lent);
        if (!CreateConvertor(lent, accepted, passed)) {
            m_pConvertor.Reset();
            ReportStatus(status, "No conversion possible");
            return false;
        }
    }
    if (CallGuarded([&] { return m_pProcess->Start(status); })) return true;
    m_pConvertor.Reset();
    return false;
}

bool CTargetAggregator::CreateConvertor(IConvertorFactory* factory, const SHeldWavFormat& accepted,
                                        CPassedStatus& status) {
    if (factory == nullptr) return false;
    const bool created = CallGuarded([&] {
        return factory->CreateConvertor(&m_inputFormat.m_held.m_format, &accepted.m_format, m_pConvertor.Out(),
                                        status.Get());
    });
    status.Update();
    return created && m_pConvertor;
}

bool CTargetAggregator::End(IStatus** status) {
    if (!CallGuarded([&] { return m_pProcess->End(status); })) return false;
    m_pConvertor.Reset();
    return true;
}

bool CTargetAggregator::IsInProcess() { return m_pProcess->IsInProcess(); }

bool CTargetAggregator::RawWrite(unsigned char* data, int size, EAudioRawState& state, IStatus** status) {
    if (data == nullptr || size == 0) {
        ReportStatus(status, AE_BAD_ARGUMENT);
        return false;
    }
    CPassedStatus passed(status);
    if (m_pConvertor) {
        m_pConvertor->Convert(data, size, 0, status);
        passed.Update();
        data = m_pConvertor->GetOutputData();
        size = m_pConvertor->GetOutputLength();
    }
    return m_pWriter->RawWrite(data, size, state, status);
}

SWavFormat CTargetAggregator::GetRawFormat() { return m_inputFormat.m_held.m_format; }

// The convertors that streams are given, and what they have clipped.
#include "host/ConvertorWatch.h"

#include "com/InterfaceIds.h"
#include "com/QueryTable.h"

namespace {

thread_local CConvertorRecord* t_pRecord = nullptr;

}  // namespace

CConvertorRecord::CConvertorRecord() { t_pRecord = this; }

CConvertorRecord::~CConvertorRecord() { t_pRecord = nullptr; }

CConvertorRecord* CConvertorRecord::Current() { return t_pRecord; }

void CConvertorRecord::Add(IAudioConvertor* convertor) {
    auto counting = CComPtr<IClippingCount>::Query(convertor, IID_IClippingCount);
    if (counting) m_vConvertors.push_back(std::move(counting));
}

std::uint64_t CConvertorRecord::GetClippedSamples() const {
    std::uint64_t clipped = 0;
    for (const CComPtr<IClippingCount>& convertor : m_vConvertors) clipped += convertor->GetClippedSamples();
    return clipped;
}

CConvertorWatch::CConvertorWatch(IAudioPluginMgr& manager) : m_manager(manager) {
    IConvertorFactory* lent = nullptr;
    if (!m_manager.GetConvertor(&lent) || lent == nullptr) return;
    m_pFactory = CComPtr<IConvertorFactory>(lent);
    m_manager.SetConvertor(this, nullptr);
}

CConvertorWatch::~CConvertorWatch() {
    if (m_pFactory) m_manager.SetConvertor(m_pFactory.Get(), nullptr);
}

int CConvertorWatch::QueryInterface(unsigned long identity, void** face) {
    const int answer = AnswerQuery(*this, identity, face,
                                   {{IID_IUnknown, static_cast<IConvertorFactory*>(this)},
                                    {IID_IConvertorFactory, static_cast<IConvertorFactory*>(this)}});
    return answer == kInterfaceMissing && m_pFactory ? m_pFactory->QueryInterface(identity, face) : answer;
}

bool CConvertorWatch::CreateConvertor(const SWavFormat* from, const SWavFormat* to, IAudioConvertor** convertor,
                                      IStatus** status) {
    if (!m_pFactory->CreateConvertor(from, to, convertor, status)) return false;
    CConvertorRecord* const record = CConvertorRecord::Current();
    if (record != nullptr && convertor != nullptr && *convertor != nullptr) record->Add(*convertor);
    return true;
}

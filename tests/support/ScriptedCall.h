// How a scripted call of a fake ends.
#pragma once

#include <atomic>
#include <stdexcept>

#include "com/QueryTable.h"
#include "com/Status.h"

namespace support {

// A plug-in's status with a text; tells how many of its kind are alive. Starts with the one reference of its creator.
class CCountedStatus final : public IStatus {
public:
    explicit CCountedStatus(const char* description) : m_pDescription(description) { ++Alive(); }
    ~CCountedStatus() { --Alive(); }

    CCountedStatus(const CCountedStatus&) = delete;
    CCountedStatus& operator=(const CCountedStatus&) = delete;

    unsigned int AddRef() override { return ++m_nReferences; }
    unsigned int Release() override {
        const unsigned int count = --m_nReferences;
        if (count == 0) delete this;
        return count;
    }
    int QueryInterface(unsigned long identity, void** face) override {
        return AnswerQuery(*this, identity, face, {{IID_IUnknown, this}, {IID_IStatus, this}});
    }
    const char* GetDescription() override { return m_pDescription; }
    EAudioError GetAudioError() override { return AE_NONE; }
    unsigned int GetSysError() override { return 0; }

    static std::atomic<int>& Alive() {
        static std::atomic<int> alive{0};
        return alive;
    }

private:
    const char* m_pDescription;
    std::atomic<unsigned int> m_nReferences{1};
};

enum class EOutcome { Succeeds, Fails, ThrowsInt, ThrowsException };

struct SScriptedCall {
    EOutcome m_eOutcome = EOutcome::Succeeds;
    const char* m_pReason = nullptr;  // stored as a status first where the caller asks for one
};

inline bool Play(const SScriptedCall& call, IStatus** status) {
    if (call.m_pReason != nullptr && status != nullptr) *status = new CCountedStatus(call.m_pReason);
    switch (call.m_eOutcome) {
        case EOutcome::ThrowsInt:
            throw 5;
        case EOutcome::ThrowsException:
            throw std::runtime_error("scripted");
        case EOutcome::Fails:
            return false;
        default:
            return true;
    }
}

}  // namespace support

// What fake decoders and encoders have in common: count, outer object, offered interfaces.
#pragma once

#include <functional>
#include <set>
#include <string>

#include "com/Aggregatable.h"
#include "com/QueryTable.h"
#include "stream/LiveAggregators.h"
#include "stream/Process.h"
#include "tests/support/CallLog.h"
#include "tests/support/LoggedFace.h"
#include "tests/support/ScriptedCall.h"

namespace support {

// The part of a stream's script that is the same for both directions. The test owns the script, which outlives the
// stream. The log tells: "query N", "inner query N", "set aggregator", "release FACE", "start", "end", "destroyed".
struct SStreamScript {
    CCallLog m_log;
    std::set<unsigned long> m_denied;  // identities that the stream does not offer
    bool m_bDelegates = true;          // whether references and queries go to the outer object once there is one
    SScriptedCall m_setAggregator;
    SScriptedCall m_start;
    SScriptedCall m_end;
    bool m_bInProcess = false;
    IUnknown* m_pOuter = nullptr;
    unsigned int m_nReferences = 0;           // the inner count after the last change
    std::int64_t m_nAliveAtFirstAddRef = -1;  // g_lAggregators when the first reference beyond the creator's was taken
    int m_nAlive = 0;
    std::function<void()> m_onRelease;  // called before a reference on a face goes
};

// Creates itself with the one reference of its creator. [stream-thread]
template <typename TScript>
class CFakeStream : public CAggregatable {
public:
    explicit CFakeStream(TScript& script)
        : CAggregatable(0), m_script(script), m_unknown(*this, "stream"), m_process(*this, "IProcess") {
        ++m_script.m_nAlive;
        CAggregatable::InnerAddRef();
        m_script.m_nReferences = 1;
        m_script.m_pOuter = nullptr;
    }
    ~CFakeStream() override {
        --m_script.m_nAlive;
        m_script.m_log.Note("destroyed");
    }

    TScript& Script() { return m_script; }

    // The face that an opener hands out.
    IUnknown* Stream() { return &m_unknown; }

    bool SetAggregator(IUnknown* outer) override {
        m_script.m_log.Note("set aggregator");
        if (!Play(m_script.m_setAggregator, nullptr)) return false;
        m_script.m_pOuter = outer;
        return CAggregatable::SetAggregator(outer);
    }

    unsigned int AddRef() override { return CountUp(); }
    unsigned int Release() override {
        NoteRelease("IAggregatable");
        return CountDown();
    }
    int QueryInterface(unsigned long identity, void** face) override {
        m_script.m_log.Note("query " + std::to_string(identity));
        return Delegates() ? m_script.m_pOuter->QueryInterface(identity, face) : Answer(identity, face);
    }
    int InnerQueryInterface(unsigned long identity, void** face) override {
        m_script.m_log.Note("inner query " + std::to_string(identity));
        return Answer(identity, face);
    }
    unsigned int InnerAddRef() override {
        if (m_script.m_nAliveAtFirstAddRef < 0) m_script.m_nAliveAtFirstAddRef = LiveAggregators();
        return m_script.m_nReferences = CAggregatable::InnerAddRef();
    }
    unsigned int InnerRelease() override {
        TScript& script = m_script;
        return script.m_nReferences = CAggregatable::InnerRelease();
    }

    void NoteRelease(const char* face) {
        m_script.m_log.Note(std::string("release ") + face);
        if (m_script.m_onRelease) m_script.m_onRelease();
    }

    unsigned int CountUp() { return Delegates() ? m_script.m_pOuter->AddRef() : InnerAddRef(); }
    unsigned int CountDown() { return Delegates() ? m_script.m_pOuter->Release() : InnerRelease(); }

protected:
    // The face for an identity beyond those of every stream, null when there is none.
    virtual void* FaceOf(unsigned long identity) = 0;

private:
    static std::int64_t LiveAggregators() {
        pthread_mutex_lock(&g_AggregatorsMutex);
        const std::int64_t alive = g_lAggregators;
        pthread_mutex_unlock(&g_AggregatorsMutex);
        return alive;
    }

    bool Delegates() const { return m_script.m_bDelegates && m_script.m_pOuter != nullptr; }

    void* AnyFaceOf(unsigned long identity) {
        switch (identity) {
            case IID_IUnknown:
                return static_cast<IUnknown*>(&m_unknown);
            case IID_IProcess:
                return static_cast<IProcess*>(&m_process);
            case IID_IAggregatable:
                return static_cast<IAggregatable*>(this);
            default:
                return FaceOf(identity);
        }
    }

    int Answer(unsigned long identity, void** face) {
        if (face == nullptr) return kInterfaceNoOutPointer;
        *face = m_script.m_denied.count(identity) != 0 ? nullptr : AnyFaceOf(identity);
        if (*face == nullptr) return kInterfaceMissing;
        CountUp();
        return kInterfaceFound;
    }

    TScript& m_script;
    CUnknownFace<CFakeStream> m_unknown;
    CProcessFace<CFakeStream> m_process;
};

// Hands out a stream of class `TStream` with one reference, as an opener does.
template <typename TStream, typename TScript>
IUnknown* NewStream(TScript& script) {
    return (new TStream(script))->Stream();
}

}  // namespace support

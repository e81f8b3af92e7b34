// Faces of fake streams that write down who lets go of them.
#pragma once

#include "stream/Process.h"
#include "tests/support/ScriptedCall.h"

namespace support {

// One interface of `TOwner` as an object of its own, so that the log tells the faces apart. References count on the
// owner: NoteRelease, CountUp and CountDown. [stream-thread]
template <typename TInterface, typename TOwner>
class CLoggedFace : public TInterface {
public:
    CLoggedFace(TOwner& owner, const char* name) : m_owner(owner), m_pName(name) {}

    CLoggedFace(const CLoggedFace&) = delete;
    CLoggedFace& operator=(const CLoggedFace&) = delete;

    unsigned int AddRef() override { return m_owner.CountUp(); }
    unsigned int Release() override {
        m_owner.NoteRelease(m_pName);
        return m_owner.CountDown();
    }
    int QueryInterface(unsigned long identity, void** face) override { return m_owner.QueryInterface(identity, face); }

protected:
    ~CLoggedFace() = default;

    TOwner& m_owner;

private:
    const char* m_pName;
};

// The face without operations of its own.
template <typename TOwner>
class CUnknownFace final : public CLoggedFace<IUnknown, TOwner> {
public:
    using CLoggedFace<IUnknown, TOwner>::CLoggedFace;
};

// The life of a stream as scripted by m_start, m_end and m_bInProcess.
template <typename TOwner>
class CProcessFace final : public CLoggedFace<IProcess, TOwner> {
public:
    using CLoggedFace<IProcess, TOwner>::CLoggedFace;

    bool Start(IStatus** status) override {
        this->m_owner.Script().m_log.Note("start");
        return Play(this->m_owner.Script().m_start, status);
    }
    bool End(IStatus** status) override {
        this->m_owner.Script().m_log.Note("end");
        return Play(this->m_owner.Script().m_end, status);
    }
    bool IsInProcess() override { return this->m_owner.Script().m_bInProcess; }
};

}  // namespace support

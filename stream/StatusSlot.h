// The caller's status pointer over several calls of one operation.
#pragma once

#include "com/ComPtr.h"
#include "com/Status.h"

// Lends each call a pointer of its own, so that no status is lost when a later call stores another; at its end the
// caller gets the last one. Lends null where the caller asked for no status. [stream-thread]
class CStatusSlot {
public:
    explicit CStatusSlot(IStatus** caller) : m_ppCaller(caller) {}
    ~CStatusSlot() {
        Collect();
        if (m_last) *m_ppCaller = m_last.Detach();
    }

    CStatusSlot(const CStatusSlot&) = delete;
    CStatusSlot& operator=(const CStatusSlot&) = delete;

    // For the next call.
    IStatus** Lend() {
        if (m_ppCaller == nullptr) return nullptr;
        Collect();
        return m_lent.Out();
    }

private:
    void Collect() {
        if (m_lent) m_last = static_cast<CComPtr<IStatus>&&>(m_lent);
    }

    IStatus** m_ppCaller;
    CComPtr<IStatus> m_lent;
    CComPtr<IStatus> m_last;
};

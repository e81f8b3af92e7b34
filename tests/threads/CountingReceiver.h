// A receiver that counts the events of one number.
#pragma once

#include "com/EventReceiver.h"
#include "com/QueryTable.h"

// Counts without a lock: the manager delivers one event at a time.
class CCountingReceiver final : public IEventReceiver {
public:
    explicit CCountingReceiver(unsigned int event) : m_nEvent(event) {}

    unsigned int AddRef() override { return 1; }
    unsigned int Release() override { return 1; }
    int QueryInterface(unsigned long, void** face) override {
        *face = nullptr;
        return kInterfaceMissing;
    }
    bool OnEvent(unsigned int event, IUnknown*) override {
        ++m_nAll;
        if (event == m_nEvent) ++m_nOwn;
        return true;
    }

    int GetOwn() const { return m_nOwn; }
    int GetAll() const { return m_nAll; }

private:
    unsigned int m_nEvent;
    int m_nOwn = 0;
    int m_nAll = 0;
};

// What decoder and encoder streams share: one count for all faces, the outer object, the live count.
#pragma once

#include "com/Aggregatable.h"
#include "plugins/sndfile/LiveObjects.h"

// While an outer object is set, AddRef, Release and QueryInterface of every face go to it; the outer object counts with
// InnerAddRef and InnerRelease, so that there is one count in either case. InnerQueryInterface is the deriving class's.
// [any thread] for the count, [stream-thread] for the rest.
template <typename... TFaces>
class CStreamObject : public CAggregatable, public TFaces... {
public:
    CStreamObject() : CAggregatable(0) {}

    unsigned int AddRef() override { return m_pOuter != nullptr ? m_pOuter->AddRef() : InnerAddRef(); }

    unsigned int Release() override { return m_pOuter != nullptr ? m_pOuter->Release() : InnerRelease(); }

    int QueryInterface(unsigned long identity, void** face) override {
        return m_pOuter != nullptr ? m_pOuter->QueryInterface(identity, face) : InnerQueryInterface(identity, face);
    }

    bool SetAggregator(IUnknown* outer) override {
        m_pOuter = outer;
        return CAggregatable::SetAggregator(outer);
    }

protected:
    // The face that stands for the whole object.
    IUnknown* Identity() { return static_cast<CAggregatable*>(this); }

private:
    CLiveObject m_live;
    IUnknown* m_pOuter = nullptr;
};

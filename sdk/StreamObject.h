// What decoder and encoder streams share: aggregation, one count for all faces, the life between Start and End.
#pragma once

#include <string>
#include <utility>

#include "com/Aggregatable.h"
#include "com/ComPtr.h"
#include "com/QueryTable.h"
#include "sdk/Guard.h"
#include "sdk/InterfaceIdentity.h"
#include "sdk/LiveObject.h"

// While an outer object is set, AddRef, Release and QueryInterface of every face go to it; the outer object counts with
// InnerAddRef and InnerRelease, so that there is one count in either case. The inner query answers identity 0 with
// IAggregatable and each of TFaces that Offers does not deny. [any thread] for the count, [stream-thread] for the rest
template <typename... TFaces>
class CStreamObject : public CAggregatable, public IProcess, public TFaces... {
public:
    // The outer object's count, else the stream's own.
    unsigned int AddRef() final { return m_pOuter != nullptr ? m_pOuter->AddRef() : InnerAddRef(); }
    unsigned int Release() final { return m_pOuter != nullptr ? m_pOuter->Release() : InnerRelease(); }

    int QueryInterface(unsigned long identity, void** face) final {
        return m_pOuter != nullptr ? m_pOuter->QueryInterface(identity, face) : InnerQueryInterface(identity, face);
    }

    bool SetAggregator(IUnknown* outer) final {
        m_pOuter = outer;
        return CAggregatable::SetAggregator(outer);
    }

    // Counts on the object itself: whoever asks here is the outer object, whose count this is.
    int InnerQueryInterface(unsigned long identity, void** face) final {
        return AnswerQuery(
            *this, identity, face,
            {{IID_IUnknown, static_cast<IAggregatable*>(this)},
             {IID_IAggregatable, static_cast<IAggregatable*>(this)},
             {IID_IProcess, static_cast<IProcess*>(this)},
             {kIdentityOf<TFaces>, Offers(kIdentityOf<TFaces>) ? FaceOf(static_cast<TFaces*>(this)) : nullptr}...});
    }

    bool Start(IStatus** status) final {
        return Guard(status, [this] {
            if (m_bInProcess) Refuse("already started");
            Begin();
            m_bInProcess = true;
            return true;
        });
    }

    bool End(IStatus** status) final {
        return Guard(status, [this] {
            if (!m_bInProcess) Refuse("not started");
            m_bInProcess = false;
            Finish();
            return true;
        });
    }

    bool IsInProcess() final { return m_bInProcess; }

protected:
    // The file, for names in refusals.
    explicit CStreamObject(std::string path) : CAggregatable(0), m_strPath(std::move(path)) {}

    // Whether the object has the interface although its class does.
    virtual bool Offers(unsigned long /*identity*/) const { return true; }

    // The author's part of Start and of End; an exception is the reason against it.
    virtual void Begin() = 0;
    virtual void Finish() = 0;

    // As given.
    const std::string& Path() const { return m_strPath; }

    // Guarded, about this stream's file.
    template <typename TOperation>
    bool Guard(IStatus** status, TOperation operation) noexcept {
        return Guarded(status, m_strFileName, operation);
    }

private:
    CLiveObject m_live;
    IUnknown* m_pOuter = nullptr;
    std::string m_strPath;
    std::string m_strFileName{FileNameOf(m_strPath)};
    bool m_bInProcess = false;
};

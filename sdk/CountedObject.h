// Base of heap objects that outer objects do not aggregate: targets and convertors.
#pragma once

#include "com/QueryTable.h"
#include "com/ReferenceCount.h"
#include "sdk/InterfaceIdentity.h"
#include "sdk/LiveObject.h"

// Starts with the one reference of its creator and deletes itself with the last. Answers identity 0 and TPrimary's with
// TPrimary and each of TFaces with its own identity. [any thread] for the count
template <typename TPrimary, typename... TFaces>
class CCountedObject : public TPrimary, public TFaces... {
public:
    CCountedObject() = default;

    CCountedObject(const CCountedObject&) = delete;
    CCountedObject& operator=(const CCountedObject&) = delete;

    unsigned int AddRef() final { return m_references.Increment(); }

    unsigned int Release() final {
        const unsigned int count = m_references.Decrement();
        if (count == 0) delete this;
        return count;
    }

    int QueryInterface(unsigned long identity, void** face) override {
        return AnswerQuery(*this, identity, face,
                           {{IID_IUnknown, static_cast<TPrimary*>(this)},
                            {kIdentityOf<TFaces>, FaceOf(static_cast<TFaces*>(this))}...});
    }

protected:
    virtual ~CCountedObject() = default;

private:
    CLiveObject m_live;
    CReferenceCount m_references{1};
};

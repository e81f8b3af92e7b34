// Aggregation: an inner object whose outer object speaks for both.
#pragma once

#include "com/ReferenceCount.h"
#include "com/Unknown.h"
#include "portable/Export.h"

// Implemented by decoder and encoder streams; called by the aggregators, which become the outer object.
// While an outer object is set, the inner object's own AddRef, Release and QueryInterface go to the outer one.
// [stream-thread]
class IAggregatable : public IUnknown {
public:
    // Stores the outer object without a reference. False refuses.
    virtual bool SetAggregator(IUnknown* outer) = 0;

    // Stores the outer object, which may be null, with one reference that the caller owns.
    // False only for a null `outer`.
    virtual bool GetAggregator(IUnknown** outer) = 0;

    // QueryInterface of the inner object itself, never of the outer one.
    virtual int InnerQueryInterface(unsigned long identity, void** face) = 0;

    // The inner object's own count.
    virtual unsigned int InnerAddRef() = 0;
    virtual unsigned int InnerRelease() = 0;

protected:
    ~IAggregatable() = default;
};

// Base for aggregatable objects of plug-ins. The deriving class decides how AddRef, Release and QueryInterface reach
// the outer object; the count starts at 0. [any thread] for the count, [stream-thread] for the rest.
class KELO_EXPORT CAggregatable : public IAggregatable {
public:
    // Set in the constructor's flags: the last InnerRelease does not delete the object.
    static constexpr unsigned int kNeverDeleted = 1;

    // 0, or kNeverDeleted.
    explicit CAggregatable(unsigned int flags);

    CAggregatable(const CAggregatable&) = delete;
    CAggregatable& operator=(const CAggregatable&) = delete;

    bool SetAggregator(IUnknown* outer) override;
    bool GetAggregator(IUnknown** outer) override;
    unsigned int InnerAddRef() override;
    unsigned int InnerRelease() override;

    virtual ~CAggregatable();

private:
    CReferenceCount m_innerCount;
    IUnknown* m_pAggregator;
    unsigned int m_nFlags;
};

// Name of the hosting application.
#pragma once

#include "com/Status.h"
#include "com/Unknown.h"

// Implemented by the manager; set by hosts, read by plug-ins. [host set-up]
class IProfile : public IUnknown {
public:
    // Refused with AE_PLUGINS_LOADED while plug-ins are loaded: they read both names while they load.
    // Null leaves the text as it was.
    virtual bool SetVendor(const char* vendor, IStatus** status) = 0;

    // Never null; valid until the next set or the manager's end.
    virtual const char* GetVendor() = 0;

    // As SetVendor and GetVendor.
    virtual bool SetProduct(const char* product, IStatus** status) = 0;
    virtual const char* GetProduct() = 0;

protected:
    ~IProfile() = default;
};

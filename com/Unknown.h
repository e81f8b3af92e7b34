// The root interface and the result codes of QueryInterface.
#pragma once

// Identities are plain numbers; com/InterfaceIds.h lists them.
// The order AddRef, Release, QueryInterface is part of the contract of every interface.
// Implemented by every object that crosses the library's boundary. [any thread]
class IUnknown {
public:
    // One reference more. The result is the count read after the change; another thread may have changed it since.
    virtual unsigned int AddRef() = 0;

    // One reference less; the object destroys itself at 0. A release too many blocks forever.
    virtual unsigned int Release() = 0;

    // Stores the face for `identity` in `*face` with one reference that the caller owns, else null.
    // Returns kInterfaceFound, kInterfaceMissing or kInterfaceNoOutPointer.
    virtual int QueryInterface(unsigned long identity, void** face) = 0;

protected:
    ~IUnknown() = default;
};

constexpr int kInterfaceFound = 0;
constexpr int kInterfaceMissing = 2;
constexpr int kInterfaceNoOutPointer = 3;
